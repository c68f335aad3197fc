// SPDX-License-Identifier: MIT
// graphed_cache from real folders: which files are read, unreadable files, cancel at one.
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class test_graph_files : public QObject {
    Q_OBJECT

    std::unique_ptr<test_case_folder> folder;
    std::unique_ptr<cortana_winos> front;

    QString graph() const { return folder->package_folder("anna"_q) + "LocalState/Graph/"_q; }
    QByteArray path_of(const QByteArray& name) const { return QFile::encodeName(graph()) + name; }
    void add_file(const char* name, const QByteArray& content) const {
        folder->write_file(graph().mid(folder->root().size()) + QLatin1String(name), content);
    }
    // A sparse file beyond what is read.
    void add_large(const char* name) const {
        add_file(name, entity("too large"));
        QCOMPARE(::truncate(path_of(name).constData(), off_t(5) << 30), 0);
    }
    static QByteArray entity(const char* content) { return QByteArray(" originalName \"") + content + "\"\r\n"; }
    void extract() {
        front->find_source_file();
        folder->take_log();
        front->extract_graph_search_files();
    }
    QStringList contents() const {
        return folder->dump("graphed_cache"_q, {"search_content"_q})
            .replaceInStrings("search_content=text:"_q, QString());
    }
    static QString line(const char* message) {
        return "cortana_winos::extract_graph_search_files:-- "_q + QString::fromLatin1(message);
    }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<test_case_folder>();
        front = folder->make_front();
    }
    // The log is the process's: a case ends before the next begins.
    void cleanup() {
        front.reset();
        folder.reset();
    }

    void which_files_are_read() {
        for (const char* name :
             {"a.ttl", "b.TTL", "c.ttl.txt", "d-ttl", ".ttl", "sub/deep/e.ttl", "folder.ttl/f.txt"}) {
            add_file(name, entity(name));
        }
        add_file("x", entity("not UTF-8"));
        add_file("empty.ttl", QByteArray());
        QCOMPARE(::rename(path_of("x").constData(), path_of("x\xff.ttl").constData()), 0);
        QCOMPARE(::symlink("a.ttl", path_of("link.ttl").constData()), 0);
        QCOMPARE(::symlink("nowhere", path_of("dangling.ttl").constData()), 0);
        QCOMPARE(::mkfifo(path_of("pipe.ttl").constData(), 0600), 0);
        extract();
        // The fixture's clean-up goes by text and would miss the name.
        QCOMPARE(::unlink(path_of("x\xff.ttl").constData()), 0);
        QStringList read = contents();
        read.sort();
        QCOMPARE(read, QStringList({".ttl"_q, "a.ttl"_q, "a.ttl"_q, "d-ttl"_q, "not UTF-8"_q, "sub/deep/e.ttl"_q}));
        QCOMPARE(folder->take_log(), QStringList({line("[extract_graph_search_files] ----- STARTS ------"),
                                                  line("[extract_graph_search_files] ----- ENDS ------")}));
    }

    void unreadable_files_are_passed_over() {
        add_large("a-large.ttl");
        add_file("z.ttl", entity("read"));
        folder->write_file("../outside.ttl"_q, entity("outside"));
        QCOMPARE(::symlink(QFile::encodeName(folder->root() + "../outside.ttl"_q).constData(),
                           path_of("b-outside.ttl").constData()),
                 0);
        // A link out of the source is no file of it, like one that leads nowhere.
        QStringList wanted = {line("[extract_graph_search_files] ----- STARTS ------"),
                              line("Unable to open file in graph cache"),
                              line("[extract_graph_search_files] ----- ENDS ------")};
        if (::geteuid() != 0) { // who may read everything cannot be refused
            add_file("c-forbidden.ttl", entity("forbidden"));
            QCOMPARE(::chmod(path_of("c-forbidden.ttl").constData(), 0), 0);
            wanted.insert(1, wanted.at(1));
        }
        extract();
        QCOMPARE(contents(), QStringList{"read"_q});
        QCOMPARE(folder->take_log(), wanted);
    }

    void access_times_stay() {
        add_file("a.ttl", entity("A"));
        const QByteArray path = path_of("a.ttl");
        const timespec old_access[] = {{1000000000, 0}, {1500000000, 0}}; // older than the change: would be renewed
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), old_access, 0), 0);
        extract();
        QCOMPARE(contents(), QStringList{"A"_q});
        struct stat status = {};
        QCOMPARE(::stat(path.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }

    // A file that goes while the step runs is told like one that cannot be opened.
    void vanished_during_the_walk() {
        add_file("a.ttl", entity("refused"));
        add_file("b.ttl", entity("B"));
        folder->execute("create trigger refuse before insert on graphed_cache begin "
                        "select raise(fail, 'no'); end"_q);
        const at_failure_line vanish([this] { QFile::remove(graph() + "b.ttl"_q); });
        extract();
        QCOMPARE(folder->take_log().filter("Unable to open file in graph cache"_q).size(), 1);
    }

    // The folder was found under one spelling of the root and is read under another that the paths do not begin with.
    void folder_whose_path_is_outside_the_root() {
        add_file("a.ttl", entity("A"));
        front->find_source_file();
        folder->take_log();
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info other;
        other.fs_extraction_source_path = folder->root() + "./"_q;
        front->winos_set_source_info(other);
        front->extract_graph_search_files();
        QCOMPARE(folder->dump("graphed_cache"_q, {"source_file"_q, "os_scheme_display"_q}),
                 QStringList{"source_file=text:"_q + graph() + "a.ttl | os_scheme_display=null:"_q});
    }

    void cancelled_at_an_unreadable_file() {
        add_file("a.ttl", entity("A"));
        add_large("b.ttl");
        add_large("c.ttl");
        const at_failure_line cancel([this] { front->winos_cancel_extraction(); });
        extract();
        QCOMPARE(contents(), QStringList{"A"_q});
        QCOMPARE(folder->take_log(), QStringList({line("[extract_graph_search_files] ----- STARTS ------"),
                                                  line("Unable to open file in graph cache")}));
    }
};

QTEST_MAIN(test_graph_files)
#include "test_graph_files.moc"
