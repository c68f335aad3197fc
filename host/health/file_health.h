// SPDX-License-Identifier: MIT
// What the check of one evidence file found, as plain values: a report prints them, a run record keeps them.
// Texts are complete ("its checksum is wrong") and name no path. Times are ISO 8601, ending in "Z" where the file says
// that they are UTC; null: none is there.
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

struct damaged_page {
    quint32 number = 0; // page n lies at file offset (n + 1) * page size
    QString table;      // whose page it is; empty: the file does not tell
    QString part;       // of the table: "long values", "index"; empty: its rows
    QString reason;
};

// "damaged page 117 (Container_3): its checksum is wrong"
QString text_of(const damaged_page& page);

struct table_health {
    QString name;
    quint32 object = 0;    // the id that its pages carry
    quint32 root_page = 0; // of the tree of its rows
    // Entries, deleted ones left out, of the leaf pages that the root leads to: the rows that a reader must find.
    qint64 rows = 0;
    // The same of leaf pages with this id that nothing leads to: rows lost below a damaged page, or old copies in pages
    // that were given up. They are no rows of the table.
    qint64 rows_outside = 0;
    qint64 long_value_entries = 0; // long values and their segments
    qint64 damaged_pages = 0;      // of rows and long values
    // Causes to ask the reader how much it refuses; of no meaning where pages are damaged anyway.
    qint64 doubtful_pages = 0;      // of rows: right checksum, but columns that do not lie as they must
    bool lacks_long_values = false; // rows refer to long values that are not there, or whose place is not right
};

struct ese_health {
    quint32 page_size = 0;
    quint32 version = 0;
    quint32 revision = 0;
    QString state; // "clean", "dirty", "just created", "state 7"
    QString last_consistent;
    QString last_attached;
    QString last_detached;
    qint64 pages = 0;           // in the file, without the two headers
    qint64 unwritten_pages = 0; // all zero
    qint64 damaged_pages = 0;
    QVector<damaged_page> damaged; // the first ones by number
    bool are_tables_known = false; // false: the problem or a note says why
    QVector<table_health> tables;  // by object id

    // The table of this exact name, or null.
    const table_health* table(const QString& name) const;
};

struct hive_health {
    quint32 minor_version = 0;
    quint32 primary_sequence = 0; // differs from the secondary one while writes are unfinished
    quint32 secondary_sequence = 0;
    QString last_written;
    qint64 bins_size = 0; // as the header tells it
};

struct file_health {
    QString kind; // "ESE database", "registry hive"
    qint64 size = 0;
    QString problem;      // why the readers cannot open it; empty: they can
    QStringList problems; // damage that the readers pass over or stumble on
    QStringList notes;    // what an examiner should know about it
    // Only where the header could be made out.
    std::optional<ese_health> ese;
    std::optional<hive_health> hive;
};
