// SPDX-License-Identifier: MIT
// Entries of a web cache that name files outside of the Cortana package folder: what the rows say of these files does
// not depend on the kind of source. All nine tables are compared, times included.
#include "contract/table_names.h"
#include "host/run/named_files.h"
#include "samples/webcache_schema.h"
#include "tests/intake/evidence_files.h"
#include "tests/intake/ntfs_image.h"
#include "tests/intake/wrapped_staging.h"

#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <algorithm>
#include <iterator>

namespace {

// On a file system that tells the cases apart, and to Windows.
enum there { nowhere, for_windows, everywhere };

// Directory in Windows' spelling and file name of each entry, and where it exists.
struct named_file {
    const char* directory;
    const char* file;
    there exists;
};
const named_file examples[] = {
    {R"(C:\ProgramData\Cortana\)", "there.bin", everywhere},
    {R"(C:\ProgramData\Cortana\)", "gone.bin", nowhere},
    {R"(C:\ProgramData\Cortana\)", "", everywhere}, // the folder itself
    {R"(C:\ProgramData\Cortana\..\Cortana\)", "there.bin", everywhere},
    {R"(C:\ProgramData\Nothing\..\Cortana\)", "there.bin", nowhere},
    {R"(C:\..\ProgramData\Cortana\)", "there.bin", nowhere},
    {R"(C:\Users\bernd\AppData\Local\Cortana\)", "of another profile", everywhere},
    {R"(C:\Users\Public\Cortana\)", "M\xc3\xbcnchen.txt", everywhere},
    {R"(C:\Users\Public\cortana\)", "M\xc3\xbcnchen.txt", for_windows},
    {R"(C:\Users\BERND\AppData\Local\Cortana\)", "of another profile", for_windows},
    {R"(C:\Users\anna\AppData\Local\Cortana\..\..\..\)", "NTUSER.DAT", everywhere},
    {R"(D:\Cortana\)", "there.bin", nowhere},
};

void write_webcache(const QByteArray& path) {
    ese_writer file(path.constData());
    std::vector<webcache_container> containers;
    for (const named_file& one : examples) {
        containers.push_back({static_cast<std::int64_t>(containers.size() + 1), "Cookies", one.directory, ""});
    }
    write_webcache_containers(file, containers);
    std::int64_t number = 0;
    for (const named_file& one : examples) {
        webcache_entry entry;
        entry.filename = one.file;
        entry.url = "Cookie:anna@example.org/";
        write_webcache_entries(file, ++number, {entry});
    }
    file.close();
}

// Without what Windows takes for the same file and a mounted volume does not.
QStringList without_other_case(const QStringList& rows) {
    QStringList kept;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(kept), [](const QString& row) {
        return !row.contains("C:/Users/Public/cortana/"_q) && !row.contains("/BERND/"_q);
    });
    return kept;
}

QStringList all_rows(const host_case& result) {
    QStringList rows;
    for (const QString& table : result_table_names()) {
        rows << table << dump_table(QString::fromUtf8(result.database()), table);
    }
    return without_other_case(rows);
}

} // namespace

class test_named_elsewhere : public QObject {
    Q_OBJECT

    evidence_files files;
    wrapped_staging program;

    host_answer extract(const host_case& result, const QByteArray& source, const QString& options = {}) const {
        return result.run("extract --user anna --keep-staged --json "_q + QString::fromUtf8(files.path(source)) +
                          " {R} "_q + options);
    }
    static QStringList existing(const host_case& result) {
        return dump_table(QString::fromUtf8(result.database()), "cookies"_q, {"windows_path"_q, "file_exists"_q});
    }
    static QStringList expected_rows(bool is_staged) {
        QStringList expected;
        for (const named_file& one : examples) {
            const QByteArray path = QByteArray(one.directory).replace('\\', '/') + one.file;
            const bool is_there = one.exists == everywhere || (is_staged && one.exists == for_windows);
            expected << "windows_path=text:%1 | file_exists=text:%2"_q.arg(QString::fromUtf8(path),
                                                                           is_there ? "YES"_q : "NO"_q);
        }
        return expected;
    }

private Q_SLOTS:
    void initTestCase() {
        write_webcache(files.path("source/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"));
        files.run("cd source && mkdir -p ProgramData/Cortana Users/bernd/AppData/Local/Cortana Users/Public/Cortana "
                  "Users/anna/AppData/Local/Cortana && touch ProgramData/Cortana/there.bin "
                  "Users/Public/Cortana/München.txt 'Users/bernd/AppData/Local/Cortana/of another profile'");
        write_ntfs_image(files.path("volume"), 12, files.path("source"));
        files.run(
            "truncate -s 18M disk.dd && printf 'label: gpt\nstart=8192,size=24576\n' | sfdisk -q disk.dd && "
            "dd if=volume of=disk.dd bs=512 seek=8192 conv=notrunc status=none && "
            "qemu-img convert -t unsafe -O vmdk disk.dd disk.vmdk && "
            "qemu-img convert -t unsafe -O vpc disk.dd disk.vhd && "
            "mkfs.vfat -C volume.fat 8192 >/dev/null && mcopy -s -i volume.fat source/* :: && "
            "(cd source && zip -qr1 ../source.zip . && tar -czf ../source.tgz .) && "
            "cp -a source both && cp -r both/Users/anna/AppData/Local/Microsoft both/Users/bernd/AppData/Local && "
            "tar -C both -cf both.tar . && "
            "cp -a source upper && cd upper && mv ProgramData PROGRAMDATA && mv Users/anna/NTUSER.DAT "
            "Users/anna/ntuser.dat && mv Users/Public Users/PUBLIC && mv PROGRAMDATA/Cortana/there.bin "
            "PROGRAMDATA/Cortana/There.BIN");
    }

    void rows_tell_of_them_as_of_a_folder_data() {
        QTest::addColumn<bool>("is_staged");
        for (const char* const name : {"source.zip", "source.tgz", "volume", "disk.vmdk", "disk.vhd", "volume.fat"}) {
            QTest::newRow(name) << true;
        }
        QTest::newRow("upper") << true;
        QTest::newRow("source") << false;
    }
    void rows_tell_of_them_as_of_a_folder() {
        QFETCH(bool, is_staged);
        const host_case result;
        const host_answer answer = extract(result, QTest::currentDataTag());
        QVERIFY2(answer.code == 0, answer.error.constData());
        QCOMPARE(existing(result), expected_rows(is_staged));
        QCOMPARE(answer.json()["profiles"_q], QJsonValue(QJsonArray{"anna"_q}));
    }

    // What the examiner would see who mounts the image, in every column.
    void rows_are_those_of_a_mounted_volume() {
        const QString place = QString::fromUtf8(files.path("mounted"));
        QDir().mkdir(place);
        if (QProcess::execute("ntfs-3g"_q, {"-oro"_q, QString::fromUtf8(files.path("volume")), place}) != 0) {
            QSKIP("this machine does not let us mount a volume", 0);
        }
        const host_case from_mount;
        const host_case from_image;
        const host_answer mounted = extract(from_mount, "mounted");
        files.run("umount mounted");
        QVERIFY2(mounted.code == 0, mounted.error.constData());
        QCOMPARE(extract(from_image, "disk.vmdk").code, 0);
        QVERIFY(from_image.recordings({"creation_time"_q}).size() > 0);
        QCOMPARE(all_rows(from_image), all_rows(from_mount));
    }

    // The names of each profile are asked for, whenever its rows are there.
    void each_profile_asks_data() {
        QTest::addColumn<QString>("options");
        for (const char* const options : {"--jobs 1", "--jobs 2", "--jobs 2 --clear", "--jobs 2 --all-profiles"}) {
            QTest::newRow(options) << QString::fromUtf8(options);
        }
    }
    void each_profile_asks() {
        QFETCH(QString, options);
        const host_case result;
        const host_answer answer =
            result.run("extract --quiet "_q + options + " "_q + QString::fromUtf8(files.path("both.tar")) + " {R}"_q);
        QVERIFY2(answer.code == 0, answer.error.constData());
        QCOMPARE(existing(result), expected_rows(true) + expected_rows(true));
    }

    // A cancel that comes between the rows and the question leaves no row that says NO for a file that is there.
    void a_cancel_leaves_no_row_unasked() {
        program.wrap("exec 3<&0; mkfifo \"$0.in\"; { read -r request; echo \"$request\"; read -r question; "
                     "kill -INT $2 $$; echo \"$question\"; cat; } <&3 >\"$0.in\" & "
                     "exec \"$real\" \"$@\" <\"$0.in\" 3<&-");
        const host_case result;
        const host_answer answer =
            program.extract(result, QString::fromUtf8(files.path("source.zip")), "--user anna"_q);
        QVERIFY2(answer.code == 130, answer.error.constData());
        QCOMPARE(existing(result), expected_rows(true));
    }

    void a_lost_answer_is_told() {
        program.die_after("/event.:.waiting/ { :next\nn; /event.:.staged/q; b next\n}");
        const host_case result;
        const host_answer answer =
            program.extract(result, QString::fromUtf8(files.path("source.zip")), "--user anna"_q);
        QCOMPARE(answer.code, 3);
        QVERIFY2(answer.error.contains("which files exist that web cache entries name was not found out: killed by"),
                 answer.error.constData());
        QCOMPARE(existing(result).filter("=text:YES"_q).size(), 2); // the one that it told of, and the profile's hive
    }

    // Rows come from evidence: what they ask for takes no more memory than is set.
    void more_names_than_are_asked_for() {
        const QTemporaryDir folder;
        const QString file = folder.filePath("rows.sqlite"_q);
        QString error;
        QVERIFY2(make_result_database(file, error), qPrintable(error));
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE"_q, "names"_q);
            database.setDatabaseName(file);
            QVERIFY(database.open());
            const QSqlQuery rows = database.exec(
                "with recursive n(i) as (select 1 union all select i+1 from n where i<9000) insert into "
                "cookies(bookmark,windows_path,file_exists) select 0,'C:/'||i||hex(zeroblob(1950)),'NO' from n"_q);
            QVERIFY2(!rows.lastError().isValid(), qPrintable(rows.lastError().text()));
        }
        QSqlDatabase::removeDatabase("names"_q);
        const named_files named = files_named_by({{file, {"cookies"_q}}});
        QCOMPARE(named.missing, "they are very many"_q);
        QCOMPARE(files_named_by({{file, {"searches"_q}}}).missing, QString());
        QFile damaged(file);
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("no database of any kind") > 0 && damaged.flush());
        QVERIFY(!files_named_by({{file, {"cookies"_q}}}).missing.isEmpty());
        QVERIFY2(named.paths.size() > 8000 && named.paths.size() < 9000,
                 QByteArray::number(named.paths.size()).constData());
    }

    void no_profile_comes_of_a_name() {
        const host_case result;
        const QByteArray staged = result.result() + "/Artifacts_Result/Cortana/staged/";
        const host_answer answer =
            result.run("extract --keep-staged --json "_q + QString::fromUtf8(files.path("source.zip")) + " {R}"_q);
        QCOMPARE(answer.code, 0);
        QCOMPARE(answer.json()["profiles"_q], QJsonValue(QJsonArray{"anna"_q, "bernd"_q}));
        QCOMPARE(QFileInfo(QString::fromUtf8(staged + "Users/Public/Cortana/München.txt")).size(), 0);
        QVERIFY(!QFile::exists(QString::fromUtf8(staged + "Users/anna/NTUSER.DAT.as_found")));
        QVERIFY(!answer.out.contains("there.bin")); // no evidence was read of it
    }
};

QTEST_GUILESS_MAIN(test_named_elsewhere)
#include "test_named_elsewhere.moc"
