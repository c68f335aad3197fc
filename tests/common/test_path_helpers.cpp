// SPDX-License-Identifier: MIT
// User names, labels, file times and sizes, and the operations on the plugin's own folders.
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using shared = plugin_static_function;

class test_path_helpers : public QObject {
    Q_OBJECT

    test_case_folder folder{{{"anna"_q, "CORP\\anna"_q}, {"anna"_q, "second"_q}, {"bernd"_q, QString()}}};
    QString scratch() const { return folder.result_dir() + "scratch/"_q; }

private Q_SLOTS:
    void init() {
        shared::set_cancel_extraction(false);
        QDir(scratch()).removeRecursively();
        QDir().mkpath(scratch());
    }

    void source_name() {
        shared::set_source_count(12);
        QCOMPARE(shared::get_source_count_name(), "Source12"_q);
        shared::set_source_count(-1);
        QCOMPARE(shared::get_source_count_name(), "Source-1"_q);
    }

    void user_names_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("system_user");
        QTest::addColumn<QString>("domain_user");
        const auto row = [](const char* name, const char* path, const char* system_user, const char* domain_user = "") {
            QTest::newRow(name) << path << system_user << domain_user;
        };
        row("known", "/r/Users/anna/NTUSER.DAT", "anna", "CORP\\anna");
        row("folder only", "/r/Users/bernd/", "bernd");
        row("unknown", "/r/Users/carla/x", "carla");
        row("other case is another user", "/r/Users/Anna/x", "Anna");
        row("no folder", "/r/Users", "");
        row("shorter than the root", "/r", "");
        row("not below the root: cut all the same", "/q/Users/anna/x", "anna", "CORP\\anna");
        row("empty folder name", "/r/Users//x", "");
    }
    void user_names() {
        QFETCH(QString, path);
        const auto users = shared::extract_user_name_from_sourcefile(path, "/r/"_q);
        QTEST(users.first, "system_user");
        QTEST(users.second, "domain_user");
        QVERIFY(!users.first.isNull() && !users.second.isNull()); // '' in the database, not NULL
    }

    void user_names_without_accounts() {
        const auto accounts = shared::system_account_QList;
        shared::system_account_QList.clear();
        const auto users = shared::extract_user_name_from_sourcefile("/r/Users/anna/x"_q, "/r/"_q);
        shared::system_account_QList = accounts;
        QCOMPARE(users, qMakePair(QString(), QString()));
        QVERIFY(!users.first.isNull() && !users.second.isNull());
    }

    void final_source_file_data() {
        QTest::addColumn<QString>("source_file");
        QTest::addColumn<QString>("cut_text");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("as_passed");
        const auto row = [](const char* name, const char* source_file, const char* cut_text, const char* kind,
                            const char* shown, const char* as_passed) {
            QTest::newRow(name) << source_file << cut_text << kind << shown << as_passed;
        };
        row("slash added", "Users/anna/x", "anna", "", "/Users/anna/x", "");
        row("slash kept", "/Users/anna/x", "anna", "", "/Users/anna/x", "");
        row("blank stays blank", "  ", "", "", "  ", "");
        const char* const home = "macOS_Home_Directory";
        row("home folder", "/Volumes/d/Users/anna/x", "anna", home, "/x", "/Volumes/d/Users/anna/x");
        row("home folder, text absent", "a/b", "zoe", home, "/a/b", "a/b");
    }
    void final_source_file() {
        QFETCH(QString, source_file);
        QFETCH(QString, cut_text);
        QFETCH(QString, kind);
        const auto files = shared::get_final_artifact_source_file(source_file, cut_text, kind);
        QTEST(files.first, "shown");
        QTEST(files.second, "as_passed");
    }

    void times_and_sizes() {
        folder.write_file("a.bin"_q, QByteArray(1234, 'x'));
        folder.write_file("blank.bin "_q, "x");
        const QByteArray path = QFile::encodeName(folder.root() + "a.bin"_q);
        const timespec accessed_and_modified[] = {{1589192430, 999999999}, {1500000000, 1}};
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), accessed_and_modified, 0), 0);
        const file_times times = shared::get_posix_timestamp(" a.bin "_q, folder.root());
        QCOMPARE(times.last_access, qint64(1589192430));
        QCOMPARE(times.last_modification, qint64(1500000000));
        struct statx status = {};
        QCOMPARE(::statx(AT_FDCWD, path.constData(), 0, STATX_BTIME, &status), 0);
        const bool has_birth_time = (status.stx_mask & STATX_BTIME) != 0;
        QVERIFY(!has_birth_time || times.creation > 0);
        QCOMPARE(times.creation, has_birth_time ? qint64(status.stx_btime.tv_sec) : 0);
        for (const char* missing : {"missing", "", "  ", "blank.bin "}) {
            const file_times none = shared::get_posix_timestamp(QLatin1String(missing), folder.root());
            QCOMPARE(none.creation + none.last_access + none.last_modification, qint64(0));
        }
        QCOMPARE(shared::mining_size(folder.root() + "a.bin"_q), "1234"_q);
        QCOMPARE(shared::mining_size(folder.root() + "missing"_q), ""_q);
        QVERIFY(!shared::mining_size(QString()).isNull());
    }

    void folder_size() {
        folder.write_file("d/one"_q, QByteArray(10, 'x'));
        folder.write_file("d/deep/.hidden"_q, QByteArray(100, 'x'));
        folder.write_file("outside"_q, QByteArray(1000, 'x'));
        const QString path = folder.root() + "d"_q;
        folder.write_file("d/x"_q, QByteArray(10000, 'x'));
        const QByteArray native = QFile::encodeName(path);
        const QByteArray undecodable = native + "/x\xff";
        QCOMPARE(::rename((native + "/x").constData(), undecodable.constData()), 0);
        QFile::link(folder.root() + "outside"_q, path + "/link"_q);
        const QString size = shared::mining_size(path);
        QCOMPARE(::unlink(undecodable.constData()), 0); // the temporary folder's own clean-up cannot name it
        QCOMPARE(size, "10110"_q);
        QDir().mkpath(folder.root() + "empty"_q);
        QCOMPARE(shared::mining_size(folder.root() + "empty"_q), "0"_q);
        shared::set_cancel_extraction(true);
        QCOMPARE(shared::mining_size(path), QString::number(QFileInfo(path).size()));
    }

    void removing_stays_inside() {
        folder.write_file("keep/precious"_q, "x");
        const QString keep = folder.root() + "keep"_q;
        QDir().mkpath(scratch() + "tmp/.hidden/deep"_q);
        QFile::link(keep, scratch() + "tmp/link_to_folder"_q);
        QFile::link(scratch() + "nowhere"_q, scratch() + "tmp/.hidden/dangling"_q);
        shared::remove_directory(scratch() + "tmp/"_q);
        QVERIFY(!QFileInfo::exists(scratch() + "tmp"_q));
        QVERIFY(QFileInfo::exists(keep + "/precious"_q));

        // A link in place of the folder is unlinked, with or without a "/" behind it; what it leads to stays.
        for (const char* name : {"tmp", "tmp/"}) {
            QFile::link(keep, scratch() + "tmp"_q);
            shared::remove_directory(scratch() + QLatin1String(name));
            QVERIFY(!QFileInfo(scratch() + "tmp"_q).isSymLink());
            QVERIFY(QFileInfo::exists(keep + "/precious"_q));
        }

        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(keep));
        shared::remove_directory(QString());
        QVERIFY(QDir::setCurrent(before));
        QVERIFY(QFileInfo::exists(keep + "/precious"_q));
    }

    void free_names() {
        const QString dir = scratch() + "new/deep"_q;
        const QString caller = "void caller()"_q;
        const auto next = [&] { return shared::get_available_file(dir, "/evidence/a.wav"_q, caller); };
        for (const char* expected : {"a.wav", "1_a.wav", "2_a.wav"}) {
            QCOMPARE(next(), QLatin1String(expected));
            QFile file(dir + QLatin1Char('/') + QLatin1String(expected));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(shared::is_file_exist_in_dir(dir, " a.wav "_q, caller));
        QVERIFY(!shared::is_file_exist_in_dir(dir, "A.wav"_q, caller));
        shared::set_cancel_extraction(true);
        QCOMPARE(next(), ""_q);
        QVERIFY(!shared::is_file_exist_in_dir(dir, "a.wav"_q, caller));
    }
};

QTEST_GUILESS_MAIN(test_path_helpers)
#include "test_path_helpers.moc"
