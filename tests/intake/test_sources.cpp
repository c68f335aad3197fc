// SPDX-License-Identifier: MIT
// The built program over one source as folder, image and archive: the rows are the same, what cannot be read is told,
// and nothing of the source is changed.
#include "contract/table_names.h"
#include "samples/hive_log_writer.h"
#include "samples/sample_source.h"
#include "tests/host/host_case.h"
#include "tests/intake/evidence_files.h"
#include "tests/intake/ntfs_image.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QRegularExpression>
#include <QtTest>

namespace {

const QByteArray ntuser = "Users/anna/NTUSER.DAT";

// All rows of all tables, without the named columns of recordings.
QStringList rows_of(const host_case& result, const QStringList& left_out) {
    QStringList rows;
    for (const QString& table : result_table_names()) {
        QStringList of_table = dump_table(QString::fromUtf8(result.database()), table);
        for (const QString& column : table == "latest_audio_search"_q ? left_out : QStringList()) {
            of_table.replaceInStrings(QRegularExpression("\\b"_q + column + "=[^|]*"_q), column);
        }
        rows << table << of_table;
    }
    return rows;
}

QJsonObject run_record(const host_case& result) {
    const QString file = QString::fromUtf8(result.result() + "/Artifacts_Result/Cortana/run.json");
    return QJsonDocument::fromJson(whole_file(file)).object();
}

QJsonObject evidence_ending_in(const QJsonObject& record, const QString& end) {
    for (const QJsonValue& one : record["evidence"_q].toArray()) {
        if (one["path"_q].toString().endsWith(end)) {
            return one.toObject();
        }
    }
    return {};
}

} // namespace

class test_sources : public QObject {
    Q_OBJECT

    evidence_files files;
    host_case from_folder; // the result of a run over the folder itself

    host_answer extract(const host_case& result, const QByteArray& source, const QString& options = {}) const {
        return result.run("extract --json "_q + QString::fromUtf8(files.path(source)) + " {R} "_q + options);
    }
    // Those that the image has. Whoever reads a file in the usual way changes them.
    void set_access_times(const QByteArray& source) const {
        files.run("find " + source + " -exec touch -a -d @1555526421 {} +");
    }
    // Of the files of the source: path, changed, modified, accessed.
    QByteArray all_times(const QByteArray& source) const {
        files.run("find " + source + " -type f -printf '%p %C@ %T@ %A@\\n' | sort >times");
        return whole_file(QString::fromUtf8(files.path("times")));
    }
    // Runs the script with the volume mounted at "mounted"; false: this machine does not let us.
    bool with_mounted(const QByteArray& mount, const std::function<void()>& work) const {
        files.run("mkdir -p mounted; if " + mount + " >/dev/null 2>&1; then touch is-mounted; fi");
        const bool is_mounted = QFile::remove(QString::fromUtf8(files.path("is-mounted")));
        if (is_mounted) {
            work();
            files.run("umount mounted");
        }
        return is_mounted;
    }

    // A log that leads from the hive of anna to that of another profile, beside the unfinished hive.
    void make_unfinished_hive() {
        files.run("cp -a source unfinished");
        const sample_profile other{QString::fromUtf8(files.path("other/")), "anna"_q, 1};
        QVERIFY(write_sample_hive(other));
        const QString place = QString::fromUtf8(files.path("unfinished/" + ntuser));
        constexpr quint32 number = 7;
        const QByteArray after = hive_log::with_sequences(whole_file(other.folder() + "NTUSER.DAT"_q), number, number);
        const QByteArray before = hive_log::with_sequences(whole_file(place), number, number);
        const QByteArray log = hive_log::log_header(before, hive_log::with_entries, number + 1) +
                               hive_log::log_entry(before, after, number + 1);
        const QPair<QString, QByteArray> contents[] = {{place, hive_log::with_sequences(before, number + 1, number)},
                                                       {place + ".LOG1"_q, log}};
        for (const auto& [path, bytes] : contents) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        files.run("cp -a source after && cp other/" + ntuser + " after/" + ntuser +
                  " && cd unfinished/Users/anna && mv NTUSER.DAT ntuser.dat"); // staged under the usual name
    }

private Q_SLOTS:
    void initTestCase() {
        files.run("mkdir -p source/Users/Public; find source -exec touch -m -d @1555526411 {} +");
        write_ntfs_image(files.path("disk.dd"), 12, files.path("source"));
        files.run("cp disk.dd copy.dd; ewfacquire -u -q -t disk copy.dd >/dev/null; split -b 3M -d -a 3 disk.dd part.");
        files.run("cd source && zip -qr1 ../source.zip . && tar --sort=name -czf ../source.tgz . && 7z a -bd "
                  "../source.7z . >/dev/null");
        files.run("mkdir -p upper/C && cp -a source/. upper/C && cd upper/C && mv Users USERS && mv USERS/anna/AppData "
                  "USERS/anna/appdata && mv USERS/anna/NTUSER.DAT USERS/anna/ntuser.dat");
        files.run(
            "head -c 300000 /dev/urandom >junk; : >empty; head -c 20000 source.zip >cut.zip; mkdir void; "
            "zip -qr void.zip void; printf 'MSWIM\\0\\0\\0' >some.wim; cat source.zip >>some.wim; "
            "head -c 2000 source.tgz >cut.tgz; cp part.000 gap.001; cp part.002 gap.003; zip -qrP geheim locked.zip "
            "source; cp disk.dd bde.dd; printf -- -FVE-FS- | dd of=bde.dd bs=1 seek=3 conv=notrunc status=none; "
            "truncate -s 26M both.dd; printf 'label: "
            "dos\nstart=2048,size=24576,type=7\nstart=26624,size=24576,type=7\n' | "
            "sfdisk -q both.dd; for at in 2048 26624; do dd if=disk.dd of=both.dd bs=512 seek=$at conv=notrunc "
            "status=none; done; mkdir -p two && cp -a source two/C && cp -a source two/D");
        make_unfinished_hive();
        set_access_times("source");
        QCOMPARE(extract(from_folder, "source").code, 0);
    }

    void kinds_of_source_give_the_same_rows_data() {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QString>("not_told"); // columns of recordings
        const QString created = "creation_time"_q;
        const QString both = created + " last_access_time"_q;
        for (const auto& [name, not_told] : {std::pair("disk.dd", created),
                                             {"disk.E01", created},
                                             {"part.001", created},
                                             {"source.zip", both},
                                             {"source.7z", both},
                                             {"upper", created}}) {
            QTest::newRow(name) << QByteArray(name) << not_told;
        }
    }
    void kinds_of_source_give_the_same_rows() {
        QFETCH(QByteArray, source);
        QFETCH(QString, not_told);
        const bool is_image = not_told == "creation_time"_q && source != "upper";
        const QStringList left_out = not_told.split(QLatin1Char(' '));
        const host_case staged;
        const QString path = QString::fromUtf8(files.path(source));
        const QByteArray bytes = whole_file(path);
        const QStringList before = everything_below(path);
        set_access_times(source);
        const QByteArray times = all_times(source);
        const host_answer answer = extract(staged, source);
        QVERIFY2(answer.code == 0, answer.error.constData());
        QVERIFY(is_image || all_times(source) == times); // libraries that open images let the access time change
        QCOMPARE(everything_below(path), before);
        QVERIFY(whole_file(path) == bytes);
        QCOMPARE(rows_of(staged, left_out), rows_of(from_folder, left_out));
        QVERIFY(from_folder.recordings({"file_path"_q}).size() > 1);
        for (const QString& row : is_image ? staged.recordings({"creation_time"_q}) : QStringList()) {
            QCOMPARE(row, "creation_time=integer:"_q + QString::number(ntfs_image_times[0] / 10000000 - 11644473600));
        }
        QVERIFY(!QFile::exists(QString::fromUtf8(staged.result() + "/Artifacts_Result/Cortana/staged")));
        const QJsonObject hive =
            evidence_ending_in(run_record(staged), source == "upper" ? "/ntuser.dat"_q : "/NTUSER.DAT"_q);
        QVERIFY(hive["path"_q].toString().startsWith(QString::fromUtf8(files.path(source) + '/')));
        QVERIFY(!hive["kind"_q].toString().isEmpty() && !hive["sha256"_q].toString().isEmpty());
        QCOMPARE(hive["created"_q].isNull(), not_told != "creation_time"_q);
    }

    void read_only_media_are_enough_data() {
        QTest::addColumn<bool>("is_folder");
        QTest::newRow("image") << false;
        QTest::newRow("folder of another case") << true;
    }
    void read_only_media_are_enough() {
        QFETCH(bool, is_folder);
        files.run(
            "mkdir -p medium && ln -f disk.dd medium && cp -a upper medium && mke2fs -qF -d medium medium.ext4 60M");
        const host_case result;
        host_answer answer = {};
        const bool is_mounted = with_mounted("mount -o loop,ro medium.ext4 mounted", [&] {
            answer = extract(result, is_folder ? "mounted/upper" : "mounted/disk.dd");
        });
        if (!is_mounted) {
            QSKIP("this machine does not let us mount a volume", 0);
        }
        QVERIFY2(answer.code == 0, answer.error.constData());
        const QStringList times{"creation_time"_q, "last_access_time"_q};
        QCOMPARE(rows_of(result, times), rows_of(from_folder, times));
    }

    void takes_exfat() {
        files.run("truncate -s 16M volume.exfat && mkfs.exfat volume.exfat >/dev/null");
        const bool is_mounted =
            with_mounted("losetup -f --show volume.exfat >loop && mount.exfat-fuse $(cat loop) mounted",
                         [&] { files.run("cp -r source/. mounted/ && touch -d @1555526411 mounted/Users"); });
        files.run("if [ -s loop ]; then losetup -d $(cat loop); fi");
        if (!is_mounted) {
            QSKIP("this machine does not let us mount a volume", 0);
        }
        const host_case result;
        const host_answer answer = extract(result, "volume.exfat");
        QVERIFY2(answer.code == 0, answer.error.constData());
        const QStringList times{"creation_time"_q, "last_access_time"_q, "modification_time"_q};
        QCOMPARE(rows_of(result, times), rows_of(from_folder, times));
    }

    void logs_of_an_unfinished_hive_are_applied_to_a_copy() {
        const host_case with_logs;
        const host_case without_logs;
        const host_case finished;
        const host_case as_before;
        const QStringList before = everything_below(QString::fromUtf8(files.path("unfinished")));
        QCOMPARE(extract(with_logs, "unfinished", "--tables searches --keep-staged"_q).code, 0);
        QCOMPARE(extract(without_logs, "unfinished", "--tables searches --no-hive-logs"_q).code, 0);
        QCOMPARE(extract(finished, "after", "--tables searches"_q).code, 0);
        QCOMPARE(extract(as_before, "source", "--tables searches"_q).code, 0);
        QCOMPARE(everything_below(QString::fromUtf8(files.path("unfinished"))), before);
        QCOMPARE(rows_of(with_logs, {}), rows_of(finished, {}));
        QCOMPARE(rows_of(without_logs, {}), rows_of(as_before, {}));
        QVERIFY(rows_of(finished, {}) != rows_of(as_before, {}));
        const QByteArray staged = with_logs.result() + "/Artifacts_Result/Cortana/staged/" + ntuser;
        QVERIFY(QFile::exists(QString::fromUtf8(staged)) && !QFile::exists(QString::fromUtf8(staged + ".as_found")));
        const QJsonObject hive = evidence_ending_in(run_record(with_logs), "anna/ntuser.dat"_q);
        const QByteArray given = whole_file(QString::fromUtf8(files.path("unfinished/Users/anna/ntuser.dat")));
        QCOMPARE(hive["sha256"_q].toString().toLatin1(),
                 QCryptographicHash::hash(given, QCryptographicHash::Sha256).toHex());
        QCOMPARE(hive["log_entries"_q].toInt(), 1);
        QVERIFY(hive["sha256_with_logs"_q] != hive["sha256"_q]);
        tells_which_searches_come_from_the_log(with_logs, without_logs);
    }
    // One note a keyword, none of those that stand in the hive, too.
    static void tells_which_searches_come_from_the_log(const host_case& with_logs, const host_case& without_logs) {
        const auto keywords = [](const host_case& result) {
            const QString database = QString::fromUtf8(result.database());
            return dump_table(database, "searches"_q, {"system_user"_q, "search_keyword"_q, "search_timestamp"_q})
                .filter("text:anna "_q);
        };
        const QString word = "search keyword "_q;
        QStringList told[2];
        for (const QJsonValue& one : run_record(with_logs)["notes"_q].toArray()) {
            const QString reason = one["reason"_q].toString();
            const bool is_gone = reason.contains(" gives no row: the log removes it"_q);
            if (reason.startsWith(word)) {
                QVERIFY(one["path"_q].toString().endsWith("/unfinished/Users/anna/ntuser.dat"_q));
                QVERIFY(is_gone || reason.endsWith(" is in the log only"_q));
                told[is_gone ? 1 : 0]
                    << reason.mid(word.size()).section(QRegularExpression("\\) (is in|gives)"_q), 0, 0);
            }
        }
        const QStringList after = keywords(with_logs);
        const QStringList before = keywords(without_logs);
        const QStringList expected[2] = {only_in(after, before), only_in(before, after)};
        for (const int which : {0, 1}) {
            told[which].replaceInStrings(
                QRegularExpression("^(.*) \\(time "_q),
                "system_user=text:anna | search_keyword=text:\\1 | search_timestamp=integer:"_q);
            told[which].sort();
            QVERIFY(!expected[which].isEmpty());
            QCOMPARE(told[which].join(QLatin1Char('\n')), expected[which].join(QLatin1Char('\n')));
        }
    }
    static QStringList only_in(QStringList rows, const QStringList& others) {
        for (const QString& other : others) {
            rows.removeOne(other);
        }
        rows.removeDuplicates();
        rows.sort();
        return rows;
    }

    void staged_copies_are_kept_when_asked_for() {
        const host_case result;
        QCOMPARE(extract(result, "source.zip", "--keep-staged --user anna"_q).code, 0);
        const QByteArray staged = result.result() + "/Artifacts_Result/Cortana/staged/";
        QCOMPARE(whole_file(QString::fromUtf8(staged + ntuser)),
                 whole_file(QString::fromUtf8(files.path("source/" + ntuser))));
        QVERIFY(!QFile::exists(QString::fromUtf8(staged + "Users/bernd")));
    }

    void what_cannot_be_read_is_told_data() {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QString>("options");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("words");
        const auto row = [](const char* source, const char* options, int code, const char* words) {
            QTest::newRow(qPrintable(QString::fromUtf8(source) + QString::fromUtf8(options)))
                << QByteArray(source) << QString::fromUtf8(options) << code << QByteArray(words);
        };
        row("junk", "", 2, "not a folder, an image or an archive that can be read (as an archive:");
        row("empty", "", 2, "it is empty");
        row("some.wim", "", 2, "which cannot be read");
        row("source.zip", "--type image", 2, "as an image:");
        row("source", "--type archive", 2, "it is a folder");
        row("source", "--type iso", 2, "there is no type of source 'iso'");
        row("disk.dd", "--volume 3", 2, "volume");
        row("disk.dd", "--volume none", 2, "--volume does not take 'none'");
        row("two", "", 2, "several of its folders hold a folder Users");
        row("void.zip", "", 4, "it holds no folder Users");
        row("cut.tgz", "", 3, "could not read:");
        row("gap.001", "", 3, "the segment gap.002 is missing");
        row("locked.zip", "", 3, "it is protected with a password: unpack it and give the folder");
        row("bde.dd", "", 3, "it is encrypted with BitLocker: unlock it and give the unlocked volume");
        row("both.dd", "", 2, "several volumes hold a folder Users: 1, 2; say which");
        row("source.zip", "--archive-limit 20K", 3, "too large to be staged");
    }
    void what_cannot_be_read_is_told() {
        QFETCH(QByteArray, source);
        QFETCH(QString, options);
        QFETCH(QByteArray, words);
        const host_case result;
        const host_answer answer = extract(result, source, options);
        QVERIFY2(answer.error.contains(words), answer.error.constData());
        QTEST(answer.code, "code");
        // A run that could begin leaves its record, one that could not leaves nothing.
        QCOMPARE(QFile::exists(QString::fromUtf8(result.result())),
                 source == "cut.tgz" || options.contains("archive-limit"_q));
    }

    void check_takes_the_same_sources() {
        const host_case none;
        const host_answer folder = none.run("check --json "_q + QString::fromUtf8(files.path("source")));
        const host_answer image = none.run("check --json "_q + QString::fromUtf8(files.path("disk.dd")));
        QCOMPARE(folder.code, 0);
        QCOMPARE(image.code, 0);
        for (const QJsonValue& one : folder.json()["evidence"_q].toArray()) {
            const QString below = one["path"_q].toString().mid(files.path("source").size());
            const QJsonObject same = evidence_ending_in(image.json(), below);
            QCOMPARE(same["sha256"_q], one["sha256"_q]);
            QCOMPARE(same["kind"_q], one["kind"_q]);
        }
    }
};

QTEST_GUILESS_MAIN(test_sources)
#include "test_sources.moc"
