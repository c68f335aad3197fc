// SPDX-License-Identifier: MIT
// The gate for evidence-chosen paths, and the walk of an evidence folder.
#include "source/directory_walk.h"
#include "source/source_guard.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class test_source_guard : public QObject {
    Q_OBJECT

    test_case_folder folder;
    QString base() const { return folder.root() + "g/"_q; }

    QByteArray native(const char* below) const { return QFile::encodeName(base()) + below; }

    QStringList walked(const QString& below, bool deep = true) const {
        QStringList names;
        (deep ? walk_directory : walk_entries_in)(base() + below, [&](const walk_entry& entry) {
            const char* kind = entry.is_regular_file ? "" : entry.is_link ? " @" : " -";
            names << entry.path.mid(base().size()) + QLatin1String(kind);
            return true;
        });
        return names;
    }

private Q_SLOTS:
    void initTestCase() {
        folder.write_file("g/in/file"_q, "x");
        folder.write_file("g/in/.hidden/b"_q, "x");
        folder.write_file("outside/secret"_q, "x");
        const std::pair<const char*, const char*> links[] = {{"file", "in/to_file"},
                                                             {"../../outside/secret", "in/to_secret"},
                                                             {"../../outside", "in/to_outside"},
                                                             {"nowhere", "in/dangling"},
                                                             {"loop", "in/loop"},
                                                             {"..", "in/up"}};
        for (const auto& [to, name] : links) {
            QCOMPARE(::symlink(to, native(name).constData()), 0);
        }
        QCOMPARE(::mkfifo(native("in/pipe").constData(), 0600), 0);
    }

    void exists_data() {
        QTest::addColumn<QString>("below");
        QTest::addColumn<bool>("let_through");
        for (const char* below : {"in/file", "in//file", "in", "in/", "in/../in/file", "in/..", "in/to_file"}) {
            QTest::newRow(below) << below << true;
        }
        for (const char* below : {"in/file/", "in/none", "no/file", "in/../../outside/secret", "in/../..",
                                  "in/to_secret", "in/to_outside/secret", "in/dangling", "in/loop"}) {
            QTest::newRow(below) << below << false;
        }
        QTest::newRow("NUL") << "in/file"_q + QChar(0) + "x"_q << false;
    }
    void exists() {
        QFETCH(QString, below);
        source_guard guard(base());
        QTEST(guard.exists(base() + below), "let_through");
        QTEST(guard.exists(base() + below), "let_through"); // also from memory
    }

    // However many folders the evidence names, the process keeps handles for others.
    void remembers_many_folders_with_few_handles() {
        const auto open_handles = [] { return QDir("/proc/self/fd"_q).entryList(QDir::NoFilter).size(); };
        source_guard guard(base());
        const int before = open_handles();
        for (int number = 0; number < 100; ++number) {
            const QString file = "g/many/%1/file"_q.arg(number);
            folder.write_file(file, "x");
            QVERIFY(guard.exists(folder.root() + file));
        }
        QVERIFY2(open_handles() < before + 50, QByteArray::number(open_handles() - before).constData());
    }

    void roots() {
        QVERIFY(QDir::setCurrent(base()));
        QVERIFY(!source_guard(QString()).exists("in/file"_q));
        QVERIFY(!source_guard(base()).exists("in/file"_q)); // a relative path is nobody's
        QVERIFY(!source_guard("/no/such/"_q).exists(base() + "in/file"_q));
        QVERIFY(source_guard("/"_q).exists(base() + "in/file"_q));
        // A sibling whose name merely begins like the root's is outside.
        source_guard narrow(base() + "in"_q);
        folder.write_file("g/in_too/file"_q, "x");
        QVERIFY(!narrow.exists(base() + "in_too/file"_q));
        QDir::setCurrent("/"_q);
    }

    void walk_lists_everything_once_and_enters_no_link() {
        QCOMPARE(walked("in"_q),
                 QStringList({"in/.hidden -"_q, "in/.hidden/b"_q, "in/dangling @"_q, "in/file"_q, "in/loop @"_q,
                              "in/pipe -"_q, "in/to_file @"_q, "in/to_outside @"_q, "in/to_secret @"_q, "in/up @"_q}));
        QCOMPARE(walked("in/"_q, false).size(), 9);
        QCOMPARE(walked("none"_q), QStringList());
        QVERIFY(walk_directory(QString(), [](const walk_entry&) { return false; })); // nothing visited
    }

    void walk_leaves_access_times_alone() {
        folder.write_file("g/times/file"_q, "x");
        const QByteArray path = native("times");
        const timespec old_access[] = {{1000000000, 0}, {1500000000, 0}}; // older than the change: would be renewed
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), old_access, 0), 0);
        QCOMPARE(walked("times"_q), QStringList("times/file"_q));
        struct stat status = {};
        QCOMPARE(::stat(path.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }

    void walk_leaves_out_paths_that_are_too_long() {
        const QByteArray name(200, 'd');
        QByteArray deepest = native("long");
        QCOMPARE(::mkdir(deepest.constData(), 0700), 0);
        int levels = 0;
        for (; deepest.size() + 2 * name.size() < PATH_MAX; ++levels) {
            deepest += '/' + name;
            QCOMPARE(::mkdir(deepest.constData(), 0700), 0);
        }
        const QByteArray longest_name(255, 'f');
        QVERIFY(deepest.size() + longest_name.size() > PATH_MAX);
        const int handle = ::open(deepest.constData(), O_RDONLY | O_DIRECTORY);
        ::close(::openat(handle, "short", O_CREAT | O_WRONLY, 0600));
        ::close(::openat(handle, longest_name.constData(), O_CREAT | O_WRONLY, 0600));
        const QStringList names = walked("long"_q);
        // Nor does the gate let it through, though the handle that it keeps on the folder would find it.
        source_guard guard(base());
        QVERIFY(guard.exists(deepest + "/short"));
        QVERIFY(!guard.exists(deepest + '/' + longest_name));
        QCOMPARE(::unlinkat(handle, longest_name.constData(), 0), 0); // no path could name it
        ::close(handle);
        QCOMPARE(names.size(), levels + 1);
        QVERIFY(names.last().endsWith("/short"_q));
    }

    void walk_stops_when_told() {
        int visited = 0;
        QVERIFY(!walk_directory(base(), [&](const walk_entry&) { return ++visited < 3; }));
        QCOMPARE(visited, 3);
    }
};

QTEST_GUILESS_MAIN(test_source_guard)
#include "test_source_guard.moc"
