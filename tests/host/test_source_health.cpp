// SPDX-License-Identifier: MIT
// The look over the evidence: every kind of damage to the way, the databases, the hive and the trees is told, and
// sound evidence is not.
#include "contract/table_names.h"
#include "host/health/source_health.h"
#include "host_case.h"
#include "samples/ese_writer.h"
#include "samples/sample_source.h"
#include "source/native_names.h"

#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The lowest bit of each of these bytes is another one. Both kinds of file keep the exclusive or of their header's
// numbers, so that one bit of a number and the same one of the checksum (at 0 of a database) make a sound header again.
QByteArray changed(QByteArray file, const QVector<int>& offsets) {
    for (const int offset : offsets) {
        file[offset] = static_cast<char>(file[offset] ^ 1);
    }
    return file;
}

// "path: reason" of the findings, paths below Users/.
QStringList texts(const QVector<finding>& findings) {
    QStringList list;
    for (const finding& one : findings) {
        list.append(one.path.section("/Users"_q, 1) + ": "_q + one.reason);
    }
    return list;
}

const std::function<bool()> never = [] { return false; };

health_report check(const host_case& host, const QStringList& tables = result_table_names()) {
    health_report report;
    source_health(host.source(), tables, never, report).check_account({"anna"_q, "anna"_q});
    return report;
}

const QByteArray package = "/AppData/Local/Packages/Microsoft.Windows.Cortana_x";

} // namespace

class test_source_health : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void judges_what_stands_there_data() {
        QTest::addColumn<QByteArray>("path"); // below the profile
        QTest::addColumn<QByteArray>("what"); // a file's content, or what else stands there or happens to it
        QTest::addColumn<QString>("problem");
        QTest::addColumn<QString>("note");
        const auto row = [](const char* name, const QByteArray& path, const QByteArray& what, const char* problem,
                            const char* note = "") { QTest::newRow(name) << path << what << problem << note; };
        const QByteArray core = package + "/LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat";
        const QByteArray hive = "/NTUSER.DAT";
        const QByteArray speech = package + "/LocalState/LocalRecorder/Speech";
        constexpr int page = 4096;
        const QTemporaryDir folder;
        ese_writer writer(folder.filePath("ese"_q).toStdString(), page);
        writer.close();
        QVERIFY(write_sample_hive({folder.path() + QLatin1Char('/'), "anna"_q, 0}));
        const QByteArray ese = whole_file(folder.filePath("ese"_q));
        const QByteArray regf = whole_file(folder.filePath("Users/anna/NTUSER.DAT"_q));
        constexpr int regf_sum = 508;
        const char* const block = "a block of the registry hive is damaged or missing";
        row("sound database", core, ese, "");
        row("dirty database", core, changed(ese, {52, 0}), "", "not shut down cleanly");
        row("empty database", core, "", "it is empty");
        row("database cut in its signature", core, ese.left(7), "not an ESE database");
        row("text for a database", core, QByteArray(9000, 'x'), "not an ESE database");
        row("changed byte in the header", core, changed(ese, {300}), "header of the ESE database is damaged");
        row("changed byte in the header's copy", core, changed(ese, {page + 300}), "copy of the header");
        row("database cut before its catalog", core, ese.left(25 * page), "cut off");
        row("unknown database format", core, changed(ese, {8, 0}), "format version of the ESE");
        row("impossible page size", core, changed(ese, {236, 0}), "page size");
        row("sound hive", hive, regf, "");
        row("hive with unfinished writes", hive, changed(regf, {4, regf_sum}), "", "unfinished writes");
        row("empty hive", hive, "", "it is empty");
        row("text for a hive", hive, QByteArray(9000, 'x'), "not a registry hive");
        row("changed byte in the hive's header", hive, changed(regf, {100}), "header of the registry hive is damaged");
        row("hive cut off", hive, regf.left(0x1fff), "cut off");
        row("unknown hive version", hive, changed(regf, {20, regf_sum}), "format version of the registry");
        row("changed block signature", hive, changed(regf, {0x2000}), block);
        row("changed block offset", hive, changed(regf, {0x2004}), block);
        row("changed block size", hive, changed(regf, {0x2009}), block);
        row("changed cell size", hive, changed(regf, {0x2021}), block);
        row("cell without a size", hive, QByteArray(regf).replace(0x2020, 4, QByteArray(4, '\0')), block);
        row("hive cut at a block", hive, regf.left(0x2000), block);
        row("hive cut in a block", hive, regf.left(0x2800), block);
        row("changed root key", hive, changed(regf, {0x1024}), "root key");
        row("closed profile", "", "closed", "Permission denied");
        row("closed Packages", "/AppData/Local/Packages", "closed", "Permission denied");
        row("closed Speech", speech, "closed", "Permission denied");
        row("closed folder in Graph", package + "/LocalState/Graph/deep", "closed", "Permission denied");
        row("closed hive", hive, "closed file", "Permission denied");
        row("Packages is a file", "/AppData/Local/Packages", "x", "it is not a folder");
        row("Speech is a file", speech, "x", "it is not a folder");
        row("hive is a folder", hive, "folder", "it is not a regular file");
        row("hive is a named pipe", hive, "pipe", "it is not a regular file");
        row("recording is a named pipe", speech + "/a.wav", "pipe", "", "passed over");
        row("AppData leads out", "/AppData", "-> /", "leads out of the source");
        row("AppData leads nowhere", "/AppData", "-> nowhere", "leads nowhere");
        row("AppData leads inside", "/AppData", "-> ..", "");
        row("hive leads out", hive, "-> /", "leads out of the source");
        row("recording leads out", speech + "/a.wav", "-> /", "", "not followed");
        row("recording leads nowhere", speech + "/a.wav", "-> nowhere", "", "leads nowhere");
        row("folder in Speech leads up", speech + "/up", "-> ..", "", "not entered");
        row("hive in lower case", "/ntuser.dat", "x", "it is looked for as NTUSER.DAT");
        row("package in lower case", "/AppData/Local/Packages/microsoft.windows.cortana_x", "folder",
            "it is looked for as Microsoft.Windows.Cortana");
        row("another package, closed", "/AppData/Local/Packages/Other", "closed", "");
        row("file with a package's name", package, "x", "");
        row("package name not UTF-8", package + "\xff", "folder", "its name is not UTF-8");
        row("recording's name not UTF-8", speech + "/\xff\n.wav", "closed file", "Permission denied");
    }
    void judges_what_stands_there() {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, what);
        QFETCH(QString, problem);
        QFETCH(QString, note);
        const host_case host;
        const QByteArray full = host.source() + "/Users/anna" + path;
        ::chmod(host.base().constData(), 0755);
        host.make_folders(full.left(full.lastIndexOf('/')));
        if (what.startsWith("-> ")) {
            QCOMPARE(::symlink(what.mid(3).constData(), full.constData()), 0);
        } else if (what == "pipe") {
            QCOMPARE(::mkfifo(full.constData(), 0644), 0);
        } else if (what == "folder" || what == "closed") {
            host.make_folders(full + "/inner");
        } else {
            host.write(full, what);
        }
        if (what.startsWith("closed")) {
            ::chmod(full.constData(), 0);
        }
        const uid_t self = ::geteuid(); // permission bits are to count, for root too
        QVERIFY(self != 0 || ::seteuid(65534) == 0);
        const health_report report = check(host);
        QVERIFY(::seteuid(self) == 0);
        ::chmod(what.startsWith("closed") ? full.constData() : "", 0755);
        QCOMPARE(report.problem_count, problem.isEmpty() ? 0 : 1);
        QCOMPARE(report.note_count, note.isEmpty() ? 0 : 1);
        const QString told = texts(report.problems + report.notes).join(QString());
        QVERIFY2(told.isEmpty() || told.startsWith("/anna"_q + shown_path(path) + ": "_q), qPrintable(told));
        QVERIFY2(told.contains(problem) && told.contains(note), qPrintable(told));
    }

    void lists_profiles() {
        const host_case host;
        const QByteArray root = host.source();
        for (const char* const name :
             {"Zoe", "anna b", "PUBLIC", "Default", "Default User", "All Users", "bad\xff", "=x"}) {
            host.make_folders(root + "/Users/" + name);
        }
        host.write(root + "/Users/desktop.ini", "x");
        QCOMPARE(::symlink("Zoe", (root + "/Users/same").constData()), 0);
        QCOMPARE(::symlink("/", (root + "/Users/out").constData()), 0);
        health_report report;
        QStringList names;
        for (const system_account& account : source_health(root, result_table_names(), never, report).profiles()) {
            names.append(account.system_user);
        }
        QCOMPARE(names, (QStringList{"=x"_q, "Zoe"_q, "anna b"_q}));
        QCOMPARE(texts(report.problems + report.notes),
                 (QStringList{"/bad\\xff: its name is not UTF-8: it cannot be passed on"_q,
                              "/out: it is a link that leads out of the source"_q,
                              "/same: it is a link; not taken for a profile"_q}));
    }

    void looks_only_at_what_selected_tables_need() {
        const host_case host;
        host.write(host.source() + "/Users/anna/NTUSER.DAT", "x");
        host.write(host.source() + "/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", "x");
        QCOMPARE(check(host, {"graphed_cache"_q}).problem_count, 0);
        QCOMPARE(check(host, {"cookies"_q}).problem_count, 1);
        QCOMPARE(check(host, {"searches"_q, "domstore"_q}).problem_count, 2);
    }

    void keeps_access_times() {
        const host_case host;
        const QByteArray hive = host.source() + "/Users/anna/NTUSER.DAT";
        host.write(hive, "x");
        const timespec times[2] = {{1000000000, 0}, {1100000000, 0}}; // read before written: the next read would count
        QCOMPARE(::utimensat(AT_FDCWD, hive.constData(), times, 0), 0);
        QCOMPARE(check(host).problem_count, 1); // it was read
        struct stat status = {};
        QCOMPARE(::stat(hive.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }
};

QTEST_GUILESS_MAIN(test_source_health)
#include "test_source_health.moc"
