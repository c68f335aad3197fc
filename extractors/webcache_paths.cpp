// SPDX-License-Identifier: MIT
// Implementation of the rules on WebCache containers and entries.
#include "extractors/webcache_paths.h"

#include <QStringBuilder>

namespace {

// Evidence chooses how often a text is found in it; a text that would grow past this stays as it is.
constexpr qint64 longest_grown_text = 1 << 27;

bool would_grow_too_long(const QString& text, QLatin1String before, const QString& after) {
    const qint64 growth = after.size() - before.size();
    const qint64 most_found = text.size() / before.size();
    if (growth <= 0 || text.size() + most_found * growth <= longest_grown_text) {
        return false; // without counting
    }
    return text.size() + text.count(before) * growth > longest_grown_text;
}

// text with every before replaced by after. In one pass: QString's own replace and remove move the rest of the text
// again and again, which takes hours on a long value made for it.
QString replaced(const QString& text, QLatin1String before, const QString& after) {
    int at = text.indexOf(before);
    if (at < 0 || would_grow_too_long(text, before, after)) {
        return text;
    }
    QString result;
    result.reserve(text.size() + after.size());
    int done = 0;
    for (; at >= 0; at = text.indexOf(before, done)) {
        result += text.midRef(done, at - done);
        result += after;
        done = at + before.size();
    }
    return result += text.midRef(done);
}

QString with_corrected_package_name(const QString& path) {
    return replaced(path, QLatin1String("microsoft.windows.cortana"), QStringLiteral("Microsoft.Windows.Cortana"));
}

} // namespace

bool is_cortana_container(const specific_table::struct_container_data& container, const QString& name) {
    return container.name == name && (container.directory.contains(QLatin1String("Cortana")) ||
                                      container.directory.contains(QLatin1String("cortana")));
}

QString secure_sub_directory(const specific_table::struct_ano_data& entry) {
    const int number = entry.secure_directory.toInt();
    const bool listed = number > 0 && number <= entry.container_secure_directories.size();
    return listed ? entry.container_secure_directories.at(number - 1) : QStringLiteral("");
}

// Deliberate: directories end with "/" already, so an entry without a secure sub-directory shows a doubled slash before
// its file name. Rows are found again by that text.
QString windows_path_in_secure_directory(const specific_table::struct_ano_data& entry) {
    return with_corrected_package_name(entry.container_directory % secure_sub_directory(entry) % QLatin1Char('/') %
                                       entry.filename);
}

QString windows_path_in_directory(const specific_table::struct_ano_data& entry) {
    return with_corrected_package_name(entry.container_directory % entry.filename);
}

QString on_disk_path(const QString& windows_path, const QString& root) {
    return replaced(windows_path, QLatin1String("C:/"), root);
}

QString whole_url(const QString& url) {
    return url;
}

QString url_without_user(const QString& url) {
    const int at = url.indexOf(QLatin1Char('@'));
    return at > 0 ? url.mid(at + 1) : url;
}

QString url_without_domstore(const QString& url) {
    const QLatin1String mark("DOMStore:");
    return url.startsWith(mark) ? replaced(url, mark, QStringLiteral("")) : url;
}
