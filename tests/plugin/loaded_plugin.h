// SPDX-License-Identifier: MIT
// The built library, loaded as a host loads it: one symbol, calls through the virtual table, signals by text.
#pragma once

#include "plugin/host_interface.h"

#include <QLibrary>
#include <QObject>
#include <QVector>

#include <memory>

// Keeps both signals in the order in which they came: "records N" and "tables N".
class signal_recorder : public QObject {
    Q_OBJECT

public:
    QStringList seen;
    host_interface* cancel_at_table_1 = nullptr;

public Q_SLOTS:
    void records(qint64 count) { seen << QStringLiteral("records %1").arg(count); }
    void tables(int count) {
        seen << QStringLiteral("tables %1").arg(count);
        if (cancel_at_table_1 != nullptr) {
            cancel_at_table_1->pub_cancel_extraction();
        }
    }
};

class loaded_plugin {
public:
    loaded_plugin() : library(QStringLiteral(PLUGIN_LIBRARY)) {
        library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        const auto create = reinterpret_cast<create_object_function>(library.resolve(create_object_symbol));
        if (create == nullptr) {
            qFatal("%s", qPrintable(library.errorString()));
        }
        object.reset(static_cast<host_interface*>(create()));
        QObject::connect(object.get(), CORTANA_RECORDS_SIGNAL, &signals_seen, SLOT(records(qint64)));
        QObject::connect(object.get(), CORTANA_TABLES_SIGNAL, &signals_seen, SLOT(tables(int)));
    }
    host_interface* operator->() const { return object.get(); }
    host_interface* get() const { return object.get(); }
    signal_recorder signals_seen;

private:
    QLibrary library;
    std::unique_ptr<host_interface> object;
};
