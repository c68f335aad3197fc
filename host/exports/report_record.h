// SPDX-License-Identifier: MIT
// The run record beside a result database, as the report needs it. Nothing in it is trusted to have the right type.
#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

struct report_record {
    bool is_there = false; // it was read
    QString trouble;       // why it was not
    QJsonObject run;       // see docs/run_record.schema.json
    int earlier = 0;       // records of runs before it that lie beside it
    QString database;      // the result database
    QMap<QString, qint64>
        outcomes;      // of a database that was merged of several sources: what came of their runs -> sources
    QByteArray sha256; // of the database as it is now, hexadecimal; empty: it cannot be read

    qint64 number(const char* name) const;
    QString text(const char* name) const;
    QStringList texts(const char* name) const;
    // Text by name of one object in a list.
    static QString text_in(const QJsonValue& object, const char* name);
    // The digest that the run recorded of the database; empty when it did not.
    QString recorded_sha256() const;
    // Something was not read or not finished: no rows do not mean no data.
    bool has_gaps() const;
    bool is_merged() const { return !outcomes.isEmpty(); }
};

report_record read_report_record(const QString& database);
