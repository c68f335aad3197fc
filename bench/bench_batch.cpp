// SPDX-License-Identifier: MIT
// bench_batch FOLDER: what a batch costs. One source done by "batch run" beside the same source done by "extract",
// sources by the hour with one, two and four workers, and merges of 10 to 1,000 results of 1,000 rows each. FOLDER
// takes the results, about 1 GB; TMPDIR as much.
#include "bench/child_process.h"
#include "host/batch/batch_record.h"
#include "host/batch/out_folder.h"
#include "host/exports/sqlite_handles.h"
#include "host/record/file_digest.h"
#include "result_db/schema.h"
#include "samples/sample_source.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int rows_of_a_result = 1000;

void write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::exit(1);
    }
}

void run_statement(sqlite3* database, const QByteArray& statement) {
    if (sqlite3_exec(database, statement.constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        std::fprintf(stderr, "%s: %s\n", statement.constData(), sqlite3_errmsg(database));
        std::exit(1);
    }
}

// About 450 bytes a row, as the plugin writes them for cookies.
void make_result(const QString& path, int number) {
    sqlite3* opened = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &opened);
    const database_handle database(opened);
    run_statement(opened, "pragma journal_mode=off");
    run_statement(opened, "begin");
    for (const result_table& table : result_tables()) {
        run_statement(opened, table.create_statement);
    }
    run_statement(
        opened,
        "with recursive n(i) as (select 1 union all select i+1 from n where i<" + QByteArray::number(rows_of_a_result) +
            ") insert into cookies(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,"
            "export_file_paths,file_exists,windows_path,url,access_count,creation_timestamp,modification_timestamp,"
            "last_accessed_timestamp,sync_timestamp,expiration_timestamp,source_file,os_scheme_display,"
            "source_count_name) select 0,'anna','CORP\\anna','F'||i||'.cookie',i%5000,p,p,p,'NO','C:'||p,"
            "'site'||i||'.example/path?q='||i,i%9,1556712000+i,1556712000+i,1556715600+i,0,1588248000+i,"
            "'/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat','Windows','Source" +
            QByteArray::number(number) +
            "' from (select i,'/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/AC/"
            "INetCookies/F'||i||'.cookie' as p from n)");
    run_statement(opened, "commit");
}

void make_batch(const QString& folder, int results) {
    const batch::out_folder out(folder);
    QByteArray manifest;
    for (int number = 1; number <= results; ++number) {
        batch::manifest_source source;
        source.id = QStringLiteral("source%1").arg(number);
        source.path = QStringLiteral("/evidence/") + source.id;
        source.type = QStringLiteral("folder");
        source.number = number;
        const QString database = batch::database_of(out.result(source.id));
        QDir().mkpath(QFileInfo(database).path());
        make_result(database, number);
        batch::batch_record record;
        record.id = source.id;
        record.version = QStringLiteral(CORTANA_VERSION);
        record.rows = rows_of_a_result;
        record.database_sha256 = QString::fromLatin1(digest_of_file(database));
        write(out.record(source.id), QJsonDocument(to_json(record)).toJson());
        manifest += line_of(source);
    }
    write(out.manifest(), manifest);
}

void measure_merges(const QString& base) {
    constexpr int rounds = 3;
    std::puts("results       rows   seconds  processor     rows/s   peak MB");
    for (const int results : {10, 100, 300, 1000}) {
        const QString out = QStringLiteral("%1/out%2").arg(base).arg(results);
        must_run([&] { make_batch(out, results); }); // the parent must stay small
        const child_figures figures = best_of(rounds, [&] {
            return run_child(HOST_PROGRAM,
                             {"batch", "merge", out.toStdString(), "--out", base.toStdString() + "/merged"});
        });
        const double rows = 1.0 * results * rows_of_a_result;
        std::printf("%7d %10.0f %9.2f %10.2f %10.0f %9.1f%s\n", results, rows, figures.seconds,
                    figures.processor_seconds, rows / figures.seconds, figures.peak_megabytes,
                    figures.succeeded ? "" : "  FAILED");
        std::fflush(stdout);
        QDir(out).removeRecursively();
    }
}

child_figures run_anew(const std::string& folder, const std::vector<std::string>& words) {
    QDir(QString::fromStdString(folder)).removeRecursively();
    return run_child(HOST_PROGRAM, words);
}

// In turns, so that a busy machine treats both alike; the best of each.
void measure_overhead(const QString& base) {
    constexpr int rounds = 20;
    const std::string source = base.toStdString() + "/source";
    const std::string out = base.toStdString() + "/one";
    const std::string manifest = base.toStdString() + "/m.jsonl";
    must_run([&] { write_sample_source(QString::fromStdString(source)); });
    write(QString::fromStdString(manifest),
          batch::line_of(
              {QStringLiteral("one"), QString::fromStdString(source), QStringLiteral("folder"), 1, 0, {}, {}, {}}));
    child_figures plain;
    child_figures batch;
    child_figures again;
    const auto keep_best = [](child_figures& best, const child_figures& figures) {
        best = !best.succeeded || (figures.succeeded && figures.seconds < best.seconds) ? figures : best;
    };
    const std::vector<std::string> one{"batch", "run", "--manifest", manifest, "--index", "1", "--out", out};
    for (int round = 0; round < rounds; ++round) {
        keep_best(plain, run_anew(out, {"extract", "--quiet", "--jobs", "1", source, out}));
        keep_best(batch, run_anew(out, one));
        keep_best(again, run_child(HOST_PROGRAM, one));
    }
    std::printf("\none sample source: extract %.1f ms, batch run %.1f ms (%.1f ms more), done already %.1f ms\n",
                plain.seconds * 1000, batch.seconds * 1000, (batch.seconds - plain.seconds) * 1000,
                again.seconds * 1000);
}

// One sample source under many ids.
void measure_workers(const QString& base) {
    constexpr int sources = 60;
    const QString manifest = base + QStringLiteral("/many.jsonl");
    const QString out = base + QStringLiteral("/many");
    QByteArray text;
    for (int number = 1; number <= sources; ++number) {
        text += batch::line_of({QStringLiteral("s%1").arg(number),
                                base + QStringLiteral("/source"),
                                QStringLiteral("folder"),
                                number,
                                0,
                                {},
                                {},
                                {}});
    }
    write(manifest, text);
    std::puts("workers  sources an hour  processor ms a source");
    for (const int workers : {1, 2, 4}) {
        QDir(out).removeRecursively();
        const QString command =
            QStringLiteral("seq %1 | xargs -P %2 -I{} %3 batch run --manifest %4 --index {} --out %5")
                .arg(sources)
                .arg(workers)
                .arg(QStringLiteral(HOST_PROGRAM), manifest, out);
        const child_figures figures = run_child("sh", {"-c", command.toStdString()});
        std::printf("%7d %16.0f %22.1f%s\n", workers, sources * 3600 / figures.seconds,
                    figures.processor_seconds * 1000 / sources, figures.succeeded ? "" : "  FAILED");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: bench_batch FOLDER\n", stderr);
        return 2;
    }
    const QTemporaryDir folder(QString::fromLocal8Bit(argv[1]) + QStringLiteral("/bench-XXXXXX"));
    measure_overhead(folder.path());
    measure_workers(folder.path());
    measure_merges(folder.path());
    return 0;
}
