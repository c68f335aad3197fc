// SPDX-License-Identifier: MIT
// graphed_cache from real folders: which files are read, unreadable files, cancel, the exact log.
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

    QString graph() const {
        return folder->package_folder(QStringLiteral("anna")) + QStringLiteral("LocalState/Graph/");
    }
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
        return folder->dump(QStringLiteral("graphed_cache"), {QStringLiteral("search_content")})
            .replaceInStrings(QStringLiteral("search_content=text:"), QString());
    }
    static QString line(const char* message) {
        return QStringLiteral("cortana_winos::extract_graph_search_files:-- ") + QString::fromLatin1(message);
    }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<test_case_folder>();
        front = folder->make_front({QStringLiteral("graphed_cache")});
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
        QCOMPARE(read,
                 QStringList({QStringLiteral(".ttl"), QStringLiteral("a.ttl"), QStringLiteral("a.ttl"),
                              QStringLiteral("d-ttl"), QStringLiteral("not UTF-8"), QStringLiteral("sub/deep/e.ttl")}));
        QCOMPARE(folder->take_log(), QStringList({line("[extract_graph_search_files] ----- STARTS ------"),
                                                  line("[extract_graph_search_files] ----- ENDS ------")}));
    }

    void unreadable_files_are_passed_over() {
        add_large("a-large.ttl");
        add_file("z.ttl", entity("read"));
        folder->write_file(QStringLiteral("../outside.ttl"), entity("outside"));
        QCOMPARE(::symlink(QFile::encodeName(folder->root() + QStringLiteral("../outside.ttl")).constData(),
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
        QCOMPARE(contents(), QStringList{QStringLiteral("read")});
        QCOMPARE(folder->take_log(), wanted);
    }

    void access_times_stay() {
        add_file("a.ttl", entity("A"));
        const QByteArray path = path_of("a.ttl");
        const timespec old_access[] = {{1000000000, 0}, {1500000000, 0}}; // older than the change: would be renewed
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), old_access, 0), 0);
        extract();
        QCOMPARE(contents(), QStringList{QStringLiteral("A")});
        struct stat status = {};
        QCOMPARE(::stat(path.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }

    // A file that goes while the step runs is told like one that cannot be opened.
    void vanished_during_the_walk() {
        add_file("a.ttl", entity("refused"));
        add_file("b.ttl", entity("B"));
        folder->execute(QStringLiteral("create trigger refuse before insert on graphed_cache begin "
                                       "select raise(fail, 'no'); end"));
        const at_failure_line vanish([this] { QFile::remove(graph() + QStringLiteral("b.ttl")); });
        extract();
        QCOMPARE(folder->take_log().filter(QStringLiteral("Unable to open file in graph cache")).size(), 1);
    }

    // The folder was found under one spelling of the root and is read under another that the paths do not begin with.
    void folder_whose_path_is_outside_the_root() {
        add_file("a.ttl", entity("A"));
        front->find_source_file();
        folder->take_log();
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info other;
        other.fs_extraction_source_path = folder->root() + QStringLiteral("./");
        front->winos_set_source_info(other);
        front->extract_graph_search_files();
        // The record's null text is written as ''.
        QCOMPARE(folder->dump(QStringLiteral("graphed_cache"),
                              {QStringLiteral("source_file"), QStringLiteral("os_scheme_display")}),
                 QStringList{QStringLiteral("source_file=text:") + graph() +
                             QStringLiteral("a.ttl | os_scheme_display=text:")});
    }

    // A failure's line on the terminal makes the host cancel: what was written stays, nothing follows.
    void cancelled_at_a_failure_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("fails_in_file"); // else at the next folder entry
        QTest::newRow("between entities") << entity("A") + entity("refused") + entity("B") << true;
        QTest::newRow("between files") << entity("A") << false;
    }

    void cancelled_at_a_failure() {
        QFETCH(QByteArray, content);
        QFETCH(bool, fails_in_file);
        add_file("a.ttl", content);
        add_file("z.ttl", entity("Z"));
        if (fails_in_file) {
            folder->execute(QStringLiteral("create trigger refuse before insert on graphed_cache when "
                                           "new.search_content = 'refused' begin select raise(fail, 'no'); end"));
        } else {
            add_large("b.ttl");
        }
        const at_failure_line cancel([this] { front->winos_cancel_extraction(); });
        extract();
        QCOMPARE(contents(), QStringList{QStringLiteral("A")});
        const QStringList log = folder->take_log();
        QCOMPARE(log.first(), line("[extract_graph_search_files] ----- STARTS ------"));
        QCOMPARE(log.size(), fails_in_file ? 4 : 2); // the start and the failure
    }

    void failures_are_logged() {
        add_file("a.ttl", entity("A"));
        front->find_source_file();
        folder->take_log();
        folder->execute(QStringLiteral("drop table graphed_cache"));
        front->extract_graph_search_files();
        front->winos_set_destination_location(folder->result_dir(), QString(),
                                              folder->result_dir() + QStringLiteral("no/x.sqlite"));
        front->extract_graph_search_files();
        QVERIFY(matches_golden(folder->take_log(), QStringLiteral(GOLDEN_DIR "/graph_failures_log.txt")));
    }
};

QTEST_MAIN(test_graph_files)
#include "test_graph_files.moc"
