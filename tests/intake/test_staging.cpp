// SPDX-License-Identifier: MIT
// The wanted parts arrive byte for byte, in the case that is looked for, with their times; the rest does not; nothing
// is written elsewhere, and what could not be staged is told.
#include "host/intake/staging.h"
#include "host/intake/times.h"
#include "tests/intake/evidence_files.h"
#include "tests/intake/ntfs_image.h"
#include "tests/support/file_content.h"

#include <QtTest>

#include <sys/stat.h>

using namespace intake;

namespace {

const QByteArray package = "AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy";

// One folder with two files whose reading goes as the test wants it.
class scripted_view final : public source_view {
public:
    scripted_view() {
        first.name = "NTUSER.DAT";
        first.kind = entry_kind::file;
    }

    view_entry first;
    qint64 second_size = 5;
    QByteArray content = "12345";
    QString problem;                         // at the end of the first file
    std::function<void()> meanwhile = [] {}; // after its bytes

    view_listing list(const QByteArray& path) override {
        view_entry users;
        users.name = "Users";
        users.kind = entry_kind::folder;
        view_entry anna = users;
        anna.name = "anna";
        view_entry second;
        second.name = "ntuser.dat.log1";
        second.kind = entry_kind::file;
        second.size = second_size;
        return path.isEmpty()         ? view_listing{{users}, {}}
               : path == "Users"      ? view_listing{{anna}, {}}
               : path == "Users/anna" ? view_listing{{first, second}, {}}
                                      : view_listing{};
    }
    void read_files(const QVector<QByteArray>& paths, file_sink& sink) override {
        for (int i = 0; i < paths.size(); ++i) {
            const bool is_first = paths[i].endsWith(first.name);
            sink.begin(i);
            sink.take(i, content.constData(), content.size());
            if (is_first) {
                meanwhile();
            }
            if (!sink.end(i, is_first ? problem : QString())) {
                return;
            }
        }
    }
};

} // namespace

class test_staging : public QObject {
    Q_OBJECT

    evidence_files files;
    QTemporaryDir staged_parent;
    int number = 0;

    // A new, empty staging folder.
    QByteArray new_staging() {
        const QByteArray path = staged_parent.path().toUtf8() + '/' + QByteArray::number(++number);
        QDir().mkpath(QString::fromUtf8(path));
        return path;
    }
    // Path below a folder, without regard to case, and content of every file.
    static QStringList contents_below(const QByteArray& folder) {
        QStringList contents;
        QDirIterator entries(QString::fromUtf8(folder), QDir::Files | QDir::Hidden | QDir::System,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            contents << path.mid(folder.size() + 1).toLower() + " "_q + sha256_of(path);
        }
        contents.sort();
        return contents;
    }
    static QString sha256_of(const QString& path) {
        return QString::fromLatin1(QCryptographicHash::hash(whole_file(path), QCryptographicHash::Sha256).toHex());
    }

private Q_SLOTS:
    void initTestCase() {
        // The database's and the hive's companions, one with a time before 1970, and what nobody wants.
        files.run("cd source/Users/anna && mkdir Documents && touch Documents/NTUSER.DAT ntuser.ini && "
                  "echo one >NTUSER.DAT.LOG1 && echo two >NTUSER.DAT.LOG2 && touch -d 1969-12-31T23:59:58.5Z *LOG2 && "
                  "cd AppData/Local/Microsoft/Windows/WebCache && for f in V01.log V0100A3F.log V01.chk V01res1.jrs;"
                  "do echo $f >$f; done");
        files.run("cd source && mkdir ../wanted && cp -a --parents Users/anna/NTUSER.DAT* "
                  "Users/anna/AppData/Local/Microsoft/Windows/WebCache Users/anna/" +
                  package +
                  " ../wanted && "
                  "rm ../wanted/Users/anna/AppData/Local/Microsoft/Windows/WebCache/*.jrs");
        // Letters of the other case in every name, and names as a collection writes them.
        files.run("cp -a source upper && find upper -mindepth 1 -depth | while read -r p; do "
                  "n=$(printf %s \"${p##*/}\" | tr a-zA-Z A-Za-z); mv \"$p\" \"${p%/*}/$n\"; done");
        files.run("cd upper && zip -qr1 ../upper.zip . && tar -czf ../upper.tgz .");
        files.run("mkdir -p c/uploads/auto/C%3A/Users && cp -a source/Users/anna c/uploads/auto/C%3A/Users/ann%61 && "
                  "cd c/uploads/auto/C%3A/Users/ann%61 && mv AppData AppDat%61");
        write_ntfs_image(files.path("upper.ntfs"), 12, files.path("upper"));
    }

    void stages_the_wanted_parts_data() {
        QTest::addColumn<QByteArray>("name");
        for (const char* const name : {"source", "upper", "upper.zip", "upper.tgz", "upper.ntfs", "c"}) {
            QTest::newRow(name) << QByteArray(name);
        }
    }
    void stages_the_wanted_parts() {
        QFETCH(QByteArray, name);
        const QStringList before = everything_below(QString::fromUtf8(files.path(name)));
        const QByteArray staging = new_staging();
        const opened_source opened = open_source(files.path(name), {});
        QVERIFY2(opened.view, qPrintable(opened.problem));
        const staging_result result = stage_profiles(*opened.view, opened.root, {"anna"}, staging, {}, never);
        QCOMPARE(result.stopped, QString());
        QCOMPARE(texts(result.findings), QStringList());
        QCOMPARE(contents_below(staging), contents_below(files.path("wanted")));
        for (const char* const place : {"NTUSER.DAT.LOG1", "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat",
                                        "AppData/Local/Microsoft/Windows/WebCache/V01.chk"}) {
            QVERIFY2(QFile::exists(QString::fromUtf8(staging + "/Users/anna/" + place)), place);
        }
        const QStringList packages = QDir(QString::fromUtf8(staging + "/Users/anna/AppData/Local/Packages"))
                                         .entryList({"Microsoft.Windows.Cortana*"_q}, QDir::Dirs);
        QCOMPARE(packages.size(), 1);
        for (const char* const place : {"LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat",
                                        "LocalState/Graph", "LocalState/LocalRecorder/Speech"}) {
            QVERIFY2(QFile::exists(QString::fromUtf8(staging + "/Users/anna/AppData/Local/Packages/") + packages[0] +
                                   "/"_q + QString::fromUtf8(place)),
                     place);
        }
        QCOMPARE(set_staged_times(staging, result.entries), QString());
        for (const staged_entry& entry : result.entries) {
            const QByteArray path = staging + '/' + entry.path;
            struct stat status = {};
            QCOMPARE(::stat(path.constData(), &status), 0);
            QCOMPARE(entry.times.modified, ticks_of(status.st_mtim.tv_sec, status.st_mtim.tv_nsec));
            QCOMPARE(QString::fromLatin1(entry.sha256.toHex()),
                     entry.kind == entry_kind::file ? sha256_of(QString::fromUtf8(path)) : QString());
        }
        QCOMPARE(everything_below(QString::fromUtf8(files.path(name))), before);
    }

    void lists_profiles() {
        files.run("mkdir -p many/users/Public many/users/DEFAULT many/users/Zoe && ln -s Zoe many/users/link && "
                  "touch many/users/desktop.ini && mkdir many/users/b\\ c");
        const opened_source opened = open_source(files.path("many"), {});
        health_report findings;
        QCOMPARE(list_profiles(*opened.view, opened.root, findings), QVector<QByteArray>({"Zoe", "b c"}));
        QCOMPARE(texts(findings), QStringList("users/link: it is a link; not taken for a profile"_q));
    }

    // Archives and folders that would have us write or read elsewhere.
    void is_led_nowhere_else_data() {
        QTest::addColumn<QByteArray>("made"); // from a folder that holds "Users/anna" and "p" (the package folder)
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QStringList>("findings");
        const auto row = [](const char* title, const char* made, const char* name, const QStringList& findings) {
            QTest::newRow(title) << QByteArray(made) << QByteArray(name) << findings;
        };
        row("names that lead out",
            "touch evil; tar -P --transform 's,^evil,../../evil,' -cf a.tar evil;"
            "tar -P --transform 's,^evil,/tmp/evil,' -rf a.tar evil; tar -rf a.tar Users",
            "a.tar",
            {"../../evil: its name leads upwards (..); left out"_q,
             "/tmp/evil: its name begins at the root of a file system; left out"_q});
        row("links in a folder", "ln -s /etc/passwd Users/anna/NTUSER.DAT; mkdir -p $p; ln -s /etc $p/LocalState", ".",
            {"Users/anna/NTUSER.DAT: it is a link; not followed"_q,
             "Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x/LocalState: it is a link; not followed"_q});
        row("links in an archive",
            "ln -s /etc/passwd Users/anna/NTUSER.DAT; echo x >Users/anna/a; ln Users/anna/a Users/anna/NTUSER.DAT.LOG1;"
            "touch Users/anna/b; tar -cf a.tar Users/anna/b; tar --sort=name -rf a.tar Users/anna/a Users",
            "a.tar",
            {"Users/anna/NTUSER.DAT.LOG1: it is a link; not followed"_q,
             "Users/anna/NTUSER.DAT.LOG1: it is a link; not followed"_q,
             "Users/anna/NTUSER.DAT: it is a link; not followed"_q,
             "Users/anna/NTUSER.DAT: it is a link; not followed"_q, "Users/anna/a: it is a link; not followed"_q,
             "Users/anna/a: it is in the archive twice; the first is taken"_q,
             "Users/anna/b: it is in the archive twice; the first is taken"_q});
        row("a folder that is a link first",
            "ln -s /etc e; tar --transform 's,^e$,Users/anna/AppData,' -cf a.tar e;"
            "mkdir -p Users/anna/AppData; touch Users/anna/AppData/f; tar -rf a.tar Users",
            "a.tar",
            {"Users/anna/AppData/f: it stands below what is no folder; left out"_q,
             "Users/anna/AppData: it is a link; not followed"_q, "Users/anna/AppData: it is a link; not followed"_q,
             "Users/anna/AppData: it is a link; not followed"_q,
             "Users/anna/AppData: it is in the archive twice; the first is taken"_q});
        row("percent-encoded separators",
            "mkdir -p C%3A/Users/anna/..%2f..%2fevil 'C%3A/Users/%2e%2e';"
            "mkdir -p C%3A/$p/..%2f; touch C%3A/$p/%2e%2e%2fevil; rm -r Users",
            ".",
            {"C%3A/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x/%2e%2e%2fevil: its name cannot be used; left out"_q,
             "C%3A/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x/..%2f: its name cannot be used; left out"_q});
        row("a pipe", "mkfifo Users/anna/NTUSER.DAT", ".", {"Users/anna/NTUSER.DAT: it is not a regular file"_q});
        row("names of two cases", "echo 1 >Users/anna/ntuser.dat; echo 2 >Users/anna/NTUSER.DAT; mkdir Users/ANNA", ".",
            {"Users/ANNA: passed over: another one's name differs in upper and lower case only"_q,
             "Users/anna/ntuser.dat: passed over: another one's name differs in upper and lower case only"_q});
    }
    void is_led_nowhere_else() {
        QFETCH(QByteArray, made);
        QFETCH(QByteArray, name);
        QFETCH(QStringList, findings);
        const QByteArray folder = "led" + QByteArray::number(++number);
        files.run("mkdir -p " + folder + "/Users/anna && cd " + folder +
                  " && p=Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x && " + made);
        const QByteArray staging = new_staging() + "/inner";
        QDir().mkpath(QString::fromUtf8(staging));
        const opened_source opened = open_source(files.path(folder + '/' + name), {});
        QVERIFY2(opened.view, qPrintable(opened.problem));
        staging_result result = stage_profiles(*opened.view, opened.root, {"anna"}, staging, {}, never);
        QStringList told = texts(result.findings) + texts(opened.findings);
        told.sort();
        findings.sort();
        QCOMPARE(told.join(QLatin1Char('\n')), findings.join(QLatin1Char('\n')));
        QCOMPARE(QDir(QString::fromUtf8(staging + "/..")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList("inner"_q));
        for (const staged_entry& entry : result.entries) {
            QVERIFY2(!entry.path.contains("evil"), entry.path.constData());
        }
    }

    // A file that is not read whole leaves nothing, and the others are staged.
    void stages_whole_files_only_data() {
        QTest::addColumn<qint64>("said");
        QTest::addColumn<QString>("problem");
        QTest::addColumn<qint64>("largest");
        QTest::addColumn<QString>("told");
        const qint64 any = 100;
        QTest::newRow("whole") << qint64{5} << QString() << any << QString();
        QTest::newRow("size not told") << qint64{-1} << QString() << any << QString();
        QTest::newRow("longer than said")
            << qint64{4} << QString() << any << "it is larger than its entry says, or too large to be staged"_q;
        QTest::newRow("shorter than said") << qint64{6} << QString() << any << "it is shorter than its entry says"_q;
        QTest::newRow("not told and too large")
            << qint64{-1} << QString() << qint64{4} << "it is larger than its entry says, or too large to be staged"_q;
        QTest::newRow("said to be too large")
            << qint64{5} << QString() << qint64{4} << "it is too large to be staged (5 bytes)"_q;
        QTest::newRow("read error") << qint64{5} << "bad sector"_q << any << "bad sector"_q;
    }
    void stages_whole_files_only() {
        QFETCH(qint64, said);
        QFETCH(QString, problem);
        QFETCH(qint64, largest);
        QFETCH(QString, told);
        scripted_view view;
        view.first.size = said;
        view.problem = problem;
        view.second_size = qMin(largest, qint64{5});
        staging_limit limit;
        limit.largest_file = largest;
        const QByteArray staging = new_staging();
        const staging_result result = stage_profiles(view, {}, {"anna"}, staging, limit, never);
        const QStringList findings = texts(result.findings).filter("NTUSER.DAT:"_q);
        QCOMPARE(findings, told.isEmpty() ? QStringList() : QStringList("Users/anna/NTUSER.DAT: "_q + told));
        QCOMPARE(QFile::exists(QString::fromUtf8(staging + "/Users/anna/NTUSER.DAT")), told.isEmpty());
        QVERIFY(largest < 5 || QFile::exists(QString::fromUtf8(staging + "/Users/anna/NTUSER.DAT.LOG1")));
    }

    void stages_no_more_than_is_allowed() {
        scripted_view view;
        view.first.size = -1;
        view.second_size = -1;
        staging_limit limit;
        limit.most_bytes = 9;
        const QByteArray staging = new_staging();
        QCOMPARE(
            texts(stage_profiles(view, {}, {"anna"}, staging, limit, never).findings),
            QStringList("Users/anna/ntuser.dat.log1: it is larger than its entry says, or too large to be staged"_q));
        QCOMPARE(contents_below(staging).size(), 1);
    }

    void notices_a_copy_that_was_changed() {
        scripted_view view;
        const QByteArray staging = new_staging();
        view.meanwhile = [&] {
            QFile copy(QString::fromUtf8(staging + "/Users/anna/NTUSER.DAT"));
            QVERIFY(copy.open(QIODevice::ReadWrite) && copy.putChar('x'));
        };
        const staging_result result = stage_profiles(view, {}, {"anna"}, staging, {}, never);
        QCOMPARE(texts(result.findings),
                 QStringList("Users/anna/NTUSER.DAT: the copy that was read back is another one than was written"_q));
        QCOMPARE(contents_below(staging).size(), 1);
    }

    void leaves_only_whole_files_when_cancelled() {
        scripted_view view;
        bool is_cancelled = false;
        view.meanwhile = [&] { is_cancelled = true; };
        const QByteArray staging = new_staging();
        const staging_result result = stage_profiles(view, {}, {"anna"}, staging, {}, [&] { return is_cancelled; });
        QCOMPARE(result.stopped, QString());
        QCOMPARE(contents_below(staging), QStringList());
    }

    // What stands in the staging folder already: nothing is written over or through.
    void writes_below_the_staging_folder_only() {
        scripted_view view;
        const QByteArray outside = new_staging();
        const QByteArray staging = new_staging();
        QVERIFY(QFile::link(QString::fromUtf8(outside), QString::fromUtf8(staging + "/Users")));
        QCOMPARE(stage_profiles(view, {}, {"anna"}, staging, {}, never).stopped, "Users/anna: Not a directory"_q);
        QCOMPARE(QDir(QString::fromUtf8(outside)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
        QVERIFY(QFile::remove(QString::fromUtf8(staging + "/Users")));
        QVERIFY(QDir().mkpath(QString::fromUtf8(staging + "/Users/anna")));
        const QString link = QString::fromUtf8(staging + "/Users/anna/NTUSER.DAT");
        QVERIFY(QFile::link(QString::fromUtf8(outside + "/target"), link));
        QCOMPARE(texts(stage_profiles(view, {}, {"anna"}, staging, {}, never).findings),
                 QStringList("Users/anna/NTUSER.DAT: not staged: something stands at its place"_q));
        QVERIFY(!QFile::exists(QString::fromUtf8(outside + "/target")));
        QCOMPARE(QFileInfo(link).symLinkTarget(), QString::fromUtf8(outside + "/target"));
    }

    void makes_placeholders_of_what_exists() {
        const QByteArray staging = new_staging();
        const opened_source opened = open_source(files.path("upper.zip"), {});
        const QByteArray favicon = "Users/Bernd/AppData/Local/Microsoft/Windows/INetCache/IE/7QK2M9XA/favicon[1].ico";
        const QVector<QByteArray> wanted = {
            favicon,        "users/BERND/AppData", "Users/anna/ntuser.ini", "Users/anna/ntuser.ini",   "Users/nobody",
            "../upper.tgz", "Users/anna/../../..", "/etc/passwd",           "Users/anna/ntuser.ini/x", ""};
        const staging_result result = stage_existing(*opened.view, opened.root, wanted, staging, {}, never);
        QCOMPARE(texts(result.findings), QStringList());
        QStringList made;
        for (const staged_entry& entry : result.entries) {
            made << QString::fromUtf8(entry.path);
            const QFileInfo placeholder(QString::fromUtf8(staging + '/' + entry.path));
            QVERIFY(placeholder.exists());
            QCOMPARE(placeholder.isDir(), entry.kind == entry_kind::folder);
            QVERIFY(placeholder.isDir() || placeholder.size() == 0);
        }
        QCOMPARE(made, QStringList({QString::fromUtf8(favicon), "Users/anna/ntuser.ini"_q, "users/BERND/AppData"_q}));
        staging_limit limit;
        limit.most_entries = 2;
        const staging_result some = stage_existing(*opened.view, opened.root, wanted, new_staging(), limit, never);
        QCOMPARE(some.entries.size(), 2);
        QCOMPARE(texts(some.findings).size(), 1); // that it was not looked for all of them
    }

    // An empty file where evidence is looked for would be taken for some.
    void makes_no_placeholders_for_evidence() {
        const QByteArray staging = new_staging();
        const opened_source opened = open_source(files.path("upper.zip"), {});
        const QVector<QByteArray> wanted = {"users/Anna/ntuser.dat", "Users/bernd/" + package + "/LocalState/graph"};
        QCOMPARE(stage_existing(*opened.view, opened.root, wanted, staging, {}, never).entries.size(), 0);
        QCOMPARE(everything_below(QString::fromUtf8(staging)), QStringList());
    }
};

QTEST_GUILESS_MAIN(test_staging)
#include "test_staging.moc"
