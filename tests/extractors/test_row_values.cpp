// SPDX-License-Identifier: MIT
// The values that rows of several tables share.
#include "extractors/row_values.h"
#include "tests/support/test_text.h"

#include <QDateTime>
#include <QtTest>

class test_row_values : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void filetime_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("seconds");
        for (const char* nothing :
             {"", "  ", "0", "-5", "abc", "130000000000000000x", "1.5", "9223372036854775808", "116444736000000000"}) {
            QTest::addRow("'%s'", nothing) << nothing << qint64(0);
        }
        QTest::newRow("1") << "1" << qint64(-11644473600) + 1;
        QTest::newRow("a tick before 1970") << "116444735999999999" << qint64(0);
        QTest::newRow("a second after 1970") << "116444736010000000" << qint64(1);
        QTest::newRow("2012, blanks around") << " 130000000000000000 " << qint64(1355526400);
        QTest::newRow("largest") << "9223372036854775807" << qint64(910692730085);
    }
    void filetime() {
        QFETCH(QString, text);
        QTEST(filetime_to_unix_seconds(text), "seconds");
    }

    void iso_text_is_local_time() {
        const QByteArray before = qgetenv("TZ");
        const QPair<const char*, qint64> zones[] = {
            {"UTC", 1556704800}, {"Asia/Kolkata", 1556685000}, {"America/New_York", 1556719200}};
        for (const auto& zone : zones) {
            qputenv("TZ", zone.first);
            tzset();
            QCOMPARE(iso_text_to_unix_seconds("2019-05-01T10:00:00Z"_q), zone.second);
            QCOMPARE(iso_text_to_unix_seconds(" 2019-05-01 10:00:00 "_q), zone.second);
        }
        qputenv("TZ", before);
        tzset();
        for (const char* nothing : {"", "  ", "Z", "TZ"}) {
            QCOMPARE(iso_text_to_unix_seconds(QLatin1String(nothing)), qint64(0));
        }
        QCOMPARE(iso_text_to_unix_seconds("132000000000000000"_q),
                 QDateTime().toMSecsSinceEpoch() / 1000); // an invalid date-time's own answer
    }

    void below_root() {
        const QPair<const char*, const char*> cases[] = {
            {"/r/Users/a", "/Users/a"}, {"/r//Users", "/Users"}, {"x/r/Users", "x/r/Users"}, {"/r/", "/"},
            {"/R/Users", "/R/Users"},
        };
        for (const auto& [path, shown] : cases) {
            QCOMPARE(path_below_root(QLatin1String(path), "/r/"_q), QLatin1String(shown));
        }
    }
};

QTEST_GUILESS_MAIN(test_row_values)
#include "test_row_values.moc"
