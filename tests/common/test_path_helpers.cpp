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

    test_case_folder folder{{{QStringLiteral("anna"), QStringLiteral("CORP\\anna")},
                             {QStringLiteral("anna"), QStringLiteral("second")},
                             {QStringLiteral("bernd"), QString()}}};
    QString scratch() const { return folder.result_dir() + QStringLiteral("scratch/"); }

private Q_SLOTS:
    void init() {
        shared::set_cancel_extraction(false);
        QDir(scratch()).removeRecursively();
        QDir().mkpath(scratch());
    }

    void source_name() {
        shared::set_source_count(12);
        QCOMPARE(shared::get_source_count_name(), QStringLiteral("Source12"));
        shared::set_source_count(-1);
        QCOMPARE(shared::get_source_count_name(), QStringLiteral("Source-1"));
    }

    void user_names_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("system_user");
        QTest::addColumn<QString>("domain_user");
        QTest::newRow("known") << "/r/Users/anna/NTUSER.DAT"
                               << "anna"
                               << "CORP\\anna";
        QTest::newRow("folder only") << "/r/Users/bernd/"
                                     << "bernd"
                                     << "";
        QTest::newRow("unknown") << "/r/Users/carla/x"
                                 << "carla"
                                 << "";
        QTest::newRow("other case is another user") << "/r/Users/Anna/x"
                                                    << "Anna"
                                                    << "";
        QTest::newRow("no folder") << "/r/Users"
                                   << ""
                                   << "";
        QTest::newRow("shorter than the root") << "/r"
                                               << ""
                                               << "";
        QTest::newRow("not below the root: cut all the same") << "/q/Users/anna/x"
                                                              << "anna"
                                                              << "CORP\\anna";
        QTest::newRow("empty folder name") << "/r/Users//x"
                                           << ""
                                           << "";
    }
    void user_names() {
        QFETCH(QString, path);
        QFETCH(QString, system_user);
        QFETCH(QString, domain_user);
        const auto users = shared::extract_user_name_from_sourcefile(path, QStringLiteral("/r/"));
        QCOMPARE(users.first, system_user);
        QCOMPARE(users.second, domain_user);
        QVERIFY(!users.first.isNull() && !users.second.isNull()); // '' in the database, not NULL
    }

    void user_names_without_accounts() {
        const auto accounts = shared::system_account_QList;
        shared::system_account_QList.clear();
        const auto users =
            shared::extract_user_name_from_sourcefile(QStringLiteral("/r/Users/anna/x"), QStringLiteral("/r/"));
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
        QTest::newRow("slash added") << "Users/anna/x"
                                     << "anna"
                                     << ""
                                     << "/Users/anna/x"
                                     << "";
        QTest::newRow("slash kept") << "/Users/anna/x"
                                    << "anna"
                                    << ""
                                    << "/Users/anna/x"
                                    << "";
        QTest::newRow("blank stays blank") << "  "
                                           << ""
                                           << ""
                                           << "  "
                                           << "";
        QTest::newRow("home folder") << "/Volumes/d/Users/anna/x"
                                     << "anna"
                                     << "macOS_Home_Directory"
                                     << "/x"
                                     << "/Volumes/d/Users/anna/x";
        QTest::newRow("home folder, text absent") << "a/b"
                                                  << "zoe"
                                                  << "macOS_Home_Directory"
                                                  << "/a/b"
                                                  << "a/b";
    }
    void final_source_file() {
        QFETCH(QString, source_file);
        QFETCH(QString, cut_text);
        QFETCH(QString, kind);
        QFETCH(QString, shown);
        QFETCH(QString, as_passed);
        QCOMPARE(shared::get_final_artifact_source_file(source_file, cut_text, kind), qMakePair(shown, as_passed));
    }

    void times_and_sizes() {
        folder.write_file(QStringLiteral("a.bin"), QByteArray(1234, 'x'));
        folder.write_file(QStringLiteral("blank.bin "), "x");
        const QByteArray path = QFile::encodeName(folder.root() + QStringLiteral("a.bin"));
        const timespec accessed_and_modified[] = {{1589192430, 999999999}, {1500000000, 1}};
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), accessed_and_modified, 0), 0);
        const file_times times = shared::get_posix_timestamp(QStringLiteral(" a.bin "), folder.root());
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
        QCOMPARE(shared::mining_size(folder.root() + QStringLiteral("a.bin")), QStringLiteral("1234"));
        QCOMPARE(shared::mining_size(folder.root() + QStringLiteral("missing")), QStringLiteral(""));
        QVERIFY(!shared::mining_size(QString()).isNull());
    }

    void folder_size() {
        folder.write_file(QStringLiteral("d/one"), QByteArray(10, 'x'));
        folder.write_file(QStringLiteral("d/deep/.hidden"), QByteArray(100, 'x'));
        folder.write_file(QStringLiteral("outside"), QByteArray(1000, 'x'));
        const QString path = folder.root() + QStringLiteral("d");
        folder.write_file(QStringLiteral("d/x"), QByteArray(10000, 'x'));
        const QByteArray native = QFile::encodeName(path);
        const QByteArray undecodable = native + "/x\xff";
        QCOMPARE(::rename((native + "/x").constData(), undecodable.constData()), 0);
        QFile::link(folder.root() + QStringLiteral("outside"), path + QStringLiteral("/link"));
        const QString size = shared::mining_size(path);
        QCOMPARE(::unlink(undecodable.constData()), 0); // the temporary folder's own clean-up cannot name it
        QCOMPARE(size, QStringLiteral("10110"));
        QDir().mkpath(folder.root() + QStringLiteral("empty"));
        QCOMPARE(shared::mining_size(folder.root() + QStringLiteral("empty")), QStringLiteral("0"));
        shared::set_cancel_extraction(true);
        QCOMPARE(shared::mining_size(path), QString::number(QFileInfo(path).size()));
    }

    void removing_stays_inside() {
        folder.write_file(QStringLiteral("keep/precious"), "x");
        const QString keep = folder.root() + QStringLiteral("keep");
        QDir().mkpath(scratch() + QStringLiteral("tmp/.hidden/deep"));
        QFile::link(keep, scratch() + QStringLiteral("tmp/link_to_folder"));
        QFile::link(scratch() + QStringLiteral("nowhere"), scratch() + QStringLiteral("tmp/.hidden/dangling"));
        shared::remove_directory(scratch() + QStringLiteral("tmp/"));
        QVERIFY(!QFileInfo::exists(scratch() + QStringLiteral("tmp")));
        QVERIFY(QFileInfo::exists(keep + QStringLiteral("/precious")));

        // A link in place of the folder is unlinked, with or without a "/" behind it; what it leads to stays.
        for (const char* name : {"tmp", "tmp/"}) {
            QFile::link(keep, scratch() + QStringLiteral("tmp"));
            shared::remove_directory(scratch() + QLatin1String(name));
            QVERIFY(!QFileInfo(scratch() + QStringLiteral("tmp")).isSymLink());
            QVERIFY(QFileInfo::exists(keep + QStringLiteral("/precious")));
        }

        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(keep));
        shared::remove_directory(QString());
        QVERIFY(QDir::setCurrent(before));
        QVERIFY(QFileInfo::exists(keep + QStringLiteral("/precious")));
    }

    void free_names() {
        const QString dir = scratch() + QStringLiteral("new/deep");
        const QString caller = QStringLiteral("void caller()");
        const auto next = [&] { return shared::get_available_file(dir, QStringLiteral("/evidence/a.wav"), caller); };
        for (const char* expected : {"a.wav", "1_a.wav", "2_a.wav"}) {
            QCOMPARE(next(), QLatin1String(expected));
            QFile file(dir + QLatin1Char('/') + QLatin1String(expected));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(shared::is_file_exist_in_dir(dir, QStringLiteral(" a.wav "), caller));
        QVERIFY(!shared::is_file_exist_in_dir(dir, QStringLiteral("A.wav"), caller));
        shared::set_cancel_extraction(true);
        QCOMPARE(next(), QStringLiteral(""));
        QVERIFY(!shared::is_file_exist_in_dir(dir, QStringLiteral("a.wav"), caller));
    }
};

QTEST_GUILESS_MAIN(test_path_helpers)
#include "test_path_helpers.moc"
