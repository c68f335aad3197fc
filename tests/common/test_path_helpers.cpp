// SPDX-License-Identifier: MIT
// User names, labels, file times, folder sizes, and the operations on the plugin's own folders.
#include "common/birth_time.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using shared = plugin_static_function;

class test_path_helpers : public QObject {
    Q_OBJECT

    test_case_folder folder{{{"anna"_q, "CORP\\anna"_q}, {"anna"_q, "second"_q}, {"bernd"_q, QString()}}};

private Q_SLOTS:
    void init() { shared::set_cancel_extraction(false); }

    void user_names_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("system_user");
        QTest::addColumn<QString>("domain_user");
        const auto row = [](const char* name, const char* path, const char* system_user, const char* domain_user = "") {
            QTest::newRow(name) << path << system_user << domain_user;
        };
        row("known", "/r/Users/anna/NTUSER.DAT", "anna", "CORP\\anna");
        row("folder only", "/r/Users/bernd/", "bernd");
        row("other case is another user", "/r/Users/Anna/x", "Anna");
        row("shorter than the root", "/r", "");
        row("not below the root: cut all the same", "/q/Users/anna/x", "anna", "CORP\\anna");
        row("empty folder name", "/r/Users//x", "");
    }
    void user_names() {
        QFETCH(QString, path);
        const auto users = shared::extract_user_name_from_sourcefile(path, "/r/"_q);
        QTEST(users.first, "system_user");
        QTEST(users.second, "domain_user");
        // '' in the database, not NULL, but for the text that the host gave as null.
        QVERIFY(!users.first.isNull());
        QCOMPARE(users.second.isNull(), users.first == "bernd"_q);
    }

    void user_names_without_accounts() {
        const auto accounts = shared::system_account_QList;
        shared::system_account_QList.clear();
        const auto users = shared::extract_user_name_from_sourcefile("/r/Users/anna/x"_q, "/r/"_q);
        shared::system_account_QList = accounts;
        QCOMPARE(users, qMakePair(QString(), QString()));
        QVERIFY(!users.first.isNull() && !users.second.isNull());
    }

    void final_source_file() {
        const char* const home = "macOS_Home_Directory";
        const char* const cases[][5] = {
            {"Users/anna/x", "anna", "", "/Users/anna/x", ""},
            {"  ", "", "", "  ", ""},
            {"/Volumes/d/Users/anna/x", "anna", home, "/x", "/Volumes/d/Users/anna/x"},
            {"a/b", "zoe", home, "/a/b", "a/b"},
        };
        for (const auto& [source_file, cut_text, kind, shown, as_passed] : cases) {
            const auto files = shared::get_final_artifact_source_file(QLatin1String(source_file),
                                                                      QLatin1String(cut_text), QLatin1String(kind));
            QCOMPARE(files.first, QLatin1String(shown));
            QCOMPARE(files.second, QLatin1String(as_passed));
        }
    }

    void times() {
        folder.write_file("a.bin"_q, "x");
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
        QCOMPARE(times.creation, has_birth_time ? qint64(status.stx_btime.tv_sec) : birth_time_in_attribute(path));
        for (const char* missing : {"", "  ", "blank.bin "}) {
            const file_times none = shared::get_posix_timestamp(QLatin1String(missing), folder.root());
            QCOMPARE(none.creation + none.last_access + none.last_modification, qint64(0));
        }
    }

    void ntfs_time_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<qint64>("seconds");
        const auto row = [](const char* name, const char* hex, qint64 seconds) {
            QTest::newRow(name) << QByteArray::fromHex(hex) << seconds;
        };
        row("2020", "01d627ac2a354280", 1589212345);
        row("not a whole second", "01d627ac2acdd8ff", 1589212345);
        row("1601", "0000000000000001", -11644473599);
        row("none", "0000000000000000", 0);
        row("beyond 63 bits", "81d627ac2a354280", 0);
        row("short", "01d627ac2a3542", 0);
        row("long", "01d627ac2a35428000", 0);
        row("empty", "", 0);
    }
    // The value itself, and as an attribute of a file; a user's own attribute stands for ntfs-3g's.
    void ntfs_time() {
        QFETCH(QByteArray, value);
        QTEST(unix_seconds_of_ntfs_time(value), "seconds");
        folder.write_file("born.bin"_q, "x");
        const QByteArray path = QFile::encodeName(folder.root() + "born.bin"_q);
        constexpr const char* attribute = "user.crtime_be";
        QCOMPARE(birth_time_in_attribute(path, attribute), qint64(0));
        if (::setxattr(path.constData(), attribute, value.constData(), size_t(value.size()), 0) != 0) {
            QSKIP("the file system of the temporary folder takes no extended attributes", 0);
        }
        QTEST(birth_time_in_attribute(path, attribute), "seconds");
        QCOMPARE(::removexattr(path.constData(), attribute), 0);
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
        const QString tmp = folder.result_dir() + "tmp"_q;
        QDir().mkpath(tmp + "/.hidden/deep"_q);
        QFile::link(keep, tmp + "/link_to_folder"_q);
        QFile::link("nowhere"_q, tmp + "/.hidden/dangling"_q);
        shared::remove_directory(tmp + "/"_q);
        QVERIFY(!QFileInfo::exists(tmp));
        // A link in place of the folder is unlinked, with or without a "/" behind it; what it leads to stays.
        for (const char* slash : {"", "/"}) {
            QFile::link(keep, tmp);
            shared::remove_directory(tmp + QLatin1String(slash));
            QVERIFY(!QFileInfo(tmp).isSymLink());
        }
        QVERIFY(QDir::setCurrent(keep));
        shared::remove_directory(QString());
        QVERIFY(QDir::setCurrent("/"_q));
        QVERIFY(QFileInfo::exists(keep + "/precious"_q));
    }

    void free_names() {
        const QString dir = folder.result_dir() + "new/deep"_q;
        const QString caller = "void caller()"_q;
        const auto next = [&] { return shared::get_available_file(dir, "/evidence/a.wav"_q, caller); };
        for (const char* expected : {"a.wav", "1_a.wav", "2_a.wav"}) {
            QCOMPARE(next(), QLatin1String(expected));
            folder.write_file("../result/new/deep/"_q + QLatin1String(expected), "x");
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
