// SPDX-License-Identifier: MIT
// What the nine result tables and their columns hold: the one description that the exports, `cortana schema` and
// docs/artifacts.md are made from. Constant data in UTF-8.
#pragma once

#include <QVector>

enum class column_kind {
    key,        // the row's number
    text,       // as the evidence has it
    time,       // Unix seconds, see times_as_text.h for what is no time
    size,       // bytes
    count,      // a number
    coordinate, // decimal degrees, as text
    distance,   // metres, as text
    flag,       // "YES" or "NO"
    path,       // of a file or a folder
    url,        // an address
    host        // for the host that shows the rows; the plugin writes nothing of use into it
};

// What happened at a time: the place of its event in the timeline formats.
enum class event_kind { none, created, modified, accessed, other };

struct column_description {
    const char* name;
    column_kind kind;
    const char* unit;    // "" where there is none
    const char* meaning; // a phrase
    const char* origin;  // where the evidence holds it
    event_kind event = event_kind::none;
    const char* event_name = ""; // of times only
};

struct table_description {
    const char* name;
    const char* row;                     // what one row is
    const char* origin;                  // the evidence it comes from
    QVector<const char*> told_by;        // the columns that tell a reader what the row is, most telling first
    QVector<column_description> columns; // all of them, in the order of the schema

    bool has_reminders() const;             // it is one of those that link_columns() are added to
    bool has_places() const;                // latitude and longitude are among the columns
    int index_of(const char* column) const; // -1 when there is none
};

// In the order in which the plugin fills them.
const QVector<table_description>& table_descriptions();

// The columns that exports add to a table of reminders, from the links database; the plugin's database has none of
// them.
const QVector<column_description>& link_columns();

// The words for a kind in `cortana schema`.
const char* name_of(column_kind kind);
