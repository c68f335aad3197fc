// SPDX-License-Identifier: MIT
// Reading debug logs: plain, enciphered, mixed and damaged ones, and what the host counts in them.
#include "common/encryptor_string.h"
#include "host/record/log_findings.h"
#include "host/record/log_reader.h"
#include "host_case.h"

#include <QBuffer>
#include <QTemporaryFile>
#include <QtTest>

namespace {

const QByteArray separator = enciphered_record_separator;
const QByteArray start = "[2024-Mar-05T09-07-41][VANTOR_DESK][Artifacts Extraction][a::b]:-- ";

QByteArray enciphered(const QByteArray& text) {
    encryptor_string cipher(7);
    return cipher.encryptToString(text).toLatin1() + separator;
}

// "plain:...", "deciphered:..." or "broken:", one for each piece.
QList<QByteArray> pieces_of(QByteArray log) {
    QBuffer buffer(&log);
    buffer.open(QIODevice::ReadOnly);
    log_reader reader(buffer);
    QList<QByteArray> pieces;
    for (log_piece piece; reader.next(piece);) {
        static const char* const kinds[] = {"plain:", "deciphered:", "broken:"};
        pieces.append(kinds[piece.what] + piece.text);
    }
    return pieces;
}

using list = QList<QByteArray>;

} // namespace

class test_log_reading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tells_the_pieces_apart_data() {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<list>("pieces");
        const auto row = [](const char* name, const QByteArray& log, const list& pieces) {
            QTest::newRow(name) << log << pieces;
        };
        const QByteArray one = enciphered("one");
        const QByteArray two = enciphered("two");
        const QByteArray line = start + "x\n";
        const QByteArray in_line = start + separator + "x\n";
        QByteArray changed = one;
        changed[8] = changed[8] == 'A' ? 'B' : 'A';
        row("empty", "", {});
        row("not a log", "hello\nworld", {"plain:hello\n", "plain:world"});
        row("no separator at the end", one + two.chopped(separator.size()), {"deciphered:one", "deciphered:two"});
        row("cut off", one + two.left(7), {"deciphered:one", "broken:"});
        row("cut off at once", two.left(7), {"broken:"});
        row("changed byte", changed + two, {"broken:", "deciphered:two"});
        row("not Base64", one + "?" + two + one, {"deciphered:one", "broken:", "deciphered:one"});
        row("bracket in front", one + "[" + two + one, {"deciphered:one", "broken:", "deciphered:one"});
        row("line break inside", one + two.left(5) + '\n' + two.mid(5) + one,
            {"deciphered:one", "broken:", "broken:", "deciphered:one"});
        row("plain, then enciphered", line + line + one, {"plain:" + line, "plain:" + line, "deciphered:one"});
        row("enciphered, then plain", one + line, {"deciphered:one", "plain:" + line});
        row("names with line breaks and separators", start + "a\nb." + separator + "c d\n" + line,
            {"plain:" + start + "a\n", "plain:b." + separator, "plain:c d\n", "plain:" + line});
        row("separator in a line", in_line + one, {"plain:" + in_line, "deciphered:one"});
    }
    void tells_the_pieces_apart() {
        QFETCH(QByteArray, log);
        QTEST(pieces_of(log), "pieces");
    }

    void reads_pieces_larger_than_a_chunk() {
        QByteArray log;
        list expected;
        for (int size = 65000; size < 300000; size += 23456) { // separators fall on all sides of the chunks' ends
            QByteArray text;
            for (int i = 0; i < size; ++i) {
                text += static_cast<char>('a' + (i % 977) * (i % 1009) / 7 % 26);
            }
            log += enciphered(text) + start + text + '\n';
            expected << "deciphered:" + text << "plain:" + start + text + '\n';
        }
        QVERIFY(pieces_of(log) == expected);
    }

    void counts_failures_and_sources() {
        const QByteArray found = "---- FILE EXIST--";
        const QByteArray hive = "/s/Users/anna/NTUSER.DAT";
        const QByteArray odd = "/s/Users/FAILED\nx fails   --- disk I/O error/NTUSER.DAT";
        list harmless{"[find_source_file]---STARTS---",         "Error :- no such table: x", "Query :- INSERT INTO",
                      "CALLER FUNCTION -  -  void x()",         " command -  create table",  " error -  syntax",
                      " table creation -----FAILED---- cookies"};
        harmless << found + hive << found + odd;
        const list failing{" --------INSERTION Query ----FAILED------/r/Cortana.sqlite",
                           "[extract_cookies]--- insertion query fails   --- ",
                           "In sert query -----FAILED----- in graphed_cache ", "Unable to open file in graph cache",
                           " query  --------FAILED------ db file - /r/Cortana.sqlite"};
        const QByteArray trouble = "Error :- database or disk is full Unable to fetch row";
        QByteArray plain = "earlier FAILED line\n";
        const int offset = plain.size();
        QByteArray secret = plain;
        for (const QByteArray& message : harmless + failing + list{trouble}) {
            plain += start + message + '\n';
            secret += enciphered(start + message);
        }
        for (const QByteArray& log : {plain, secret}) {
            QTemporaryFile file;
            QVERIFY(file.open() && file.write(log) == log.size() && file.flush());
            log_findings findings;
            QVERIFY(read_log(file.fileName(), offset, findings));
            QCOMPARE(findings.failures, qint64(failing.size()));
            QCOMPARE(findings.first_failures.join(QLatin1Char('\n')).toUtf8(), QByteArrayList(failing).join('\n'));
            QCOMPARE(findings.found_sources, (QStringList{QString::fromUtf8(hive), QString::fromUtf8(odd)}));
            QCOMPARE(findings.output_trouble.toUtf8(), trouble);
        }
    }

    void log_command() {
        const host_case host;
        const QByteArray plain = start + "a\xff\x1b[2J\n\n" + start + "no line break at the end";
        host.write(host.base() + "/plain", plain);
        const host_answer whole = host.run("log {B}/plain"_q);
        QCOMPARE(whole.out, plain);
        QCOMPARE(whole.code, 0);
        QByteArray log = enciphered("first") + enciphered("sec\xc3\xb6nd\nline") + enciphered("third");
        log[enciphered("first").size() + 6] = '!';
        host.write(host.base() + "/broken", log);
        const host_answer broken = host.run("log {B}/broken"_q);
        QCOMPARE(broken.out, QByteArray("first\nthird\n"));
        QCOMPARE(broken.error, "cortana: record 2 of " + host.base() + "/broken cannot be deciphered\n");
        QCOMPARE(broken.code, 3);
    }
};

QTEST_GUILESS_MAIN(test_log_reading)
#include "test_log_reading.moc"
