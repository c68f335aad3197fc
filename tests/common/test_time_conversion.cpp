// SPDX-License-Identifier: MIT
// Time notations, each row in a time zone of its own and all under a German locale (whose May is "Mai").
#include "common/plugin_static_function.h"

#include <QLocale>
#include <QtTest>

#include <ctime>

using converter = QString (*)(QString);
Q_DECLARE_METATYPE(converter)

class test_time_conversion : public QObject {
    Q_OBJECT

    using all = plugin_static_function;

    static void set_zone(const char* zone) {
        qputenv("TZ", zone);
        ::tzset();
    }

    static void columns() {
        QTest::addColumn<converter>("convert");
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("wanted");
    }

    static void row(const char* name, converter convert, const char* text, const char* wanted,
                    const char* zone = "America/New_York") {
        QTest::newRow(name) << convert << QByteArray(zone) << QString::fromUtf8(text) << QString::fromUtf8(wanted);
    }

    // The same wall time read in three zones.
    static void local_rows(const char* name, converter convert, const char* text, qint64 seconds_in_utc) {
        const struct {
            const char* zone;
            int ahead;
        } zones[] = {{"UTC", 0}, {"Asia/Kolkata", 19800}, {"America/New_York", -14400}};
        for (const auto& zone : zones) {
            QTest::newRow(QByteArray(name).append(", ").append(zone.zone).constData())
                << convert << QByteArray(zone.zone) << QString::fromUtf8(text)
                << QString::number(seconds_in_utc - zone.ahead);
        }
    }

    static void seconds_rows() {
        row("apple: fraction", all::convert_apple_time_to_epoch, " 0.5 ", "978307200");
        row("apple: whole", all::convert_apple_time_to_epoch, "610885230.9", "1589192430");
        row("apple: before 2001", all::convert_apple_time_to_epoch, "-1", "978307199");
        row("apple: sum beyond 32 bits", all::convert_apple_time_to_epoch, "2147483647", "3125790847");
        row("apple: beyond 32 bits", all::convert_apple_time_to_epoch, "2147483648", "");
        row("apple: 0", all::convert_apple_time_to_epoch, "0", "");
        row("apple: blank", all::convert_apple_time_to_epoch, " ", "");
        row("apple: word", all::convert_apple_time_to_epoch, "never", "");
        row("google: microseconds", all::convert_google_time_to_epoch, "13231234567000000", "1586760967");
        row("google: ten characters", all::convert_google_time_to_epoch, "1586760967", "1586760967");
        row("google: ten characters of any kind", all::convert_google_time_to_epoch, "not parsed", "not parsed");
        row("google: before 1970", all::convert_google_time_to_epoch, "11644473599999999", "-1");
        row("google: largest", all::convert_google_time_to_epoch, "18446744073709551615", "18435099600109");
        row("google: 0", all::convert_google_time_to_epoch, "0", "");
        row("google: negative", all::convert_google_time_to_epoch, "-5", "");
        row("google: empty", all::convert_google_time_to_epoch, "", "");
        row("display: English month", all::convert_timestamp_to_human_readable_in_UTC, " 1589192430.7 ",
            "11-May-2020 10:20:30");
        row("display: before 1970", all::convert_timestamp_to_human_readable_in_UTC, "-1", "31-Dec-1969 23:59:59");
        row("display: last of 32 bits", all::convert_timestamp_to_human_readable_in_UTC, "2147483647",
            "19-Jan-2038 03:14:07");
        row("display: beyond 32 bits", all::convert_timestamp_to_human_readable_in_UTC, "2147483648", "");
        row("display: 0", all::convert_timestamp_to_human_readable_in_UTC, "0", "");
        row("display: word", all::convert_timestamp_to_human_readable_in_UTC, "never", "");
        row("duration: under a minute", all::get_human_readable_time, "59", "00:59 Min");
        row("duration: under an hour", all::get_human_readable_time, "3599.99", "59:59 Min");
        row("duration: hours", all::get_human_readable_time, " 3661 ", "01:01:01 Hrs");
        row("duration: three digits of hours", all::get_human_readable_time, "360000", "100:00:00 Hrs");
        row("duration: 0", all::get_human_readable_time, "0", "00:00 Min");
        row("duration: negative", all::get_human_readable_time, "-1", "");
        row("duration: blank", all::get_human_readable_time, " ", "");
        row("duration: word", all::get_human_readable_time, "long", "");
    }

    static void named_month_rows() {
        local_rows("1: no zone", all::convert_human_readable_to_epoch_1, "May 11, 2020, 10:20:30 AM", 1589192430);
        local_rows("1: zone word", all::convert_human_readable_to_epoch_1, "May 11, 2020, 10:20:30 AM GMT", 1589192430);
        row("1: UTC", all::convert_human_readable_to_epoch_1, " May 11, 2020, 10:20:30 AM UTC ", "1589192430");
        row("1: afternoon", all::convert_human_readable_to_epoch_1, "May 1, 2020, 1:02:03 PM UTC", "1588338123");
        row("1: noon", all::convert_human_readable_to_epoch_1, "Dec 31, 2019, 12:00:00 PM UTC", "1577793600");
        row("1: midnight", all::convert_human_readable_to_epoch_1, "Dec 31, 2019, 12:00:00 AM UTC", "1577750400");
        row("1: UTC in the hour that the machine skips", all::convert_human_readable_to_epoch_1,
            "Mar 8, 2020, 2:30:00 AM UTC", "1583634600");
        row("2: UTC in the hour that the machine skips", all::convert_human_readable_to_epoch_2,
            "2020-03-08 02:30:00.0 +0000", "1583634600");
        row("3: UTC in the hour that the machine skips", all::convert_human_readable_to_epoch_3,
            "Sun, 08 Mar 2020 02:30:00 GMT", "1583634600");
        row("1: zone from the first, cut at the last", all::convert_human_readable_to_epoch_1,
            "May 11, 2020, 10:20:30 AM AM UTC", "");
        row("1: zone with its case", all::convert_human_readable_to_epoch_1, "May 11, 2020, 10:20:30 AM utc",
            "1589206830");
        row("1: German month", all::convert_human_readable_to_epoch_1, "Mai 11, 2020, 10:20:30 AM UTC", "");
        row("1: empty", all::convert_human_readable_to_epoch_1, "", "");
        row("3: mail", all::convert_human_readable_to_epoch_3, " Mon, 11 May 2020 10:20:30 GMT ", "1589192430");
        row("3: offset is cut off", all::convert_human_readable_to_epoch_3, "Mon, 11 May 2020 10:20:30 +0200",
            "1589192430");
        row("3: no weekday", all::convert_human_readable_to_epoch_3, "31 Dec 2019 12:00:00 GMT", "1577793600");
        row("3: German month", all::convert_human_readable_to_epoch_3, "Di, 31 Dez 2019 12:00:00 GMT", "");
        row("3: no zone loses the time", all::convert_human_readable_to_epoch_3, "Mon, 11 May 2020 10:20:30", "");
        row("3: 0", all::convert_human_readable_to_epoch_3, "0", "");
        row("3: one word", all::convert_human_readable_to_epoch_3, "soon", "");
    }

    static void numeric_rows() {
        row("2: ahead", all::convert_human_readable_to_epoch_2, "2020-05-11 10:20:30.123 +0530", "1589172630");
        row("2: behind", all::convert_human_readable_to_epoch_2, "2020-05-11 10:20:30.123 -0700", "1589217630");
        row("2: last + counts", all::convert_human_readable_to_epoch_2, "2020-05-11 10:20:30.1+9+0100", "1589188830");
        // The zone is "11 10:20:30.123": eleven hours behind, no minutes.
        row("2: no zone", all::convert_human_readable_to_epoch_2, "2020-05-11 10:20:30.123", "1589232030");
        row("2: no point loses a character", all::convert_human_readable_to_epoch_2, "2020-05-11 10:20:30+",
            "1589192430");
        row("2: no point, zone in the way", all::convert_human_readable_to_epoch_2, "2020-05-11 10:20:30 +0530", "");
        row("2: neither + nor -", all::convert_human_readable_to_epoch_2, "20200511 10:20:30.123", "");
        row("2: 0", all::convert_human_readable_to_epoch_2, "0.0 +0100", "");
        row("2: empty", all::convert_human_readable_to_epoch_2, "", "");
        local_rows("T: dashes", all::convert_T_Z_time_to_epoch, " 2020-05-11T10:20:30 ", 1589192430);
        local_rows("T: dashes in the time", all::convert_T_Z_time_to_epoch, "2020-05-11T10-20-30", 1589192430);
        local_rows("T: milliseconds", all::convert_T_Z_time_to_epoch, "2020-05-11T10:20:30.999", 1589192430);
        local_rows("T: blank", all::convert_T_Z_time_to_epoch, "2020-05-11 10:20:30", 1589192430);
        local_rows("T: compact", all::convert_T_Z_time_to_epoch, "20200511T102030", 1589192430);
        local_rows("T: compact with Z", all::convert_T_Z_time_to_epoch, "20200511T102030Z", 1589192430);
        local_rows("T: compact date", all::convert_T_Z_time_to_epoch, "20200511", 1589155200);
        row("T: dashes with Z", all::convert_T_Z_time_to_epoch, "2020-05-11T10:20:30Z", "");
        row("T: dashed date alone", all::convert_T_Z_time_to_epoch, "2020-05-11", "");
        row("T: before 1970", all::convert_T_Z_time_to_epoch, "1969-12-31T23:59:58", "-2", "UTC");
        row("T: blank text", all::convert_T_Z_time_to_epoch, " ", "");
        row("filtered: UTC", all::get_filtered_date_value, " 2020-05-11T10:20:30Z ", "1589192430");
        row("filtered: offset is dropped", all::get_filtered_date_value, "2020-05-11T10:20:30+05:30", "1589192430");
        row("filtered: local is taken as UTC", all::get_filtered_date_value, "2020-05-11T10:20:30", "1589192430");
        row("filtered: zone behind a blank", all::get_filtered_date_value, "2020-05-11 10:20:30 +0530", "1589192430");
        row("filtered: nine digits", all::get_filtered_date_value, "1973-03-03T09:46:40Z", "100000000");
        row("filtered: eight digits", all::get_filtered_date_value, "1973-03-03T09:46:39Z", "");
        row("filtered: before 1970", all::get_filtered_date_value, "1960-01-01T00:00:00Z", "");
        row("filtered: word", all::get_filtered_date_value, "yesterday", "");
        row("filtered: blank", all::get_filtered_date_value, " ", "");
    }

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

    void conversions_data() {
        columns();
        seconds_rows();
        named_month_rows();
        numeric_rows();
    }

    void conversions() {
        QFETCH(converter, convert);
        QFETCH(QByteArray, zone);
        QFETCH(QString, text);
        QFETCH(QString, wanted);
        set_zone(zone.constData());
        const QString got = convert(text);
        QCOMPARE(got, wanted);
        QVERIFY(!got.isNull());
    }

    void zone_seconds_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("seconds");
        QTest::newRow("ahead") << QStringLiteral("0530") << 19800;
        QTest::newRow("hours only") << QStringLiteral("07") << 25200;
        QTest::newRow("sign is part of the hours") << QStringLiteral("-130") << -1800;
        QTest::newRow("empty") << QString() << 0;
        QTest::newRow("words") << QStringLiteral("UTC") << 0;
        QTest::newRow("largest") << QStringLiteral("0035791394") << 2147483640;
        QTest::newRow("beyond an int") << QStringLiteral("0035791395") << 0;
    }

    void zone_seconds() {
        QFETCH(QString, text);
        QTEST(plugin_static_function::convert_timezone_to_seconds(text), "seconds");
    }

    void iso_date_keeps_its_offset_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("lines"); // of the log
        QTest::newRow("at once") << QStringLiteral("2020-05-11T10:20:30+05:30") << 1;
        QTest::newRow("second attempt") << QStringLiteral("2020-05-11 10:20:30 +0530 (IST)") << 2;
    }

    void iso_date_keeps_its_offset() {
        QFETCH(QString, text);
        QFETCH(int, lines);
        QTemporaryDir folder;
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = true;
        general.debug_print_in_file = true;
        general.debug_file_path = folder.filePath(QStringLiteral("log"));
        plugin_static_function::set_general_info(general);
        const QDateTime time = plugin_static_function::get_datetime_from_string_with_iso_date(text);
        plugin_static_function::close_debug_file();
        plugin_static_function::set_essentials();
        QCOMPARE(time.toMSecsSinceEpoch(), qint64(1589172630000));
        QCOMPARE(time.offsetFromUtc(), 19800);
        QFile log(general.debug_file_path);
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QByteArrayList written = log.readAll().split('\n');
        QCOMPARE(written.size(), lines + 1);
        QVERIFY(written.at(0).endsWith(" Start "));
        QVERIFY(lines == 1 || written.at(1).endsWith(" End "));
    }
};

QTEST_GUILESS_MAIN(test_time_conversion)
#include "test_time_conversion.moc"
