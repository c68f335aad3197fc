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
    QString base() const { return folder.root() + QStringLiteral("g/"); }

    QStringList walked(const QString& below, bool deep = true) const {
        QStringList names;
        const auto visit = [&](const walk_entry& entry) {
            const char* kind = entry.is_regular_file ? "" : entry.is_link ? " @" : " -";
            names << entry.path.mid(base().size()) + QLatin1String(kind);
            return true;
        };
        deep ? walk_directory(base() + below, visit) : walk_entries_in(base() + below, visit);
        return names;
    }

private Q_SLOTS:
    void initTestCase() {
        folder.write_file(QStringLiteral("g/in/file"), "x");
        folder.write_file(QStringLiteral("g/in/.hidden/b"), "x");
        folder.write_file(QStringLiteral("outside/secret"), "x");
        const auto link = [this](const char* to, const char* name) {
            QCOMPARE(::symlink(to, QFile::encodeName(base() + QLatin1String(name)).constData()), 0);
        };
        link("file", "in/to_file");
        link("../../outside/secret", "in/to_secret");
        link("../../outside", "in/to_outside");
        link("nowhere", "in/dangling");
        link("loop", "in/loop");
        link("..", "in/up");
        QCOMPARE(::mkfifo(QFile::encodeName(base() + QStringLiteral("in/pipe")).constData(), 0600), 0);
    }

    void exists_data() {
        QTest::addColumn<QString>("below");
        QTest::addColumn<bool>("let_through");
        QTest::newRow("file") << "in/file" << true;
        QTest::newRow("doubled slash") << "in//file" << true;
        QTest::newRow("folder") << "in" << true;
        QTest::newRow("folder with slash") << "in/" << true;
        QTest::newRow("file with slash") << "in/file/" << false;
        QTest::newRow("missing") << "in/none" << false;
        QTest::newRow("in a missing folder") << "no/file" << false;
        QTest::newRow("up and back") << "in/../in/file" << true;
        QTest::newRow("up and out") << "in/../../outside/secret" << false;
        QTest::newRow("the root itself, by ..") << "in/.." << true;
        QTest::newRow("its parent, by ..") << "in/../.." << false;
        QTest::newRow("link inside") << "in/to_file" << true;
        QTest::newRow("link out") << "in/to_secret" << false;
        QTest::newRow("through a linked folder") << "in/to_outside/secret" << false;
        QTest::newRow("dangling") << "in/dangling" << false;
        QTest::newRow("loop") << "in/loop" << false;
        QTest::newRow("too long") << QString(32000, QLatin1Char('x')) << false;
        QTest::newRow("too deep") << QStringLiteral("d/").repeated(16000) << false;
        QTest::newRow("NUL") << QStringLiteral("in/file") + QChar(0) + QStringLiteral("x") << false;
        QTest::newRow("newline") << "in/\nfile" << false;
    }
    void exists() {
        QFETCH(QString, below);
        QFETCH(bool, let_through);
        source_guard guard(base());
        QCOMPARE(guard.exists(base() + below), let_through);
        QCOMPARE(guard.exists(base() + below), let_through); // also from memory
    }

    void roots() {
        QVERIFY(QDir::setCurrent(base()));
        QVERIFY(!source_guard(QString()).exists(QStringLiteral("in/file")));
        QVERIFY(!source_guard(base()).exists(QStringLiteral("in/file"))); // a relative path is nobody's
        QVERIFY(!source_guard(QStringLiteral("/no/such/")).exists(base() + QStringLiteral("in/file")));
        QVERIFY(source_guard(QStringLiteral("/")).exists(base() + QStringLiteral("in/file")));
        // A sibling whose name merely begins like the root's is outside.
        source_guard narrow(base() + QStringLiteral("in"));
        folder.write_file(QStringLiteral("g/in_too/file"), "x");
        QVERIFY(!narrow.exists(base() + QStringLiteral("in_too/file")));
        QDir::setCurrent(QStringLiteral("/"));
    }

    void walk_lists_everything_once_and_enters_no_link() {
        QCOMPARE(
            walked(QStringLiteral("in")),
            QStringList({QStringLiteral("in/.hidden -"), QStringLiteral("in/.hidden/b"),
                         QStringLiteral("in/dangling @"), QStringLiteral("in/file"), QStringLiteral("in/loop @"),
                         QStringLiteral("in/pipe -"), QStringLiteral("in/to_file @"), QStringLiteral("in/to_outside @"),
                         QStringLiteral("in/to_secret @"), QStringLiteral("in/up @")}));
        QCOMPARE(walked(QStringLiteral("in/"), false).size(), 9);
        QCOMPARE(walked(QStringLiteral("none")), QStringList());
        QVERIFY(walk_directory(QString(), [](const walk_entry&) { return false; })); // nothing visited
    }

    void links_count_as_what_they_lead_to_inside() {
        source_guard guard(base());
        QStringList files;
        walk_directory(base() + QStringLiteral("in"), [&](const walk_entry& entry) {
            if (leads_to_regular_file(entry, guard)) {
                files << entry.path.mid(base().size());
            }
            return true;
        });
        QCOMPARE(files, QStringList(
                            {QStringLiteral("in/.hidden/b"), QStringLiteral("in/file"), QStringLiteral("in/to_file")}));
    }

    void walk_leaves_access_times_alone() {
        folder.write_file(QStringLiteral("g/times/file"), "x");
        const QByteArray path = QFile::encodeName(base()) + "times";
        const timespec old_access[] = {{1000000000, 0}, {1500000000, 0}}; // older than the change: would be renewed
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), old_access, 0), 0);
        QCOMPARE(walked(QStringLiteral("times")), QStringList(QStringLiteral("times/file")));
        struct stat status = {};
        QCOMPARE(::stat(path.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }

    void walk_leaves_out_paths_that_are_too_long() {
        const QByteArray name(200, 'd');
        QByteArray deepest = QFile::encodeName(base()) + "long";
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
        const QStringList names = walked(QStringLiteral("long"));
        QCOMPARE(::unlinkat(handle, longest_name.constData(), 0), 0); // no path could name it
        ::close(handle);
        QCOMPARE(names.size(), levels + 1);
        QVERIFY(names.last().endsWith(QStringLiteral("/short")));
    }

    void walk_stops_when_told() {
        int visited = 0;
        QVERIFY(!walk_directory(base(), [&](const walk_entry&) { return ++visited < 3; }));
        QCOMPARE(visited, 3);
    }

    void walk_shows_names_that_are_not_utf8() {
        const QByteArray name = QFile::encodeName(base()) + "odd";
        QCOMPARE(::mkdir(name.constData(), 0700), 0);
        QFile plain(QFile::decodeName(name) + QStringLiteral("/a"));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        QCOMPARE(::rename((name + "/a").constData(), (name + "/b\xff").constData()), 0);
        walk_entry seen;
        walk_directory(base() + QStringLiteral("odd"), [&](const walk_entry& entry) {
            seen = entry;
            return true;
        });
        QCOMPARE(seen.native_path, name + "/b\xff");
        QVERIFY(seen.is_regular_file);
        QVERIFY(seen.path.endsWith(QStringLiteral("/b\uFFFD")));
        QVERIFY(source_guard(base()).exists(seen.native_path));
        QCOMPARE(::unlink(seen.native_path.constData()), 0); // the temporary folder's own clean-up cannot name it
    }
};

QTEST_GUILESS_MAIN(test_source_guard)
#include "test_source_guard.moc"
