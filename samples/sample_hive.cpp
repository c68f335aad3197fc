// SPDX-License-Identifier: MIT
// The sample's NTUSER.DAT: the traces of five web searches among what else a profile's hive holds.
#include "samples/hive_writer.h"
#include "samples/sample_source.h"

#include <QDir>

#include <cstdio>

namespace {

constexpr qint64 first_search = 1589212345678; // 2020-05-11 15:52:25 UTC, in milliseconds
constexpr qint64 hour = 3600000;
constexpr qint64 ticks_per_millisecond = 10000;
constexpr qint64 milliseconds_before_1970 = 11644473600000; // from 1601-01-01

const QString explorer = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\");

qint64 searched_at(const sample_profile& profile, int search) {
    return first_search + (24 * profile.number + search) * hour;
}

qint64 filetime_of(qint64 milliseconds) {
    return (milliseconds + milliseconds_before_1970) * ticks_per_millisecond;
}

// As the shell keeps a recent document: its name in UTF-16, then an item with the short name of the link to it.
QByteArray recent_document(const QString& name, const QByteArray& link) {
    const QByteArray head("\x32\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00", 12);
    const int size = 2 + head.size() + link.size() + 1;
    QByteArray item;
    item.append(static_cast<char>(size & 0xff)).append(static_cast<char>(size >> 8));
    return utf16_text(name) + item + head + link + QByteArray(3, '\0');
}

QByteArray searched(const QString& text, qint64 milliseconds) {
    const QByteArray tail = "form=WNSGPH&qs=SW&sbts=" + QByteArray::number(milliseconds);
    return recent_document(QStringLiteral("search?q=") + text + QLatin1Char('&') + QLatin1String(tail),
                           "search?q=" + text.toUtf8().toPercentEncoding() + '&' + tail + ".lnk");
}

// The order of the numbered values, the last used first.
hive_value use_order(const QList<quint32>& numbers) {
    QByteArray list;
    for (const quint32 number : numbers + QList<quint32>{0xffffffff}) {
        for (int shift = 0; shift < 32; shift += 8) {
            list.append(static_cast<char>((number >> shift) & 0xff));
        }
    }
    return {QStringLiteral("MRUListEx"), hive_t_REG_BINARY, list};
}

hive_value numbered(int number, const QByteArray& data) {
    return {QString::number(number), hive_t_REG_BINARY, data};
}

hive_value text_value(const QString& name, const QString& text) {
    return {name, hive_t_REG_SZ, utf16_text(text)};
}

void write_recent_documents(hive_writer& hive, const sample_profile& profile) {
    const QString recent = explorer + QStringLiteral("RecentDocs");
    const QByteArray report = recent_document(QStringLiteral("Report.docx"), "Report.lnk");
    hive.set_values(hive.add_path(recent), {numbered(0, report), use_order({0})});
    hive.set_values(hive.add_path(recent + QStringLiteral("\\.docx")), {numbered(0, report), use_order({0})});

    const auto search_key = hive.add_path(recent + QStringLiteral("\\.&input=2&FORM=WNSGPH"));
    const QString place =
        profile.number == 0 ? QStringLiteral("weather in Dresden") : QStringLiteral("train to Leipzig");
    hive.set_values(search_key,
                    {numbered(0, searched(place, searched_at(profile, 0))),
                     numbered(1, searched(QStringLiteral("opening hours library"), searched_at(profile, 1))),
                     use_order({1, 0})});
    hive.set_time(search_key, filetime_of(searched_at(profile, 1)));
}

void write_file_extensions(hive_writer& hive, const sample_profile& profile) {
    const QString extensions = explorer + QStringLiteral("FileExts\\");
    hive.set_values(hive.add_path(extensions + QStringLiteral(".pdf\\OpenWithList")),
                    {text_value(QStringLiteral("a"), QStringLiteral("AcroRd32.exe")),
                     text_value(QStringLiteral("MRUList"), QStringLiteral("a"))});
    hive.add_path(extensions + QStringLiteral(".company"));
    const QString address = QStringLiteral(".com/search?q=%1&form=QBLH&sbts=%2");
    const QString texts[] = {profile.number == 0 ? QStringLiteral("new%20york%20flights")
                                                 : QStringLiteral("used%20bicycles"),
                             QStringLiteral("caf%C3%A9%20nearby")};
    int search = 2;
    for (const QString& text : texts) {
        const qint64 time = searched_at(profile, search++);
        const auto key = hive.add_path(extensions + address.arg(text, QString::number(time)));
        hive.set_values(hive.add_key(key, QStringLiteral("OpenWithProgids")), {});
        hive.set_time(key, filetime_of(time));
    }
    // A search without a time.
    hive.add_path(extensions + QStringLiteral(".com/search?q=weather&form=QBRE"));
}

void write_other_keys(hive_writer& hive, const sample_profile& profile) {
    hive.set_values(hive.add_path(QStringLiteral("Control Panel\\Desktop")),
                    {text_value(QStringLiteral("Wallpaper"), QStringLiteral("C:\\Windows\\Web\\img0.jpg"))});
    hive.set_values(hive.add_path(QStringLiteral("Environment")),
                    {{QStringLiteral("TEMP"), hive_t_REG_EXPAND_SZ,
                      utf16_text(QStringLiteral("%USERPROFILE%\\AppData\\Local\\Temp"))}});
    hive.set_values(hive.add_path(QStringLiteral("Volatile Environment")),
                    {text_value(QStringLiteral("USERNAME"), profile.user)});
    hive.set_values(hive.add_path(explorer + QStringLiteral("TypedPaths")),
                    {text_value(QStringLiteral("url1"), QStringLiteral("C:\\Users\\") + profile.user)});
}

} // namespace

bool write_sample_hive(const sample_profile& profile) {
    hive_writer hive;
    write_other_keys(hive, profile);
    write_recent_documents(hive, profile);
    write_file_extensions(hive, profile);
    const QString path = profile.folder() + QStringLiteral("NTUSER.DAT");
    if (!QDir().mkpath(profile.folder()) || !hive.save(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return false;
    }
    return true;
}
