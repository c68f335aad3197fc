// SPDX-License-Identifier: MIT
// Discovery over real folders: what is listed, in which order, what is logged, and that nothing outside is.
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

namespace {

const QString package = "AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy"_q;
const QString webcache = "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"_q;

void add_whole_profile(const test_case_folder& folder, const QString& user) {
    const QString profile = "Users/%1/"_q.arg(user);
    const QString state = profile + package + "/LocalState/"_q;
    for (const QString& path :
         {profile + "NTUSER.DAT"_q, profile + webcache, profile + package + "/AppData/Indexed DB/IndexedDB.edb"_q,
          state + "ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat"_q, state + "LocalRecorder/Speech/a.wav"_q,
          state + "Graph/a.ttl"_q}) {
        folder.write_file(path, "x");
    }
}

QStringList all_found(const cortana_winos& front) {
    return front.found_webcache_files() + front.found_ntuser_files() + front.found_indexed_db_files() +
           front.found_cortana_core_db_files() + front.found_speech_dirs() + front.found_graph_dirs();
}

std::unique_ptr<cortana_winos> searched(const test_case_folder& folder) {
    auto front = folder.make_front();
    front->find_source_file();
    return front;
}

} // namespace

class test_source_discovery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everything_is_found_in_order() {
        test_case_folder folder({{"anna"_q, "anna"_q}, {QString(), "bernd"_q}, {"anna"_q, QString()}});
        add_whole_profile(folder, "anna"_q);
        add_whole_profile(folder, "bernd"_q);
        auto front = folder.make_front();
        folder.take_log();
        front->winos_find_artifacts_source();
        QVERIFY(matches_golden(folder.take_log(), GOLDEN_DIR "/discovery_log.txt"_q));
        QCOMPARE(all_found(*front).size(), 12);
        front->winos_find_artifacts_source(); // the lists start anew
        QCOMPARE(all_found(*front).size(), 12);
    }

    void packages_of_many_names() {
        test_case_folder folder;
        const QString packages = "Users/anna/AppData/Local/Packages/"_q;
        for (const char* name :
             {"Microsoft.Windows.Cortana_b", "Microsoft.Windows.Cortana_a", "x.Microsoft.Windows.Cortana",
              "microsoft.windows.cortana_c", "Microsoft.Windows.Search"}) {
            folder.write_file(packages + QLatin1String(name) + "/LocalState/Graph/a.ttl"_q, "x");
        }
        // Files where folders are due.
        folder.write_file(packages + "Microsoft.Windows.Cortana_file"_q, "x");
        folder.write_file(packages + "Microsoft.Windows.Cortana_d/LocalState/Graph"_q, "x");
        QDir().mkpath(folder.root() + "Users/anna/NTUSER.DAT"_q);
        const auto front = searched(folder);
        const QString found = folder.root() + packages;
        QCOMPARE(front->found_graph_dirs(), QStringList({found + "Microsoft.Windows.Cortana_a/LocalState/Graph/"_q,
                                                         found + "Microsoft.Windows.Cortana_b/LocalState/Graph/"_q,
                                                         found + "x.Microsoft.Windows.Cortana/LocalState/Graph/"_q}));
        QCOMPARE(front->found_ntuser_files().size(), 1); // a plain exists test
        QVERIFY(front->found_webcache_files().isEmpty());
    }

    void nothing_outside_the_source() {
        test_case_folder folder({{"anna"_q, "../../outside"_q}, {"linked"_q, QString()}, {"inside"_q, QString()}});
        for (const QString& below : {"NTUSER.DAT"_q, package + "/LocalState/Graph/a.ttl"_q}) {
            folder.write_file("../outside/"_q + below, "x");
        }
        const QString outside = folder.root() + "../outside/"_q;
        folder.write_file("Users/anna/"_q + webcache, "x");
        QFile::link(outside, folder.root() + "Users/linked"_q);
        QFile::link(outside + "NTUSER.DAT"_q, folder.root() + "Users/anna/NTUSER.DAT"_q);
        QFile::link("anna"_q, folder.root() + "Users/inside"_q);
        const auto front = searched(folder);
        QVERIFY2(front->found_ntuser_files().isEmpty(), qPrintable(all_found(*front).join(QLatin1Char('\n'))));
        QVERIFY(front->found_graph_dirs().isEmpty());
        QCOMPARE(front->found_webcache_files().size(), 2); // anna's, and the same through the link that stays inside
    }

    void cancel_stops_at_the_next_entry() {
        test_case_folder folder({{"anna"_q, QString()}, {"bernd"_q, QString()}});
        add_whole_profile(folder, "anna"_q);
        add_whole_profile(folder, "bernd"_q);
        auto front = folder.make_front();
        front->winos_cancel_extraction();
        folder.take_log();
        front->find_source_file();
        QCOMPARE(front->found_ntuser_files().size(), 1); // found before the package scan
        QVERIFY(front->found_graph_dirs().isEmpty());
        QCOMPARE(folder.take_log().filter("ENDS"_q), QStringList());
    }

    void unusable_roots() {
        test_case_folder folder;
        add_whole_profile(folder, "anna"_q);
        QVERIFY(QDir::setCurrent(folder.root()));          // where relative paths would find the profile
        const QString no_slash = folder.root().chopped(1); // glued to "Users/"
        for (const QString& root : {""_q, "Users"_q, "/no/such/folder/"_q, no_slash}) {
            auto front = folder.make_front();
            struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
            source.fs_extraction_source_path = root;
            source.system_account_QList.append({"anna"_q, QString()});
            front->winos_set_source_info(source);
            front->find_source_file();
            QCOMPARE(all_found(*front), QStringList());
        }
        QVERIFY(QDir::setCurrent("/"_q));
    }
};

QTEST_MAIN(test_source_discovery)
#include "test_source_discovery.moc"
