// SPDX-License-Identifier: MIT
// The rules over names alone: what is one name, which folders lead to a Windows tree, which files make one image.
#include "host/intake/archive_names.h"
#include "host/intake/asked_names.h"
#include "host/intake/image_segments.h"
#include "host/intake/names.h"
#include "host/intake/source_root.h"
#include "host/intake/times.h"
#include "host/intake/wanted_parts.h"

#include <QtTest>

using namespace intake;

class test_names : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void compares_as_windows_does_data() {
        QTest::addColumn<QByteArray>("left");
        QTest::addColumn<QByteArray>("right");
        QTest::addColumn<bool>("same");
        QTest::newRow("ASCII") << QByteArray("NTUSER.dat") << QByteArray("ntuser.DAT") << true;
        QTest::newRow("umlaut") << QByteArray("M\xc3\x9cLLER") << QByteArray("m\xc3\xbcller") << true;
        QTest::newRow("one character, not two") << QByteArray("stra\xc3\x9f"
                                                              "e")
                                                << QByteArray("strasse") << false;
        QTest::newRow("not UTF-8") << QByteArray("A\xfc") << QByteArray("a\xfc") << true;
        QTest::newRow("not UTF-8, other byte") << QByteArray("A\xfc") << QByteArray("a\xdc") << false;
    }
    void compares_as_windows_does() {
        QFETCH(QByteArray, left);
        QFETCH(QByteArray, right);
        QTEST(folded(left) == folded(right), "same");
    }

    void decodes_percents_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("decoded");
        for (const auto& [name, decoded] : {std::pair("C%3A", "C:"),
                                            {"%5C%5C.%5cC%3a", "\\\\.\\C:"},
                                            {"100%", "100%"},
                                            {"%4", "%4"},
                                            {"%G1%41", "%G1A"},
                                            {"%%41", "%A"},
                                            {"%2541", "%41"}}) {
            QTest::newRow(name) << QByteArray(name) << QByteArray(decoded);
        }
    }
    void decodes_percents() {
        QFETCH(QByteArray, name);
        QTEST(without_percents(name), "decoded");
    }

    void finds_roots_data() {
        QTest::addColumn<QList<QByteArray>>("folders"); // paths of folders; those on the way are there too
        QTest::addColumn<QList<QByteArray>>("roots");   // "%" at the end: percent-encoded
        const auto row = [](const char* folders, const char* roots) {
            QTest::newRow(folders) << QByteArray(folders).split(' ') << QByteArray(roots).split(' ');
        };
        row("Users Windows", "");
        row("uSERS/C/Users", "");
        row("C/Users logs", "C");
        row("c:/users logs", "c:");
        row("fs/C:/Users x", "fs/C:");
        row("p1/Windows p2/Users p3/Recovery", "p2");
        row("uploads/auto/C%3A/Users results", "uploads/auto/C%3A%");
        row("uploads/ntfs/%5C%5C.%5CC%3A/Users results", "uploads/ntfs/%5C%5C.%5CC%3A%");
        row("case-17/host%41/C/Users", "case-17/host%41/C");
        row("C/Users D/Users", "C D");
        row("C/Users E/fs/C/Users", "C E/fs/C");
    }
    void finds_roots() {
        QFETCH(QList<QByteArray>, folders);
        QFETCH(QList<QByteArray>, roots);
        const folder_lister list = [&](const QByteArray& path) {
            QVector<QByteArray> names;
            const QByteArray begin = path.isEmpty() ? path : path + '/';
            for (const QByteArray& folder : folders) {
                const QByteArray rest = folder.startsWith(begin) ? folder.mid(begin.size()) : QByteArray();
                const QByteArray name = rest.split('/').first();
                if (!name.isEmpty() && !names.contains(name)) {
                    names.append(name);
                }
            }
            return names;
        };
        QList<QByteArray> found;
        for (const source_root& root : find_source_roots(list)) {
            found << root.path + (root.percent_encoded ? "%" : "");
        }
        QCOMPARE(found, roots);
    }

    void keeps_archive_names_inside_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("refused");
        QTest::newRow("plain") << QByteArray("./Users//anna/./x/") << QByteArray("Users/anna/x") << false;
        QTest::newRow("top") << QByteArray("./") << QByteArray() << false;
        QTest::newRow("drive") << QByteArray("C:/Users") << QByteArray("C:/Users") << false;
        QTest::newRow("upwards") << QByteArray("Users/../../x") << QByteArray() << true;
        QTest::newRow("upwards at the end") << QByteArray("Users/..") << QByteArray() << true;
        QTest::newRow("absolute") << QByteArray("/etc/passwd") << QByteArray() << true;
        QTest::newRow("zero byte") << QByteArray("a\0b", 3) << QByteArray() << true;
        QTest::newRow("endless") << QByteArray(5000, 'x') << QByteArray() << true;
    }
    void keeps_archive_names_inside() {
        QFETCH(QByteArray, name);
        const archive_path named = path_in_archive(name);
        QTEST(named.path, "path");
        QTEST(named.refusal != nullptr, "refused");
    }

    void finds_segments_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QList<QByteArray>>("siblings");
        QTest::addColumn<QList<QByteArray>>("names");
        QTest::addColumn<QByteArray>("missing");
        const auto row = [](const char* title, const char* name, const char* siblings, const char* names,
                            const char* missing = "") {
            QTest::newRow(title) << QByteArray(name) << QByteArray(siblings).split(' ') << QByteArray(names).split(' ')
                                 << QByteArray(missing);
        };
        row("single", "disk.dd", "disk.dd disk.log", "disk.dd");
        row("numbers, not in order", "d.002", "d.003 d.001 d.002 e.004", "d.001 d.002 d.003");
        row("numbers from 0", "d.00", "d.00 d.01", "d.00 d.01");
        row("first missing", "d.002", "d.002 d.003", "d.002", "d.001");
        row("middle missing", "d.001", "d.001 d.004", "d.001", "d.002");
        row("given one beyond a gap", "d.900", "d.001 d.900", "d.001", "d.002");
        row("letters", "xaa", "xaa xab xac", "xaa xab xac");
        row("letters, missing", "xaa", "xaa xac", "xaa", "xab");
        row("E01", "d.e01", "d.e01 d.e02", "d.e01 d.e02");
        row("E01, another one given", "d.E02", "d.E01 d.E02", "d.E01 d.E02");
        row("E01, missing", "d.E01", "d.E01 d.E03", "d.E01", "d.E02");
        row("E01, first missing", "d.E02", "d.E02", "d.E02", "d.E01");
    }
    void finds_segments() {
        QFETCH(QByteArray, name);
        QFETCH(QList<QByteArray>, siblings);
        const bool is_ewf = name.toUpper().contains(".E");
        const segment_series series =
            is_ewf ? ewf_series(name, siblings.toVector()) : raw_series(name, siblings.toVector());
        QTEST(series.names.toList(), "names");
        QTEST(series.missing, "missing");
    }

    void counts_beyond_ninety_nine_segments() {
        QVector<QByteArray> siblings;
        for (int i = 1; i < 100; ++i) {
            siblings << "d.E" + QByteArray::number(i).rightJustified(2, '0');
        }
        siblings << "d.EAA"
                 << "d.EAB";
        QCOMPARE(ewf_series("d.E01", siblings).names, siblings);
        siblings << "d.EBA";
        QCOMPARE(ewf_series("d.E01", siblings).missing, QByteArray("d.EAC"));
    }

    void spells_wanted_names_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("spelled");
        for (const auto& [name, spelled] : {std::pair("webcachev01.DAT", "WebCacheV01.dat"),
                                            {"v01.LOG", "V01.log"},
                                            {"v01000aB.Log", "V01000aB.log"},
                                            {"V01.chk", "V01.chk"},
                                            {"V01res00001.jrs", ""},
                                            {"V01", ""},
                                            {"V0.log", ""}}) {
            QTest::newRow(name) << QByteArray(name) << QByteArray(spelled);
        }
    }
    void spells_wanted_names() {
        QFETCH(QByteArray, name);
        QTEST(wanted_spelling(wanted_profile_files().at(0), name), "spelled");
    }

    void spells_paths_in_packages() {
        QCOMPARE(package_spelling("X.microsoft.windows.CORTANA_cw"), QByteArray("X.Microsoft.Windows.Cortana_cw"));
        QCOMPARE(package_spelling("Microsoft.Windows.Search"), QByteArray());
        QCOMPARE(spelling_in_package("localstate/GRAPH/People/A.ttl"), QByteArray("LocalState/Graph/People/A.ttl"));
        QCOMPARE(spelling_in_package("localstate/other"), QByteArray("LocalState/other"));
        QCOMPARE(spelling_in_package("settings"), QByteArray("settings"));
    }

    void tells_places_of_evidence_data() {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("is_place");
        const QByteArray package = "users/A/APPDATA/local/packages/x.microsoft.windows.cortana_y/";
        const QByteArray cache = "Users/a/AppData/Local/Microsoft/Windows/WebCache/";
        for (const auto& [path, is_place] : {std::pair<QByteArray, bool>("USERS/a/ntuser.dat", true),
                                             {"Users/a/NTUSER.DAT.log2", true},
                                             {"Users/a/NTUSER.DAT/x", false},
                                             {"Users/NTUSER.DAT", false},
                                             {"Windows/a/NTUSER.DAT", false},
                                             {"Users/a/Documents/NTUSER.DAT", false},
                                             {cache + "v01.CHK", true},
                                             {cache + "V0100001.LOG", true},
                                             {cache + "other", false},
                                             {package + "localstate/GRAPH", true},
                                             {package + "localstate/GRAPH/a/b", true},
                                             {package + "localstate/GRAPHS/a", false},
                                             {package + "LocalState", false},
                                             {package + "AppData/indexed db/indexeddb.EDB", true},
                                             {package + "AC/INetCache/a.htm", false},
                                             {"Users/a/AppData/Local/Packages/Edge/LocalState/Graph/a", false}}) {
            QTest::newRow(path.constData()) << path << is_place;
        }
    }
    void tells_places_of_evidence() {
        QFETCH(QByteArray, path);
        QTEST(is_evidence_place(path), "is_place");
    }

    void walks_asked_paths_data() {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QVector<QByteArray>>("asked");
        const auto row = [](const QByteArray& path, const QVector<QByteArray>& asked) {
            QTest::newRow(path.left(40).constData()) << path << asked;
        };
        row("/Users/a//x", {"Users/a/x"});
        row("a/./b/", {"a/b"});
        row("a/b/../../c", {"a/b", "a", "c"});
        row("a/..", {"a"});
        row("a/../../Users", {});
        row("", {});
        row(QByteArray("a/\0b", 4), {});
        row("long/" + QByteArray(4095, 'x'), {});
    }
    void walks_asked_paths() {
        QFETCH(QByteArray, path);
        QTEST(asked_paths(path), "asked");
    }

    void counts_time_as_windows_does() {
        QCOMPARE(ticks_of(0, 100), std::optional<qint64>(116444736000000001));
        QCOMPARE(ticks_of(std::numeric_limits<qint64>::max(), 0), std::optional<qint64>());
        QCOMPARE(ticks_of(-20000000000, 0), std::optional<qint64>());
        QCOMPARE(timespec_of(116444736000000000 - 5).tv_sec, time_t{-1});
        QCOMPARE(timespec_of(116444736000000000 - 5).tv_nsec, 999999500L);
        QCOMPARE(ticks_of_attribute(QByteArray::fromHex("01d4f59b5e2c4187")),
                 std::optional<qint64>(0x01d4f59b5e2c4187));
        QCOMPARE(ticks_of_attribute("short"), std::optional<qint64>());
    }
};

QTEST_APPLESS_MAIN(test_names)
#include "test_names.moc"
