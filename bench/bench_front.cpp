// SPDX-License-Identifier: MIT
// Sets up the Windows front with what the steps need.
#include "bench/bench_front.h"

#include "common/named_connection.h"
#include "common/plugin_static_function.h"
#include "plugin/cortana_winos.h"
#include "result_db/schema.h"

#include <QFile>
#include <QSqlQuery>

bool make_result_database(const QString& path) {
    const QString connection = QStringLiteral("schema");
    QFile::remove(path);
    QSqlDatabase database = replace_connection(connection, path);
    bool made = database.open();
    for (const result_table& table : result_tables()) {
        made = made && QSqlQuery(database).exec(QLatin1String(table.create_statement));
    }
    return made;
}

qint64 extract_table(const QString& table, const QString& root, const QString& path) {
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
    source.fs_extraction_source_path = root;
    source.os_scheme_display = QStringLiteral("Windows");
    source.os_scheme_internal = QStringLiteral("winOS");
    source.system_account_QList.append({QStringLiteral("anna"), QStringLiteral("CORP\\anna")});
    plugin_static_function::set_source_info(source);
    cortana_winos front;
    qint64 records = 0;
    QObject::connect(&front, &cortana_winos::signal_extracted_records_of_plugin_winos,
                     [&](qint64 count) { records = count; });
    front.winos_set_engine_type(0);
    front.winos_set_source_info(source);
    front.winos_set_essential_for_vantor_desk_extraction({table});
    front.winos_set_destination_location(QString(), QString(), path);
    front.find_source_file();
    front.winos_extract_artifacts();
    return records;
}
