// SPDX-License-Identifier: MIT
// The look over the evidence: every kind of damage to the way, the databases, the hive and the trees is told, and
// sound evidence is not.
#include "host/console.h"
#include "host/source_health.h"
#include "host/table_names.h"
#include "host_case.h"

#include <QtEndian>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class test_source_health : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void judges_databases_and_hives_data();
    void judges_databases_and_hives();
    void tells_what_is_in_the_way_data();
    void tells_what_is_in_the_way();
    void lists_profiles();
    void looks_only_at_what_selected_tables_need();
    void keeps_access_times();
};

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

void seal_ese(QByteArray& file, int header) {
    const QByteArray page = file.mid(header, 668);
    put(file, header, exclusive_or(page, 4, 668, 0x89abcdef));
}

QByteArray ese_file(quint32 state = 3, quint32 format = 0x620, quint32 page_size = 4096) {
    QByteArray file(26 * 4096, '\0');
    for (const int header : {0, 4096}) {
        put(file, header + 4, 0x89abcdef);
        put(file, header + 8, format);
        put(file, header + 52, state);
        put(file, header + 236, page_size);
        seal_ese(file, header);
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
        list.append(one.path.section(QStringLiteral("/Users"), 1) + QStringLiteral(": ") + one.reason);
    }
    return list;
}

health_report check(const host_case& host, const QStringList& tables = result_table_names()) {
    health_report report;
    const QByteArray root = host.source();
    const std::function<bool()> never = [] { return false; };
    source_health health(root, tables, never, report);
    health.check_account({QStringLiteral("anna"), QStringLiteral("anna")});
    return report;
}

const QByteArray package = "/AppData/Local/Packages/Microsoft.Windows.Cortana_x";

// While it lives, permission bits count, for root too.
class without_power {
public:
    without_power() { is_root = ::geteuid() == 0 && ::seteuid(65534) == 0; }
    ~without_power() {
        if (is_root && ::seteuid(0) != 0) {
            qFatal("cannot become root again");
        }
    }
    without_power(const without_power&) = delete;
    without_power& operator=(const without_power&) = delete;

private:
    bool is_root;
};

} // namespace

void test_source_health::judges_databases_and_hives_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("is_hive");
    QTest::addColumn<QString>("problem");
    QTest::addColumn<QString>("note");
    const auto row = [](const char* name, const QByteArray& content, bool hive, const char* problem, const char* note) {
        QTest::newRow(name) << content << hive << QString::fromLatin1(problem) << QString::fromLatin1(note);
    };
    const QByteArray ese = ese_file();
    const QByteArray hive = hive_file();
    row("sound database", ese, false, "", "");
    row("dirty database", ese_file(2), false, "", "not shut down cleanly");
    row("empty database", "", false, "it is empty", "");
    row("database cut in its signature", ese.left(7), false, "not an ESE database", "");
    row("text for a database", QByteArray(9000, 'x'), false, "not an ESE database", "");
    row("changed byte in the header", changed(ese, 300), false, "header of the ESE database is damaged", "");
    row("changed byte in the header's copy", changed(ese, 4096 + 300), false, "copy of the header", "");
    row("database cut after its header", ese.left(4096), false, "copy of the header", "");
    row("database cut before its catalog", ese.left(25 * 4096), false, "cut off", "");
    row("unknown database format", ese_file(3, 0x621), false, "format version of the ESE", "");
    row("impossible page size", ese_file(3, 0x620, 5000), false, "page size", "");
    row("sound hive", hive, true, "", "");
    row("hive with unfinished writes", hive_file(6), true, "", "unfinished writes");
    row("empty hive", "", true, "it is empty", "");
    row("text for a hive", QByteArray(9000, 'x'), true, "not a registry hive", "");
    row("changed byte in the hive's header", changed(hive, 100), true, "header of the registry hive is damaged", "");
    row("hive cut off", hive.left(0x1fff), true, "cut off", "");
    row("unknown hive version", hive_file(5, 2), true, "format version of the registry", "");
    const char* const block = "a block of the registry hive is damaged or missing";
    row("changed block signature", changed(hive, 0x2000), true, block, "");
    row("changed block offset", changed(hive, 0x2004), true, block, "");
    row("changed block size", changed(hive, 0x2009), true, block, "");
    row("changed cell size", changed(hive, 0x2021), true, block, "");
    row("hive cut at a block", hive.left(0x2000), true, block, "");
    row("hive cut in a block", hive.left(0x2800), true, block, "");
    row("changed root key", changed(hive, 0x1024), true, "root key", "");
}

void test_source_health::judges_databases_and_hives() {
    QFETCH(QByteArray, content);
    QFETCH(bool, is_hive);
    QFETCH(QString, problem);
    QFETCH(QString, note);
    const host_case host;
    const QByteArray file =
        is_hive ? QByteArray("/NTUSER.DAT") : package + "/LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat";
    host.write(host.source() + "/Users/anna" + file, content);
    const health_report report = check(host);
    QCOMPARE(report.problem_count, problem.isEmpty() ? 0 : 1);
    QCOMPARE(report.note_count, note.isEmpty() ? 0 : 1);
    const QString told = texts(report.problems + report.notes).join(QString());
    QVERIFY2(told.isEmpty() || told.startsWith(QStringLiteral("/anna") + QString::fromUtf8(file)), qPrintable(told));
    QVERIFY2(told.contains(problem) && told.contains(note), qPrintable(told));
}

void test_source_health::tells_what_is_in_the_way_data() {
    QTest::addColumn<QByteArray>("path"); // below the profile
    QTest::addColumn<QString>("kind");    // what stands there, or what happens to the folder there
    QTest::addColumn<QString>("problem");
    QTest::addColumn<QString>("note");
    const auto row = [](const char* name, const QByteArray& path, const char* kind, const char* problem,
                        const char* note = "") {
        QTest::newRow(name) << path << QString::fromLatin1(kind) << QString::fromLatin1(problem)
                            << QString::fromLatin1(note);
    };
    const QByteArray speech = package + "/LocalState/LocalRecorder/Speech";
    row("nothing wrong", speech + "/a.wav", "file", "");
    row("closed profile", "", "closed", "Permission denied");
    row("closed AppData", "/AppData", "closed", "Permission denied");
    row("closed Packages", "/AppData/Local/Packages", "closed", "Permission denied");
    row("closed package", package, "closed", "Permission denied");
    row("closed Speech", speech, "closed", "Permission denied");
    row("closed folder in Graph", package + "/LocalState/Graph/deep", "closed", "Permission denied");
    row("closed recording", speech + "/a.wav", "closed file", "Permission denied");
    row("closed hive", "/NTUSER.DAT", "closed file", "Permission denied");
    row("Packages is a file", "/AppData/Local/Packages", "file", "it is not a folder");
    row("Speech is a file", speech, "file", "it is not a folder");
    row("hive is a folder", "/NTUSER.DAT", "folder", "it is not a regular file");
    row("hive is a named pipe", "/NTUSER.DAT", "pipe", "it is not a regular file");
    row("recording is a named pipe", speech + "/a.wav", "pipe", "", "passed over");
    row("AppData leads out", "/AppData", "link out", "leads out of the source");
    row("AppData leads nowhere", "/AppData", "link nowhere", "leads nowhere");
    row("AppData leads to itself", "/AppData", "link to itself", "leads nowhere");
    row("AppData leads inside", "/AppData", "link inside", "");
    row("hive leads out", "/NTUSER.DAT", "link out", "leads out of the source");
    row("recording leads out", speech + "/a.wav", "link out", "", "not followed");
    row("recording leads nowhere", speech + "/a.wav", "link nowhere", "", "leads nowhere");
    row("folder in Speech leads up", speech + "/up", "link inside", "", "not entered");
    row("hive in lower case", "/ntuser.dat", "file", "it is looked for as NTUSER.DAT");
    row("package in lower case", "/AppData/Local/Packages/microsoft.windows.cortana_x", "folder",
        "it is looked for as Microsoft.Windows.Cortana");
    row("package name not UTF-8", package + "\xff", "folder", "its name is not UTF-8");
    row("recording's name not UTF-8", speech + "/\xff\n.wav", "closed file", "Permission denied");
}

void test_source_health::tells_what_is_in_the_way() {
    QFETCH(QByteArray, path);
    QFETCH(QString, kind);
    QFETCH(QString, problem);
    QFETCH(QString, note);
    const host_case host;
    const QByteArray full = host.source() + "/Users/anna" + path;
    const QMap<QString, QByteArray> links{{QStringLiteral("link out"), host.base()},
                                          {QStringLiteral("link nowhere"), "nowhere"},
                                          {QStringLiteral("link to itself"), full},
                                          {QStringLiteral("link inside"), host.source() + "/Users"}};
    ::chmod(host.base().constData(), 0755);
    host.make_folders(full.left(full.lastIndexOf('/')));
    if (links.contains(kind)) {
        QCOMPARE(::symlink(links[kind].constData(), full.constData()), 0);
    } else if (kind == QLatin1String("pipe")) {
        QCOMPARE(::mkfifo(full.constData(), 0644), 0);
    } else if (kind.endsWith(QLatin1String("file"))) {
        host.write(full, "x");
    } else {
        host.make_folders(full + "/inner");
    }
    if (kind.startsWith(QLatin1String("closed"))) {
        ::chmod(full.constData(), 0);
    }
    health_report report;
    {
        const without_power weak;
        report = check(host);
    }
    ::chmod(kind.startsWith(QLatin1String("closed")) ? full.constData() : "", 0755);
    QCOMPARE(report.problem_count, problem.isEmpty() ? 0 : 1);
    QCOMPARE(report.note_count, note.isEmpty() ? 0 : 1);
    const QString told = texts(report.problems + report.notes).join(QString());
    QVERIFY2(told.isEmpty() || told.startsWith(QStringLiteral("/anna")), qPrintable(told));
    QVERIFY2(told.contains(problem) && told.contains(note), qPrintable(told));
}

void test_source_health::lists_profiles() {
    const host_case host;
    const QByteArray users = host.source() + "/Users";
    for (const char* const name :
         {"Zoe", "anna b", "PUBLIC", "Default", "Default User", "All Users", "bad\xff", "=x"}) {
        host.make_folders(users + '/' + name);
    }
    host.write(users + "/desktop.ini", "x");
    QCOMPARE(::symlink("Zoe", (users + "/same").constData()), 0);
    QCOMPARE(::symlink("/", (users + "/out").constData()), 0);
    health_report report;
    const QByteArray root = host.source();
    const std::function<bool()> never = [] { return false; };
    source_health health(root, result_table_names(), never, report);
    QStringList names;
    for (const system_account& account : health.profiles()) {
        names.append(account.system_user);
    }
    QCOMPARE(names, (QStringList{QStringLiteral("=x"), QStringLiteral("Zoe"), QStringLiteral("anna b")}));
    QCOMPARE(report.problems.size(), 2);
    QVERIFY(report.problems[0].reason.contains(QLatin1String("not UTF-8")));
    QVERIFY(report.problems[1].reason.contains(QLatin1String("out of the source")));
    QCOMPARE(texts(report.notes), QStringList{QStringLiteral("/same: it is a link; not taken for a profile")});
}

void test_source_health::looks_only_at_what_selected_tables_need() {
    const host_case host;
    host.write(host.source() + "/Users/anna/NTUSER.DAT", "x");
    host.write(host.source() + "/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", "x");
    QCOMPARE(check(host, {QStringLiteral("graphed_cache")}).problem_count, 0);
    QCOMPARE(check(host, {QStringLiteral("cookies")}).problem_count, 1);
    QCOMPARE(check(host, {QStringLiteral("searches"), QStringLiteral("domstore")}).problem_count, 2);
}

void test_source_health::keeps_access_times() {
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

QTEST_GUILESS_MAIN(test_source_health)
#include "test_source_health.moc"
