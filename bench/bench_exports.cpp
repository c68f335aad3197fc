// SPDX-License-Identifier: MIT
// bench_exports [ROWS [FORMATS]]: `cortana export` of a table of 1,000,000 rows (or ROWS) in every format (or those
// named, separated by commas), beside what the sqlite3 shell needs for the same table as CSV: seconds, rows a second
// and peak memory. Each in a process of its own.
#include "bench/child_process.h"
#include "host/exports/formats.h"
#include "host/exports/sqlite_handles.h"
#include "result_db/schema.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

void run_statement(sqlite3* database, const QByteArray& statement) {
    char* error = nullptr;
    if (sqlite3_exec(database, statement.constData(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::fprintf(stderr, "%s: %s\n", statement.constData(), error);
        std::exit(1);
    }
}

// Rows as the plugin writes them for cookies; the database makes them itself.
void make_database(const QByteArray& path, const QByteArray& rows) {
    sqlite3* opened = nullptr;
    sqlite3_open(path.constData(), &opened);
    const database_handle database(opened);
    run_statement(opened, "pragma journal_mode=off");
    for (const result_table& table : result_tables()) {
        run_statement(opened, table.create_statement);
    }
    run_statement(
        opened,
        "with recursive n(i) as (select 1 union all select i+1 from n where i<" + rows +
            ") insert into cookies(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,"
            "export_file_paths,file_exists,windows_path,url,access_count,creation_timestamp,modification_timestamp,"
            "last_accessed_timestamp,sync_timestamp,expiration_timestamp,source_file,os_scheme_display,"
            "source_count_name) select 0,'anna','CORP\\anna','F'||i||'.cookie',i%5000,p,p,p,'NO','C:'||p,"
            "'site'||i||'.example/path?q=\"'||i||'\",'||i,i%9,1556712000+i,1556712000+i,1556715600+i,0,1588248000+i,"
            "'/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat','Windows','Source1' from (select "
            "i,'/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/AC/INetCookies/F'||i"
            "||'.cookie' as p from n)");
}

void print(const char* what, const child_figures& figures, qint64 rows) {
    std::printf("%-12s %7.2f s, %7.2f s of the processor, %8.0f rows/s, peak %6.1f MB%s\n", what, figures.seconds,
                figures.processor_seconds, static_cast<double>(rows) / figures.seconds, figures.peak_megabytes,
                figures.succeeded ? "" : "  FAILED");
}

} // namespace

int main(int argc, char** argv) {
    constexpr int rounds = 3;
    const QByteArray rows = argc > 1 ? argv[1] : "1000000";
    const QStringList formats = argc > 2 ? QString::fromUtf8(argv[2]).split(QLatin1Char(',')) : format_names();
    const QTemporaryDir folder;
    const std::string database = folder.filePath(QStringLiteral("Cortana.sqlite")).toStdString();
    const std::string out = folder.filePath(QStringLiteral("out")).toStdString();
    must_run([&] { make_database(database.c_str(), rows); }); // the parent must stay small
    const child_figures shell = best_of(rounds, [&] {
        return run_child("sqlite3", {"-csv", "-header", "-cmd", ".output " + out, database, "select * from cookies"});
    });
    print("sqlite3 -csv", shell, rows.toLongLong());
    QFile::remove(QString::fromStdString(out));
    for (const QString& format : formats) {
        const child_figures figures = best_of(format == QLatin1String("xlsx") ? 1 : rounds, [&] {
            return run_child(HOST_PROGRAM, {"export", "--tables", "cookies,place_reminders", "--format",
                                            format.toStdString(), "--out", out, database});
        });
        print(qPrintable(format), figures, rows.toLongLong());
        if (format == QLatin1String("csv")) {
            std::printf("%-12s %7.2f times the processor of sqlite3, %.2f times its seconds\n", "",
                        figures.processor_seconds / shell.processor_seconds, figures.seconds / shell.seconds);
        }
    }
    return 0;
}
