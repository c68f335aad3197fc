// SPDX-License-Identifier: MIT
// graphed_cache from real folders: every column typed, which files are read, unreadable files, cancel, the exact log.
#include "evidence/sample_source.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class test_graph_files : public QObject {
    Q_OBJECT

    static QString graph(const test_case_folder& folder) {
        return folder.package_folder(QStringLiteral("anna")) + QStringLiteral("LocalState/Graph/");
    }
    static void add_file(const test_case_folder& folder, const QString& name, const QByteArray& content) {
        folder.write_file(graph(folder).mid(folder.root().size()) + name, content);
    }
    static QByteArray entity(const char* content) { return QByteArray(" originalName \"") + content + "\"\r\n"; }
    static std::unique_ptr<cortana_winos> ready_front(test_case_folder& folder) {
        auto front = folder.make_front({QStringLiteral("graphed_cache")});
        front->find_source_file();
        folder.take_log();
        return front;
    }
    static QStringList contents(const test_case_folder& folder) {
        return folder.dump(QStringLiteral("graphed_cache"), {QStringLiteral("search_content")})
            .replaceInStrings(QStringLiteral("search_content=text:"), QString());
    }
    static QString line(const char* message) {
        return QStringLiteral("cortana_winos::extract_graph_search_files:-- ") + QString::fromLatin1(message);
    }

private Q_SLOTS:
    void whole_rows() {
        test_case_folder folder;
        QVERIFY(write_sample_graph({folder.root(), QStringLiteral("anna"), 0}));
        auto front = ready_front(folder);
        front->winos_set_record_count(40);
        QSignalSpy records(front.get(), SIGNAL(signal_extracted_records_of_plugin_winos(qint64)));
        front->winos_extract_artifacts();
        QVERIFY(
            matches_golden(folder.dump(QStringLiteral("graphed_cache")), QStringLiteral(GOLDEN_DIR "/graph_rows.txt")));
        QCOMPARE(records.last().first().toLongLong(), qint64(43));
    }

    void which_files_are_read() {
        test_case_folder folder;
        for (const char* name :
             {"a.ttl", "b.TTL", "c.ttl.txt", "d-ttl", ".ttl", "sub/deep/e.ttl", "folder.ttl/f.txt"}) {
            add_file(folder, QLatin1String(name), entity(name));
        }
        add_file(folder, QStringLiteral("x"), entity("not UTF-8"));
        add_file(folder, QStringLiteral("empty.ttl"), QByteArray());
        const QByteArray base = QFile::encodeName(graph(folder));
        QCOMPARE(::rename((base + "x").constData(), (base + "x\xff.ttl").constData()), 0);
        QCOMPARE(::symlink("a.ttl", (base + "link.ttl").constData()), 0);
        QCOMPARE(::symlink("nowhere", (base + "dangling.ttl").constData()), 0);
        QCOMPARE(::mkfifo((base + "pipe.ttl").constData(), 0600), 0);
        auto front = ready_front(folder);
        front->extract_graph_search_files();
        // The fixture's clean-up goes by text and would miss the name.
        QCOMPARE(::unlink((base + "x\xff.ttl").constData()), 0);
        QStringList read = contents(folder);
        read.sort();
        QCOMPARE(read,
                 QStringList({QStringLiteral(".ttl"), QStringLiteral("a.ttl"), QStringLiteral("a.ttl"),
                              QStringLiteral("d-ttl"), QStringLiteral("not UTF-8"), QStringLiteral("sub/deep/e.ttl")}));
        QCOMPARE(folder.take_log(), QStringList({line("[extract_graph_search_files] ----- STARTS ------"),
                                                 line("[extract_graph_search_files] ----- ENDS ------")}));
    }

    void unreadable_files_are_passed_over() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a-large.ttl"), entity("too large"));
        add_file(folder, QStringLiteral("z.ttl"), entity("read"));
        folder.write_file(QStringLiteral("../outside.ttl"), entity("outside"));
        const QByteArray base = QFile::encodeName(graph(folder));
        QCOMPARE(::truncate((base + "a-large.ttl").constData(), off_t(5) << 30), 0); // sparse
        QCOMPARE(::symlink(QFile::encodeName(folder.root() + QStringLiteral("../outside.ttl")).constData(),
                           (base + "b-outside.ttl").constData()),
                 0);
        // A link out of the source is no file of it, like one that leads nowhere.
        QStringList wanted = {line("[extract_graph_search_files] ----- STARTS ------"),
                              line("Unable to open file in graph cache"),
                              line("[extract_graph_search_files] ----- ENDS ------")};
        if (::geteuid() != 0) { // who may read everything cannot be refused
            add_file(folder, QStringLiteral("c-forbidden.ttl"), entity("forbidden"));
            QCOMPARE(::chmod((base + "c-forbidden.ttl").constData(), 0), 0);
            wanted.insert(1, wanted.at(1));
        }
        auto front = ready_front(folder);
        front->extract_graph_search_files();
        QCOMPARE(contents(folder), QStringList{QStringLiteral("read")});
        QCOMPARE(folder.take_log(), wanted);
    }

    void access_times_stay() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.ttl"), entity("A"));
        const QByteArray path = QFile::encodeName(graph(folder) + QStringLiteral("a.ttl"));
        const timespec old_access[] = {{1000000000, 0}, {1500000000, 0}}; // older than the change: would be renewed
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), old_access, 0), 0);
        ready_front(folder)->extract_graph_search_files();
        QCOMPARE(contents(folder), QStringList{QStringLiteral("A")});
        struct stat status = {};
        QCOMPARE(::stat(path.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }

    // A file that goes while the step runs is told like one that cannot be opened.
    void vanished_during_the_walk() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.ttl"), entity("refused"));
        add_file(folder, QStringLiteral("b.ttl"), entity("B"));
        folder.execute(QStringLiteral("create trigger refuse before insert on graphed_cache begin "
                                      "select raise(fail, 'no'); end"));
        auto front = ready_front(folder);
        const at_failure_line vanish([&folder] { QFile::remove(graph(folder) + QStringLiteral("b.ttl")); });
        front->extract_graph_search_files();
        QCOMPARE(folder.take_log().filter(QStringLiteral("Unable to open file in graph cache")).size(), 1);
    }

    // The folder was found under one spelling of the root and is read under another that the paths do not begin with.
    void folder_whose_path_is_outside_the_root() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.ttl"), entity("A"));
        auto front = ready_front(folder);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info other;
        other.fs_extraction_source_path = folder.root() + QStringLiteral("./");
        front->winos_set_source_info(other);
        front->extract_graph_search_files();
        // The record's null text is written as ''.
        QCOMPARE(folder.dump(QStringLiteral("graphed_cache"),
                             {QStringLiteral("source_file"), QStringLiteral("os_scheme_display")}),
                 QStringList{QStringLiteral("source_file=text:") + graph(folder) +
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
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.ttl"), content);
        add_file(folder, QStringLiteral("z.ttl"), entity("Z"));
        if (fails_in_file) {
            folder.execute(QStringLiteral("create trigger refuse before insert on graphed_cache when "
                                          "new.search_content = 'refused' begin select raise(fail, 'no'); end"));
        } else {
            add_file(folder, QStringLiteral("b.ttl"), QByteArray());
            const QByteArray large = QFile::encodeName(graph(folder) + QStringLiteral("b.ttl"));
            QCOMPARE(::truncate(large.constData(), off_t(5) << 30), 0);
        }
        auto front = ready_front(folder);
        const at_failure_line cancel([&front] { front->winos_cancel_extraction(); });
        front->extract_graph_search_files();
        QCOMPARE(contents(folder), QStringList{QStringLiteral("A")});
        const QStringList log = folder.take_log();
        QCOMPARE(log.first(), line("[extract_graph_search_files] ----- STARTS ------"));
        QCOMPARE(log.size(), fails_in_file ? 4 : 2); // the start and the failure
    }

    void failures_are_logged() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.ttl"), entity("A"));
        auto front = ready_front(folder);
        folder.execute(QStringLiteral("drop table graphed_cache"));
        front->extract_graph_search_files();
        front->winos_set_destination_location(folder.result_dir(), QString(),
                                              folder.result_dir() + QStringLiteral("no/x.sqlite"));
        front->extract_graph_search_files();
        QVERIFY(matches_golden(folder.take_log(), QStringLiteral(GOLDEN_DIR "/graph_failures_log.txt")));
    }
};

QTEST_MAIN(test_graph_files)
#include "test_graph_files.moc"
