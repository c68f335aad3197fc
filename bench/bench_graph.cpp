// SPDX-License-Identifier: MIT
// bench_graph [MEGABYTES...]: cutting of graph cache files of 1, 10 and 100 MB (or MEGABYTES each) and the whole
// graphed_cache step over them: MB/s and peak memory. Each measurement runs in a process of its own, so that the
// memory is its own. "memory" is the peak without what the process had before it took the file.
#include "bench/child_process.h"
#include "extractors/graph_text.h"
#include "tests/support/test_support.h"

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sys/resource.h>

namespace {

constexpr int bytes_per_megabyte = 1000000;

struct file_kind {
    const char* name;
    QByteArray (*piece)(int number); // of which the file is made
    const char* tail;                // stands once at the end
};

QByteArray entity(int number, const char* phone, const char* date) {
    const QByteArray id = QByteArray::number(number);
    return "<urn:entity:" + id + ">\r\n    schema:originalName \"Entity number " + id + "\" ;\r\n    schema:" + date +
           "Created \"2019-05-01T10:20:30.000Z\"^^schema:DateTime ;\r\n    schema:" + date +
           "Modified \"2019-05-02T08:00:00.000Z\"^^schema:DateTime ;\r\n    <" + date +
           "Accessed> \" \"^^schema:DateTime ;\r\n    schema:entityId \"" + id + "\" ;\r\n    schema:about \"sid:e." +
           id + "\" ;\r\n    schema:" + phone + " \"+49 89 " + id + "\" ;\r\n    schema:geo \"Point(48." + id + " 11." +
           id + ")\" ;\r\n    .\r\n";
}

const file_kind kinds[] = {
    {"all markers", [](int number) { return entity(number, "phone", "date"); }, ""},
    {"no phone", [](int number) { return entity(number, "fax", "date"); }, ""},
    {"no phone, no dates", [](int number) { return entity(number, "fax", "day"); }, ""},
    {"nothing but names", [](int) { return QByteArray("originalName\r\n"); }, ""},
    {"markers without ends", [](int) { return QByteArray("\noriginalName dateCreated sid phone Point "); }, "\r\n"},
    {"one value, as long as the file", [](int) { return QByteArray("originalName \" abc "); }, "\"\"\r\n"},
};

QByteArray file_of(const file_kind& kind, int size) {
    QByteArray content(" ");
    content.reserve(size + 1000);
    for (int number = 1; content.size() < size; ++number) {
        content += kind.piece(number);
    }
    return content + kind.tail;
}

struct figures {
    double seconds = 0;
    double base_megabytes = 0; // peak before the measurement
    int entities = 0;
};

double peak_megabytes() {
    rusage used = {};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_maxrss) * 1024 / bytes_per_megabyte;
}

// Runs work in a child process and prints its figures; ends the program when it failed.
void measure(const char* what, const file_kind& kind, int megabytes, const std::function<figures()>& work) {
    must_run([&] {
        const figures got = work();
        std::printf("%-8s %-32s %5d MB: %9.1f MB/s %9d entities, memory %7.1f MB\n", what, kind.name, megabytes,
                    megabytes / got.seconds, got.entities, peak_megabytes() - got.base_megabytes);
    });
}

// Without the making of the file: the content is read as the step reads it.
figures cut(const QString& path) {
    figures got;
    got.base_megabytes = peak_megabytes();
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    QByteArray content(static_cast<int>(file.size()), Qt::Uninitialized);
    file.read(content.data(), content.size());
    QElapsedTimer timer;
    timer.start();
    graph_text_cutter cutter(content);
    graph_entity found;
    while (cutter.next(found)) {
        ++got.entities;
    }
    got.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    return got;
}

figures extract(const test_case_folder& folder) {
    figures got;
    int argc = 1;
    char name[] = "bench_graph";
    char* argv[] = {name, nullptr};
    const QApplication application(argc, argv);
    const auto front = folder.make_front();
    front->find_source_file();
    got.base_megabytes = peak_megabytes();
    QElapsedTimer timer;
    timer.start();
    front->extract_graph_search_files();
    got.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    got.entities = folder.dump(QStringLiteral("(select count(*) as n from graphed_cache)"), {QStringLiteral("n")})
                       .first()
                       .section(QLatin1Char(':'), 1)
                       .toInt();
    return got;
}

// The parent must stay small, so another process makes the file.
void write_file(const test_case_folder& folder, const QString& path, const file_kind& kind, int megabytes) {
    must_run([&] { folder.write_file(path, file_of(kind, megabytes * bytes_per_megabyte)); });
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QVector<int> sizes;
    for (int i = 1; i < argc; ++i) {
        sizes << std::atoi(argv[i]);
    }
    if (sizes.isEmpty()) {
        sizes = {1, 10, 100};
    }
    for (const file_kind& kind : kinds) {
        for (const int megabytes : qAsConst(sizes)) {
            const test_case_folder folder;
            const QString path = folder.package_folder(QStringLiteral("anna")).mid(folder.root().size()) +
                                 QStringLiteral("LocalState/Graph/a.ttl");
            write_file(folder, path, kind, megabytes);
            measure("cut", kind, megabytes, [&] { return cut(folder.root() + path); });
            if (&kind - kinds < 2) { // the database is what costs here: the ordinary files will do
                measure("extract", kind, megabytes, [&] { return extract(folder); });
            }
        }
    }
    return 0;
}
