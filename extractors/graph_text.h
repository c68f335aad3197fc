// SPDX-License-Identifier: MIT
// Cuts the entities out of a graph cache file by plain byte searches; the Turtle grammar is not parsed. Pure rules:
// bytes in, texts out. No value is ever a null text. Linear in the file's size, whatever is in it, and nothing but the
// values of one entity is kept beside the file's bytes.
#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <string_view>

// The properties of one entity; what was not found is "". The three times are decimal Unix seconds.
struct graph_entity {
    QString search_content;
    QString creation_time;
    QString modification_time;
    QString last_access_time;
    QString name; // cut like the others, but no result column takes it
    QString entity_id;
    QString search_id;
    QString phone;
    QString latitude;
    QString longitude;
};

// Gives the entities of one file one after the other. Every property has a search cursor of its own, so the n-th
// entity gets the n-th occurrence of each property, wherever in the file that is.
class graph_text_cutter {
public:
    explicit graph_text_cutter(const QByteArray& file_content);
    // False when the file holds no further entity; entity is then untouched.
    bool next(graph_entity& entity);

private:
    struct occurrence;
    struct cursor {
        std::size_t position = 0;
        bool exhausted = false;
    };
    static constexpr std::size_t property_count = 9;

    occurrence find_next(std::size_t property);

    QByteArray content; // shared with the caller, never copied
    std::string_view text;
    std::array<cursor, property_count> cursors;
};

// The rules for one value. Each takes the bytes from start up to (not including) end, both clamped to data; an end
// before start gives no bytes. Bytes from the first zero byte on are not looked at.

// The second-to-last of at least three parts between double quotes, UTF-8, else "". An end below 1 gives "".
QString graph_original_name(const QByteArray& data, qint64 start, qint64 end);
// The same as Latin-1, without the test of end.
QString graph_quoted_value(const QByteArray& data, qint64 start, qint64 end);
// The same, passed through graph_timestamp.
QString graph_date(const QByteArray& data, qint64 start, qint64 end);
// "" for every text that is not blank; "0" for blank text.
QString graph_timestamp(const QString& text);
