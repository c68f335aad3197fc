// SPDX-License-Identifier: MIT
// Discovery over real folders: what is listed, in which order, what is logged, and that nothing outside is.
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

namespace {

const QString package = QStringLiteral("AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy");

void add_whole_profile(const test_case_folder& folder, const QString& user) {
    const QString profile = QStringLiteral("Users/") + user + QLatin1Char('/');
    folder.write_file(profile + QStringLiteral("NTUSER.DAT"), "x");
    folder.write_file(profile + QStringLiteral("AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"), "x");
    folder.write_file(profile + package + QStringLiteral("/AppData/Indexed DB/IndexedDB.edb"), "x");
    folder.write_file(
        profile + package + QStringLiteral("/LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat"), "x");
    folder.write_file(profile + package + QStringLiteral("/LocalState/LocalRecorder/Speech/a.wav"), "x");
    folder.write_file(profile + package + QStringLiteral("/LocalState/Graph/a.ttl"), "x");
}

QStringList all_found(const cortana_winos& front) {
    return front.found_webcache_files() + front.found_ntuser_files() + front.found_indexed_db_files() +
           front.found_cortana_core_db_files() + front.found_speech_dirs() + front.found_graph_dirs();
}

} // namespace

class test_source_discovery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everything_is_found_in_order() {
        test_case_folder folder({{QStringLiteral("anna"), QStringLiteral("anna")},
                                 {QString(), QStringLiteral("bernd")},
                                 {QStringLiteral("anna"), QString()}});
        add_whole_profile(folder, QStringLiteral("anna"));
        add_whole_profile(folder, QStringLiteral("bernd"));
        auto front = folder.make_front();
        folder.take_log();
        front->winos_find_artifacts_source();
        QVERIFY(matches_golden(folder.take_log(), QStringLiteral(GOLDEN_DIR "/discovery_log.txt")));
        const QString anna = folder.root() + QStringLiteral("Users/anna/");
        QCOMPARE(front->found_speech_dirs().first(),
                 anna + package + QStringLiteral("/LocalState/LocalRecorder/Speech/"));
        QCOMPARE(front->found_graph_dirs().first(), anna + package + QStringLiteral("/LocalState/Graph/"));
        QCOMPARE(all_found(*front).size(), 12);
        front->winos_find_artifacts_source(); // the lists start anew
        QCOMPARE(all_found(*front).size(), 12);
    }

    void two_packages_and_other_names() {
        test_case_folder folder;
        const QString packages = QStringLiteral("Users/anna/AppData/Local/Packages/");
        for (const char* name :
             {"Microsoft.Windows.Cortana_b", "Microsoft.Windows.Cortana_a", "x.Microsoft.Windows.Cortana",
              "microsoft.windows.cortana_c", "Microsoft.Windows.Search"}) {
            folder.write_file(packages + QLatin1String(name) + QStringLiteral("/LocalState/Graph/a.ttl"), "x");
        }
        folder.write_file(packages + QStringLiteral("Microsoft.Windows.Cortana_file"), "x"); // a file: nothing below it
        auto front = folder.make_front();
        front->find_source_file();
        const QString found = folder.root() + packages;
        QCOMPARE(front->found_graph_dirs(),
                 QStringList({found + QStringLiteral("Microsoft.Windows.Cortana_a/LocalState/Graph/"),
                              found + QStringLiteral("Microsoft.Windows.Cortana_b/LocalState/Graph/"),
                              found + QStringLiteral("x.Microsoft.Windows.Cortana/LocalState/Graph/")}));
        QVERIFY(front->found_webcache_files().isEmpty() && front->found_ntuser_files().isEmpty());
    }

    void files_for_folders_and_folders_for_files() {
        test_case_folder folder;
        QDir().mkpath(folder.root() + QStringLiteral("Users/anna/NTUSER.DAT"));
        folder.write_file(QStringLiteral("Users/anna/") + package + QStringLiteral("/LocalState/Graph"), "a file");
        auto front = folder.make_front();
        front->find_source_file();
        QCOMPARE(front->found_ntuser_files().size(), 1); // a plain exists test
        QVERIFY(front->found_graph_dirs().isEmpty());    // a file does not answer to a name that ends in "/"
    }

    void nothing_outside_the_source() {
        test_case_folder folder({{QStringLiteral("anna"), QStringLiteral("../../outside")},
                                 {QStringLiteral("linked"), QString()},
                                 {QStringLiteral("inside"), QString()}});
        const QString outside = folder.result_dir() + QStringLiteral("../outside/");
        QDir().mkpath(outside + package + QStringLiteral("/LocalState/Graph"));
        QFile hive(outside + QStringLiteral("NTUSER.DAT"));
        QVERIFY(hive.open(QIODevice::WriteOnly));
        QDir().mkpath(folder.root() + QStringLiteral("Users/anna"));
        QFile::link(outside, folder.root() + QStringLiteral("Users/linked"));
        QFile::link(outside + QStringLiteral("NTUSER.DAT"), folder.root() + QStringLiteral("Users/anna/NTUSER.DAT"));
        QFile::link(QStringLiteral("anna"), folder.root() + QStringLiteral("Users/inside"));
        folder.write_file(QStringLiteral("Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"), "x");
        auto front = folder.make_front();
        front->find_source_file();
        QVERIFY2(front->found_ntuser_files().isEmpty(), qPrintable(all_found(*front).join(QLatin1Char('\n'))));
        QVERIFY(front->found_graph_dirs().isEmpty());
        QCOMPARE(front->found_webcache_files().size(), 2); // anna's, and the same through the link that stays inside
    }

    void cancel_stops_at_the_next_entry() {
        test_case_folder folder({{QStringLiteral("anna"), QString()}, {QStringLiteral("bernd"), QString()}});
        add_whole_profile(folder, QStringLiteral("anna"));
        add_whole_profile(folder, QStringLiteral("bernd"));
        auto front = folder.make_front();
        front->winos_cancel_extraction();
        folder.take_log();
        front->find_source_file();
        QCOMPARE(front->found_ntuser_files().size(), 1); // found before the package scan
        QVERIFY(front->found_graph_dirs().isEmpty());
        QCOMPARE(folder.take_log().filter(QStringLiteral("ENDS")), QStringList());
    }

    void unusable_roots() {
        test_case_folder folder;
        add_whole_profile(folder, QStringLiteral("anna"));
        QVERIFY(QDir::setCurrent(folder.root())); // where relative paths would find the profile
        for (const char* root : {"", "./", "Users", "/no/such/folder/"}) {
            auto front = folder.make_front();
            struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
            source.fs_extraction_source_path = QLatin1String(root);
            source.system_account_QList.append({QStringLiteral("anna"), QString()});
            front->winos_set_source_info(source);
            front->find_source_file();
            QCOMPARE(all_found(*front), QStringList());
        }
        QVERIFY(QDir::setCurrent(QStringLiteral("/")));
        auto front = folder.make_front();
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = folder.root().chopped(1); // no "/" at its end: glued to "Users/"
        source.system_account_QList.append({QStringLiteral("anna"), QString()});
        front->winos_set_source_info(source);
        front->find_source_file();
        QCOMPARE(all_found(*front), QStringList());
    }
};

QTEST_MAIN(test_source_discovery)
#include "test_source_discovery.moc"
