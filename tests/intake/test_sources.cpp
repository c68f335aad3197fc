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
        files.run("cp -a source after && cp other/" + ntuser + " after/" + ntuser);
    }

private Q_SLOTS:
    void initTestCase() {
        files.run("mkdir -p source/Users/Public; find source -exec touch -m -d @1555526411 {} +");
        write_ntfs_image(files.path("disk.dd"), 12, files.path("source"));
        files.run("cp disk.dd copy.dd; ewfacquire -u -q -t disk copy.dd >/dev/null; split -b 3M -d -a 3 disk.dd part.");
        files.run("cd source && zip -qr1 ../source.zip . && tar --sort=name -czf ../source.tgz . && 7zz a -bd "
                  "../source.7z . >/dev/null");
        files.run("mkdir -p upper/C && cp -a source/. upper/C && cd upper/C && mv Users USERS && mv USERS/anna/AppData "
                  "USERS/anna/appdata && mv USERS/anna/NTUSER.DAT USERS/anna/ntuser.dat");
        files.run("head -c 300000 /dev/urandom >junk; : >empty; head -c 20000 source.zip >cut.zip; mkdir void; "
                  "zip -qr void.zip void; printf 'MSWIM\\0\\0\\0' >some.wim; cat source.zip >>some.wim; "
                  "head -c 2000 source.tgz >cut.tgz; mkdir -p two && cp -a source two/C && cp -a source two/D");
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
                                             {"source.tgz", both},
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
        const host_answer answer = extract(staged, source);
        QVERIFY2(answer.code == 0, answer.error.constData());
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

    void logs_of_an_unfinished_hive_are_applied_to_a_copy() {
        const host_case with_logs;
        const host_case without_logs;
        const host_case finished;
        const host_case as_before;
        const QStringList before = everything_below(QString::fromUtf8(files.path("unfinished")));
        QCOMPARE(extract(with_logs, "unfinished", "--tables searches"_q).code, 0);
        QCOMPARE(extract(without_logs, "unfinished", "--tables searches --no-hive-logs"_q).code, 0);
        QCOMPARE(extract(finished, "after", "--tables searches"_q).code, 0);
        QCOMPARE(extract(as_before, "source", "--tables searches"_q).code, 0);
        QCOMPARE(everything_below(QString::fromUtf8(files.path("unfinished"))), before);
        QCOMPARE(rows_of(with_logs, {}), rows_of(finished, {}));
        QCOMPARE(rows_of(without_logs, {}), rows_of(as_before, {}));
        QVERIFY(rows_of(finished, {}) != rows_of(as_before, {}));
        const QJsonObject hive = evidence_ending_in(run_record(with_logs), "anna/NTUSER.DAT"_q);
        const QByteArray given = whole_file(QString::fromUtf8(files.path("unfinished/" + ntuser)));
        QCOMPARE(hive["sha256"_q].toString().toLatin1(),
                 QCryptographicHash::hash(given, QCryptographicHash::Sha256).toHex());
        QCOMPARE(hive["log_entries"_q].toInt(), 1);
        QVERIFY(hive["sha256_with_logs"_q] != hive["sha256"_q]);
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
        QCOMPARE(QFile::exists(QString::fromUtf8(result.result())), answer.code == 3);
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
