// SPDX-License-Identifier: MIT
// Reading debug logs: plain, enciphered, mixed and damaged ones, and what the host counts in them.
#include "common/encryptor_string.h"
#include "host/log_findings.h"
#include "host/log_reader.h"
#include "host_case.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryFile>
#include <QtTest>

class test_log_reading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tells_the_pieces_apart_data();
    void tells_the_pieces_apart();
    void reads_pieces_larger_than_a_chunk();
    void counts_failures_and_sources_data();
    void counts_failures_and_sources();
    void log_command_goes_on_after_a_broken_record();
    void log_command_passes_a_plain_log_through();
};

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

} // namespace

void test_log_reading::tells_the_pieces_apart_data() {
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QList<QByteArray>>("pieces");
    using list = QList<QByteArray>;
    const QByteArray one = enciphered("one");
    const QByteArray two = enciphered("two");
    const QByteArray line = start + "x\n";
    QByteArray changed = one;
    changed[8] = changed[8] == 'A' ? 'B' : 'A';
    QTest::newRow("empty") << QByteArray() << list();
    QTest::newRow("plain") << line + line << list{"plain:" + line, "plain:" + line};
    QTest::newRow("not a log") << QByteArray("hello\nworld") << list{"plain:hello\n", "plain:world"};
    QTest::newRow("enciphered") << one + two << list{"deciphered:one", "deciphered:two"};
    QTest::newRow("no separator at the end")
        << one + two.left(two.size() - separator.size()) << list{"deciphered:one", "deciphered:two"};
    QTest::newRow("cut off") << one + two.left(7) << list{"deciphered:one", "broken:"};
    QTest::newRow("cut off at once") << two.left(7) << list{"broken:"};
    QTest::newRow("changed byte") << changed + two << list{"broken:", "deciphered:two"};
    QTest::newRow("not Base64") << one + "?" + two + one << list{"deciphered:one", "broken:", "deciphered:one"};
    QTest::newRow("bracket in front") << one + "[" + two + one << list{"deciphered:one", "broken:", "deciphered:one"};
    QTest::newRow("line break inside") << one + two.left(5) + '\n' + two.mid(5) + one
                                       << list{"deciphered:one", "broken:", "broken:", "deciphered:one"};
    QTest::newRow("plain, then enciphered") << line + one << list{"plain:" + line, "deciphered:one"};
    QTest::newRow("enciphered, then plain") << one + line << list{"deciphered:one", "plain:" + line};
    QTest::newRow("names with line breaks and separators")
        << start + "a\nb." + separator + "c d\n" + line
        << list{"plain:" + start + "a\n", "plain:b." + separator, "plain:c d\n", "plain:" + line};
    QTest::newRow("separator in a line") << start + separator + "x\n" + one
                                         << list{"plain:" + start + separator + "x\n", "deciphered:one"};
}

void test_log_reading::tells_the_pieces_apart() {
    QFETCH(QByteArray, log);
    QFETCH(QList<QByteArray>, pieces);
    QCOMPARE(pieces_of(log), pieces);
}

void test_log_reading::reads_pieces_larger_than_a_chunk() {
    QByteArray log;
    QList<QByteArray> expected;
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

void test_log_reading::counts_failures_and_sources_data() {
    QTest::addColumn<QList<QByteArray>>("messages");
    QTest::addColumn<int>("failures");
    QTest::addColumn<QStringList>("sources");
    QTest::addColumn<bool>("output_trouble");
    using list = QList<QByteArray>;
    QTest::newRow("clean run") << list{"[find_source_file]---STARTS---", "[extract_cookies] ----- ENDS ------"} << 0
                               << QStringList() << false;
    QTest::newRow("an insert in three lines") << list{" --------INSERTION Query ----FAILED------/r/Cortana.sqlite",
                                                      "Error :- no such table: x", "Query :- INSERT INTO"}
                                              << 1 << QStringList() << false;
    QTest::newRow("other insert failures")
        << list{"[extract_cookies]--- insertion query fails   --- ", "In sert query -----FAILED----- in graphed_cache ",
                "Unable to open file in graph cache"}
        << 3 << QStringList() << false;
    QTest::newRow("a table that cannot be made")
        << list{" query  --------FAILED------ db file - /r/Cortana.sqlite", "CALLER FUNCTION -  -  void x()",
                " command -  create table", " error -  syntax", " table creation -----FAILED---- cookies"}
        << 1 << QStringList() << false;
    QTest::newRow("full disk") << list{"--------INSERTION Query ----FAILED------",
                                       "Error :- database or disk is full Unable to fetch row"}
                               << 1 << QStringList() << true;
    QTest::newRow("found sources") << list{"---- FILE EXIST--/s/Users/anna/NTUSER.DAT",
                                           "---- FILE EXIST--/s/Users/FAILED\nx fails   --- disk I/O error/NTUSER.DAT"}
                                   << 0
                                   << QStringList{QStringLiteral("/s/Users/anna/NTUSER.DAT"),
                                                  QStringLiteral(
                                                      "/s/Users/FAILED\nx fails   --- disk I/O error/NTUSER.DAT")}
                                   << false;
}

void test_log_reading::counts_failures_and_sources() {
    QFETCH(QList<QByteArray>, messages);
    QFETCH(int, failures);
    QFETCH(QStringList, sources);
    QFETCH(bool, output_trouble);
    QByteArray plain = "earlier FAILED line\n";
    const int offset = plain.size();
    QByteArray secret = plain;
    for (const QByteArray& message : messages) {
        plain += start + message + '\n';
        secret += enciphered(start + message);
    }
    for (const QByteArray& log : {plain, secret}) {
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(log) == log.size() && file.flush());
        log_findings findings;
        QVERIFY(read_log(file.fileName(), offset, findings));
        QCOMPARE(findings.failures, failures);
        QCOMPARE(findings.found_sources, sources);
        QCOMPARE(!findings.output_trouble.isEmpty(), output_trouble);
    }
}

void test_log_reading::log_command_goes_on_after_a_broken_record() {
    const host_case host;
    QByteArray log = enciphered("first") + enciphered("sec\xc3\xb6nd\nline") + enciphered("third");
    log[enciphered("first").size() + 6] = '!';
    host.write(host.base() + "/log", log);
    const host_answer answer = host.run({QStringLiteral("log"), QStringLiteral("{B}/log")});
    QCOMPARE(answer.out, QByteArray("first\nthird\n"));
    QCOMPARE(answer.error, "cortana: record 2 of " + host.base() + "/log cannot be deciphered\n");
    QCOMPARE(answer.code, 3);
}

void test_log_reading::log_command_passes_a_plain_log_through() {
    const host_case host;
    const QByteArray log = start + "a\xff\x1b[2J\n\n" + start + "no line break at the end";
    host.write(host.base() + "/log", log);
    const host_answer answer = host.run({QStringLiteral("log"), QStringLiteral("{B}/log")});
    QCOMPARE(answer.out, log);
    QCOMPARE(answer.code, 0);
}

QTEST_GUILESS_MAIN(test_log_reading)
#include "test_log_reading.moc"
