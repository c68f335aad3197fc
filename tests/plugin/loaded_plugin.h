// SPDX-License-Identifier: MIT
// The built library, loaded as a host loads it: one symbol, calls through the virtual table, signals by text.
#pragma once

#include "contract/host_interface.h"
#include "result_db/schema.h"
#include "tests/support/file_content.h"
#include "tests/support/test_text.h"

#include <QLibrary>

#include <memory>

// Keeps both signals in the order in which they came: "records N" and "tables N".
class signal_recorder : public QObject {
    Q_OBJECT

public:
    QStringList seen;
    bool cancels_at_a_table = false;

public Q_SLOTS:
    void records(qint64 count) { seen << "records %1"_q.arg(count); }
    void tables(int count) {
        seen << "tables %1"_q.arg(count);
        if (cancels_at_a_table) {
            static_cast<host_interface*>(sender())->pub_cancel_extraction();
        }
    }
};

// A run's settings, with what most runs share.
struct run_settings {
    QString root;   // ends in "/"
    QString result; // the debug log stands beside it: result + ".log"
    QStringList tables = {"latest_audio_search"_q};
    QStringList users = {"anna"_q};
    int engine_type = 0;
    QString scheme = "winOS"_q;
    bool encipher = false;
    QString database() const { return result + "/Artifacts_Result/Cortana/Cortana.sqlite"_q; }
    QStringList log_lines() const {
        return QString::fromUtf8(whole_file(result + ".log"_q)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
};

inline QStringList all_tables() {
    QStringList names;
    for (const result_table& table : result_tables()) {
        names << QLatin1String(table.name);
    }
    return names;
}

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
    void set_source(const run_settings& settings) const {
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = settings.root;
        source.os_scheme_display = "Windows"_q;
        source.os_scheme_internal = settings.scheme;
        for (const QString& user : settings.users) {
            source.system_account_QList.append({user, "CORP\\"_q + user});
        }
        object->pub_set_source_info(source);
    }
    // Everything that a host does before the search.
    void set_up(const run_settings& settings) const {
        object->pub_set_essentials();
        object->pub_set_engine_type(settings.engine_type);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = general.debug_print_in_file = true;
        general.debug_encryption_status = settings.encipher;
        general.debug_file_path = settings.result + ".log"_q;
        object->pub_set_general_info(general);
        object->pub_set_desktop_info({});
        set_source(settings);
        object->pub_set_source_count(1);
        object->pub_set_essential_for_vantor_desk_extraction(settings.tables, {"ignored"_q});
        object->pub_set_result_directory(settings.result);
        object->pub_create_db_tables();
    }
    void extract() const {
        object->pub_find_source_file();
        object->pub_extract_artifacts();
    }
    // Deletes the object and closes the library; false when the library cannot be closed.
    bool unload() {
        object.reset();
        return library.unload();
    }
    host_interface* operator->() const { return object.get(); }
    signal_recorder signals_seen;

private:
    QLibrary library;
    std::unique_ptr<host_interface> object;
};
