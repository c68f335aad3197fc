// SPDX-License-Identifier: MIT
// bench_searches [keys ...]: the searches step over a hive with 10, 1,000 and 20,000 ".&input=" keys of five values
// each and as many ".com" keys (or the given numbers), beside hivexregedit and hivexml, which write the same hive as
// text. Whole processes, the best of several.
#include "bench/bench_front.h"
#include "bench/child_process.h"
#include "samples/hive_writer.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace {

constexpr int values_a_key = 5;
constexpr int rows_a_key = values_a_key + 1; // and one of the ".com" key
constexpr int rounds = 5;

struct bench_files {
    explicit bench_files(const QString& folder)
        : root(folder + QStringLiteral("/source/")), hive(root + QStringLiteral("Users/anna/NTUSER.DAT")),
          result(folder + QStringLiteral("/Cortana.sqlite")) {}
    QString root, hive, result;
};

// A recent document as the shell keeps it: the name in UTF-16, then the short name of the link to it.
QByteArray recent_document(int key, int value) {
    const QByteArray address = "search?q=search " + QByteArray::number(key) + " number " + QByteArray::number(value) +
                               "&form=WNSGPH&qs=SW&sbts=" + QByteArray::number(1589212345678 + key * qint64(60000));
    return utf16_text(QString::fromLatin1(address)) + QByteArray(14, '\x01') + address + ".lnk" + QByteArray(3, '\0');
}

int write_hive(const bench_files& files, int keys) {
    QStringList inputs;
    QStringList addresses;
    for (int key = 0; key < keys; ++key) {
        inputs << QStringLiteral(".&input=%1&FORM=WNSGPH").arg(key, 6, 10, QLatin1Char('0'));
        addresses << QStringLiteral(".com/search?q=number%20%1&form=QBLH&sbts=1589212345678")
                         .arg(key, 6, 10, QLatin1Char('0'));
    }
    hive_writer hive;
    const QString explorer = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\");
    int number = 0;
    for (const auto input : hive.add_keys(hive.add_path(explorer + QStringLiteral("RecentDocs")), inputs)) {
        QVector<hive_value> values;
        for (int value = 0; value < values_a_key; ++value) {
            values.append({QString::number(value), hive_t_REG_BINARY, recent_document(number, value)});
        }
        hive.set_values(input, values);
        ++number;
    }
    hive.add_keys(hive.add_path(explorer + QStringLiteral("FileExts")), addresses);
    QDir().mkpath(QFileInfo(files.hive).path());
    return hive.save(files.hive) ? 0 : 1;
}

void print(const char* what, const child_figures& figures, int keys, double compared) {
    if (!figures.succeeded) {
        std::printf("  %-13s failed\n", what);
        return;
    }
    std::printf("  %-13s %8.3f s, processor %8.3f s %8.1f us a record %7.1f MB", what, figures.seconds,
                figures.processor_seconds, figures.processor_seconds * 1e6 / (keys * rows_a_key),
                figures.peak_megabytes);
    if (compared > 0) {
        std::printf("   searches takes %.2f times as long", compared / figures.processor_seconds);
    }
    std::printf("\n");
}

void measure_tool(const char* tool, const std::vector<std::string>& arguments, int keys, double compared) {
    if (QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty()) {
        std::printf("  %-13s not installed, skipped\n", tool);
        return;
    }
    print(tool, best_of(rounds, [&] { return run_child(tool, arguments); }), keys, compared);
}

bool measure(int keys) {
    const QTemporaryDir folder;
    const bench_files files(folder.path());
    const std::string path = folder.path().toStdString();
    const std::string number = std::to_string(keys);
    const std::string hive = files.hive.toStdString();
    if (!run_self({"write", path, number}).succeeded) {
        return false;
    }
    const child_figures searches = best_of(rounds, [&] {
        return make_result_database(files.result) ? run_self({"extract", path, number}) : child_figures();
    });
    std::printf("%d + %d keys, %d records, hive of %.1f MB\n", keys, keys, keys * rows_a_key,
                static_cast<double>(QFileInfo(files.hive).size()) / (1 << 20));
    print("searches", searches, keys, 0);
    measure_tool("hivexregedit", {"--export", hive, "\\"}, keys, searches.processor_seconds);
    measure_tool("hivexml", {hive}, keys, searches.processor_seconds);
    std::fflush(stdout);
    return searches.succeeded;
}

} // namespace

int main(int argc, char** argv) {
    const std::string role = argc == 4 ? argv[1] : "";
    if (role == "write" || role == "extract") {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        const bench_files files(QFile::decodeName(argv[2]));
        const int keys = std::atoi(argv[3]);
        if (role == "write") {
            return write_hive(files, keys);
        }
        const qint64 records = extract_table(QStringLiteral("searches"), files.root, files.result);
        return records == qint64(keys) * rows_a_key ? 0 : 1;
    }
    const QCoreApplication application(argc, argv);
    QList<int> numbers;
    for (int index = 1; index < argc; ++index) {
        numbers << std::atoi(argv[index]);
    }
    if (numbers.isEmpty()) {
        numbers = {10, 1000, 20000};
    }
    bool measured = true;
    for (const int keys : qAsConst(numbers)) {
        measured = measure(keys) && measured;
    }
    return measured ? 0 : 1;
}
