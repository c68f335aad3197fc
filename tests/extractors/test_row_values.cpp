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

    // The short way to a local time and Qt's own tell the same, in hours that are left out or come twice too.
    void iso_text_is_what_qt_tells() {
        const QByteArray before = qgetenv("TZ");
        const QString format = "yyyy-MM-dd hh:mm:ss"_q;
        QStringList texts{"2019-02-29 10:00:00"_q, "2019-05-01 24:00:00"_q, "2019-05-01 10:00:60"_q,
                          "2019-05-01 10:0 :00"_q, "2019-05-01 10-00:00"_q, "2019-05-01 10:00:000"_q,
                          "1969-12-31 23:59:59"_q, "1970-01-01 00:00:00"_q, "2038-02-01 00:00:00"_q};
        for (const char* first : {"2019-03-10", "2019-11-03", "2019-04-06", "2019-10-05", "2011-12-29", "1972-01-06"}) {
            const QDateTime day(QDate::fromString(QLatin1String(first), Qt::ISODate), QTime(0, 0), Qt::UTC);
            for (int half_hour = 0; half_hour < 96; ++half_hour) {
                texts.append(day.addSecs(1800 * half_hour).toString(format));
            }
        }
        for (const char* zone : {"UTC", "America/New_York", "Australia/Lord_Howe", "Pacific/Apia", "Africa/Monrovia"}) {
            qputenv("TZ", zone);
            tzset();
            for (const QString& text : qAsConst(texts)) {
                QCOMPARE(iso_text_to_unix_seconds(text),
                         QDateTime::fromString(text, format).toMSecsSinceEpoch() / 1000);
            }
        }
        qputenv("TZ", before);
        tzset();
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
