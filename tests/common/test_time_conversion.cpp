// SPDX-License-Identifier: MIT
// Time notations, read in New York under a German locale (whose May is "Mai").
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QLocale>
#include <QtTest>

#include <ctime>

using converter = QString (*)(QString);
Q_DECLARE_METATYPE(converter)

class test_time_conversion : public QObject {
    Q_OBJECT

    using all = plugin_static_function;
    static constexpr converter apple = all::convert_apple_time_to_epoch;
    static constexpr converter google = all::convert_google_time_to_epoch;
    static constexpr converter display = all::convert_timestamp_to_human_readable_in_UTC;
    static constexpr converter duration = all::get_human_readable_time;
    static constexpr converter notation_1 = all::convert_human_readable_to_epoch_1;
    static constexpr converter notation_2 = all::convert_human_readable_to_epoch_2;
    static constexpr converter notation_3 = all::convert_human_readable_to_epoch_3;
    static constexpr converter notation_t = all::convert_T_Z_time_to_epoch;
    static constexpr converter filtered = all::get_filtered_date_value;
    static QString zone_seconds(QString hhmm) { return QString::number(all::convert_timezone_to_seconds(hhmm)); }
    static QString iso_date(QString text) {
        const QDateTime time = all::get_datetime_from_string_with_iso_date(text);
        return "%1 ahead %2"_q.arg(time.toSecsSinceEpoch()).arg(time.offsetFromUtc());
    }

    static void row(const char* name, converter convert, const char* text, const char* wanted) {
        QTest::newRow(name) << convert << QString::fromUtf8(text) << QString::fromUtf8(wanted);
    }

    static void seconds_and_month_name_rows() {
        row("apple: fraction", apple, " 0.5 ", "978307200");
        row("apple: before 2001", apple, "-1", "978307199");
        row("apple: sum beyond 32 bits", apple, "2147483647", "3125790847");
        row("apple: beyond 32 bits", apple, "2147483648", "");
        row("apple: 0", apple, "0", "");
        row("apple: word", apple, "never", "");
        row("google: microseconds", google, "13231234567000000", "1586760967");
        row("google: ten characters of any kind", google, "not parsed", "not parsed");
        row("google: before 1970", google, "11644473599999999", "-1");
        row("google: largest", google, "18446744073709551615", "18435099600109");
        row("google: 0", google, "0", "");
        row("google: negative", google, "-5", "");
        row("display: English month", display, " 1589192430.7 ", "11-May-2020 10:20:30");
        row("display: before 1970", display, "-1", "31-Dec-1969 23:59:59");
        row("display: beyond 32 bits", display, "2147483648", "");
        row("display: 0", display, "0", "");
        row("duration: under an hour", duration, "3599.99", "59:59 Min");
        row("duration: hours", duration, " 3661 ", "01:01:01 Hrs");
        row("duration: three digits of hours", duration, "360000", "100:00:00 Hrs");
        row("duration: 0", duration, "0", "00:00 Min");
        row("duration: negative", duration, "-1", "");
        row("duration: word", duration, "long", "");
        row("1: no zone", notation_1, "May 11, 2020, 10:20:30 AM", "1589206830");
        row("1: zone word", notation_1, "May 11, 2020, 10:20:30 AM GMT", "1589206830");
        row("1: UTC", notation_1, " May 11, 2020, 10:20:30 AM UTC ", "1589192430");
        row("1: afternoon", notation_1, "May 1, 2020, 1:02:03 PM UTC", "1588338123");
        row("1: noon", notation_1, "Dec 31, 2019, 12:00:00 PM UTC", "1577793600");
        row("1: midnight", notation_1, "Dec 31, 2019, 12:00:00 AM UTC", "1577750400");
        row("1: UTC in the hour that the machine skips", notation_1, "Mar 8, 2020, 2:30:00 AM UTC", "1583634600");
        row("2: UTC in the hour that the machine skips", notation_2, "2020-03-08 02:30:00.0 +0000", "1583634600");
        row("3: UTC in the hour that the machine skips", notation_3, "Sun, 08 Mar 2020 02:30:00 GMT", "1583634600");
        row("1: zone from the first, cut at the last", notation_1, "May 11, 2020, 10:20:30 AM AM UTC", "");
        row("1: zone with its case", notation_1, "May 11, 2020, 10:20:30 AM utc", "1589206830");
        row("1: German month", notation_1, "Mai 11, 2020, 10:20:30 AM UTC", "");
        row("1: empty", notation_1, "", "");
        row("3: mail", notation_3, " Mon, 11 May 2020 10:20:30 GMT ", "1589192430");
        row("3: offset is cut off", notation_3, "Mon, 11 May 2020 10:20:30 +0200", "1589192430");
        row("3: no weekday", notation_3, "31 Dec 2019 12:00:00 GMT", "1577793600");
        row("3: no zone loses the time", notation_3, "Mon, 11 May 2020 10:20:30", "");
        row("3: 0", notation_3, "0", "");
    }

    static void numeric_rows() {
        row("2: ahead", notation_2, "2020-05-11 10:20:30.123 +0530", "1589172630");
        row("2: behind", notation_2, "2020-05-11 10:20:30.123 -0700", "1589217630");
        row("2: last + counts", notation_2, "2020-05-11 10:20:30.1+9+0100", "1589188830");
        // The zone is "11 10:20:30.123": eleven hours behind, no minutes.
        row("2: no zone", notation_2, "2020-05-11 10:20:30.123", "1589232030");
        row("2: no point loses a character", notation_2, "2020-05-11 10:20:30+", "1589192430");
        row("2: no point, zone in the way", notation_2, "2020-05-11 10:20:30 +0530", "");
        row("2: neither + nor -", notation_2, "20200511 10:20:30.123", "");
        row("2: empty", notation_2, "", "");
        row("2: 0", notation_2, "0.0 +0100", "");
        row("T: dashes", notation_t, " 2020-05-11T10:20:30 ", "1589206830");
        row("T: dashes in the time", notation_t, "2020-05-11T10-20-30", "1589206830");
        row("T: milliseconds", notation_t, "2020-05-11T10:20:30.999", "1589206830");
        row("T: blank", notation_t, "2020-05-11 10:20:30", "1589206830");
        row("T: compact", notation_t, "20200511T102030", "1589206830");
        row("T: compact with Z", notation_t, "20200511T102030Z", "1589206830");
        row("T: compact date", notation_t, "20200511", "1589169600");
        row("T: dashes with Z", notation_t, "2020-05-11T10:20:30Z", "");
        row("T: before 1970", notation_t, "1969-12-31T18:59:58", "-2");
        row("T: blank text", notation_t, " ", "");
        row("filtered: UTC", filtered, " 2020-05-11T10:20:30Z ", "1589192430");
        row("filtered: offset is dropped", filtered, "2020-05-11T10:20:30+05:30", "1589192430");
        row("filtered: local is taken as UTC", filtered, "2020-05-11T10:20:30", "1589192430");
        row("filtered: zone behind a blank", filtered, "2020-05-11 10:20:30 +0530", "1589192430");
        row("filtered: nine digits", filtered, "1973-03-03T09:46:40Z", "100000000");
        row("filtered: eight digits", filtered, "1973-03-03T09:46:39Z", "");
        row("filtered: before 1970", filtered, "1960-01-01T00:00:00Z", "");
        row("filtered: blank", filtered, " ", "");
        row("iso: offset is kept", iso_date, "2020-05-11T10:20:30+05:30", "1589172630 ahead 19800");
        row("iso: second attempt", iso_date, "2020-05-11 10:20:30 +0530 (IST)", "1589172630 ahead 19800");
        row("zone: sign is part of the hours", zone_seconds, "-130", "-1800");
        row("zone: largest", zone_seconds, "0035791394", "2147483640");
        row("zone: beyond an int", zone_seconds, "0035791395", "0");
    }

private Q_SLOTS:
    void initTestCase() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        qputenv("TZ", "America/New_York");
        ::tzset();
    }

    void conversions_data() {
        QTest::addColumn<converter>("convert");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("wanted");
        seconds_and_month_name_rows();
        numeric_rows();
    }

    void conversions() {
        QFETCH(converter, convert);
        QFETCH(QString, text);
        const QString got = convert(text);
        QTEST(got, "wanted");
        QVERIFY(!got.isNull());
    }

    void second_attempt_alone_writes_its_end() {
        test_case_folder folder;
        iso_date("2020-05-11T10:20:30+05:30"_q);
        iso_date("2020-05-11 10:20:30 +0530 (IST)"_q);
        const QString function = "plugin_static_function::get_datetime_from_string_with_iso_date:-- "_q;
        QCOMPARE(folder.take_log(), QStringList({function + "Start "_q, function + "Start "_q, function + "End "_q}));
    }
};

QTEST_GUILESS_MAIN(test_time_conversion)
#include "test_time_conversion.moc"
