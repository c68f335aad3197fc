// SPDX-License-Identifier: MIT
// The look over the evidence: every kind of damage to the way, the databases, the hive and the trees is told, and
// sound evidence is not.
#include "host/native_files.h"
#include "host/source_health.h"
#include "host/table_names.h"
#include "host_case.h"

#include <QtEndian>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void put(QByteArray& bytes, int offset, quint32 value) {
    qToLittleEndian(value, bytes.data() + offset);
}

quint32 exclusive_or(const QByteArray& bytes, int begin, int end, quint32 sum) {
    for (int offset = begin; offset < end; offset += 4) {
        sum ^= qFromLittleEndian<quint32>(bytes.constData() + offset);
    }
    return sum;
}

QByteArray ese_file(quint32 state = 3, quint32 format = 0x620, quint32 page_size = 4096) {
    QByteArray file(26 * 4096, '\0');
    for (const int header : {0, 4096}) {
        put(file, header + 4, 0x89abcdef);
        put(file, header + 8, format);
        put(file, header + 52, state);
        put(file, header + 236, page_size);
        put(file, header, exclusive_or(file, header + 4, header + 668, 0x89abcdef));
    }
    return file;
}

// Two blocks of one page with one cell each, the root key in the first.
QByteArray hive_file(quint32 first_number = 5, quint32 version = 1) {
    QByteArray file(0x3000, '\0');
    file.replace(0, 4, "regf");
    put(file, 4, first_number);
    put(file, 8, 5);
    put(file, 20, version);
    put(file, 36, 0x20);
    put(file, 40, 0x2000);
    put(file, 508, exclusive_or(file, 0, 508, 0));
    for (const int block : {0x1000, 0x2000}) {
        file.replace(block, 4, "hbin");
        put(file, block + 4, static_cast<quint32>(block - 0x1000));
        put(file, block + 8, 0x1000);
        put(file, block + 0x20, static_cast<quint32>(-0xfe0));
        file.replace(block + 0x24, 2, "nk");
    }
    return file;
}

QByteArray changed(QByteArray file, int offset) {
    file[offset] = static_cast<char>(file[offset] ^ 1);
    return file;
}

// "path: reason" of the findings, paths below Users/.
QStringList texts(const QVector<finding>& findings) {
    QStringList list;
    for (const finding& one : findings) {
        list.append(one.path.section(q("/Users"), 1) + q(": ") + one.reason);
    }
    return list;
}

health_report check(const host_case& host, const QStringList& tables = result_table_names()) {
    health_report report;
    const QByteArray root = host.source();
    const std::function<bool()> never = [] { return false; };
    source_health(root, tables, never, report).check_account({q("anna"), q("anna")});
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
                            const char* note = "") { QTest::newRow(name) << path << what << q(problem) << q(note); };
        const QByteArray core = package + "/LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat";
        const QByteArray hive = "/NTUSER.DAT";
        const QByteArray speech = package + "/LocalState/LocalRecorder/Speech";
        const QByteArray sound_ese = ese_file();
        const QByteArray sound_hive = hive_file();
        const char* const block = "a block of the registry hive is damaged or missing";
        row("sound database", core, sound_ese, "");
        row("dirty database", core, ese_file(2), "", "not shut down cleanly");
        row("empty database", core, "", "it is empty");
        row("database cut in its signature", core, sound_ese.left(7), "not an ESE database");
        row("text for a database", core, QByteArray(9000, 'x'), "not an ESE database");
        row("changed byte in the header", core, changed(sound_ese, 300), "header of the ESE database is damaged");
        row("changed byte in the header's copy", core, changed(sound_ese, 4096 + 300), "copy of the header");
        row("database cut before its catalog", core, sound_ese.left(25 * 4096), "cut off");
        row("unknown database format", core, ese_file(3, 0x621), "format version of the ESE");
        row("impossible page size", core, ese_file(3, 0x620, 5000), "page size");
        row("sound hive", hive, sound_hive, "");
        row("hive with unfinished writes", hive, hive_file(6), "", "unfinished writes");
        row("empty hive", hive, "", "it is empty");
        row("text for a hive", hive, QByteArray(9000, 'x'), "not a registry hive");
        row("changed byte in the hive's header", hive, changed(sound_hive, 100),
            "header of the registry hive is damaged");
        row("hive cut off", hive, sound_hive.left(0x1fff), "cut off");
        row("unknown hive version", hive, hive_file(5, 2), "format version of the registry");
        row("changed block signature", hive, changed(sound_hive, 0x2000), block);
        row("changed block offset", hive, changed(sound_hive, 0x2004), block);
        row("changed block size", hive, changed(sound_hive, 0x2009), block);
        row("changed cell size", hive, changed(sound_hive, 0x2021), block);
        row("hive cut at a block", hive, sound_hive.left(0x2000), block);
        row("hive cut in a block", hive, sound_hive.left(0x2800), block);
        row("changed root key", hive, changed(sound_hive, 0x1024), "root key");
        row("nothing wrong", speech + "/a.wav", "x", "");
        row("closed profile", "", "closed", "Permission denied");
        row("closed AppData", "/AppData", "closed", "Permission denied");
        row("closed Packages", "/AppData/Local/Packages", "closed", "Permission denied");
        row("closed package", package, "closed", "Permission denied");
        row("closed Speech", speech, "closed", "Permission denied");
        row("closed folder in Graph", package + "/LocalState/Graph/deep", "closed", "Permission denied");
        row("closed recording", speech + "/a.wav", "closed file", "Permission denied");
        row("closed hive", hive, "closed file", "Permission denied");
        row("Packages is a file", "/AppData/Local/Packages", "x", "it is not a folder");
        row("Speech is a file", speech, "x", "it is not a folder");
        row("hive is a folder", hive, "folder", "it is not a regular file");
        row("hive is a named pipe", hive, "pipe", "it is not a regular file");
        row("recording is a named pipe", speech + "/a.wav", "pipe", "", "passed over");
        row("AppData leads out", "/AppData", "link out", "leads out of the source");
        row("AppData leads nowhere", "/AppData", "link nowhere", "leads nowhere");
        row("AppData leads to itself", "/AppData", "link to itself", "leads nowhere");
        row("AppData leads inside", "/AppData", "link inside", "");
        row("hive leads out", hive, "link out", "leads out of the source");
        row("recording leads out", speech + "/a.wav", "link out", "", "not followed");
        row("recording leads nowhere", speech + "/a.wav", "link nowhere", "", "leads nowhere");
        row("folder in Speech leads up", speech + "/up", "link inside", "", "not entered");
        row("hive in lower case", "/ntuser.dat", "x", "it is looked for as NTUSER.DAT");
        row("package in lower case", "/AppData/Local/Packages/microsoft.windows.cortana_x", "folder",
            "it is looked for as Microsoft.Windows.Cortana");
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
        const QMap<QByteArray, QByteArray> links{{"link out", host.base()},
                                                 {"link nowhere", "nowhere"},
                                                 {"link to itself", full},
                                                 {"link inside", host.source() + "/Users"}};
        ::chmod(host.base().constData(), 0755);
        host.make_folders(full.left(full.lastIndexOf('/')));
        if (links.contains(what)) {
            QCOMPARE(::symlink(links[what].constData(), full.constData()), 0);
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
        QVERIFY2(told.isEmpty() || told.startsWith(q("/anna") + text_of(path) + q(": ")), qPrintable(told));
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
        const std::function<bool()> never = [] { return false; };
        QStringList names;
        for (const system_account& account : source_health(root, result_table_names(), never, report).profiles()) {
            names.append(account.system_user);
        }
        QCOMPARE(names, (QStringList{q("=x"), q("Zoe"), q("anna b")}));
        QCOMPARE(report.problems.size(), 2);
        QVERIFY(report.problems[0].reason.contains(q("not UTF-8")));
        QVERIFY(report.problems[1].reason.contains(q("out of the source")));
        QCOMPARE(texts(report.notes), QStringList{q("/same: it is a link; not taken for a profile")});
    }

    void looks_only_at_what_selected_tables_need() {
        const host_case host;
        host.write(host.source() + "/Users/anna/NTUSER.DAT", "x");
        host.write(host.source() + "/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", "x");
        QCOMPARE(check(host, {q("graphed_cache")}).problem_count, 0);
        QCOMPARE(check(host, {q("cookies")}).problem_count, 1);
        QCOMPARE(check(host, {q("searches"), q("domstore")}).problem_count, 2);
    }

    void keeps_access_times() {
        const host_case host;
        const QByteArray hive = host.source() + "/Users/anna/NTUSER.DAT";
        host.write(hive, hive_file());
        const timespec times[2] = {{1000000000, 0}, {1100000000, 0}}; // read before written: the next read would count
        QCOMPARE(::utimensat(AT_FDCWD, hive.constData(), times, 0), 0);
        QCOMPARE(check(host).problem_count, 0);
        struct stat status = {};
        QCOMPARE(::stat(hive.constData(), &status), 0);
        QCOMPARE(qint64(status.st_atim.tv_sec), qint64(1000000000));
    }
};

QTEST_GUILESS_MAIN(test_source_health)
#include "test_source_health.moc"
