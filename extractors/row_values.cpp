// SPDX-License-Identifier: MIT
// Implementation of the values that rows of several tables share.
#include "extractors/row_values.h"

#include "common/filetime.h"
#include "common/plugin_static_function.h"
#include "extractors/step_run.h"

row_origin origin_of(const QString& source_path, const step_context& context) {
    const QString& root = context.fs_extraction_source_path;
    const QPair<QString, QString> users = plugin_static_function::extract_user_name_from_sourcefile(source_path, root);
    const QPair<QString, QString> source_file = plugin_static_function::get_final_artifact_source_file(
        path_below_root(source_path, root), users.first, context.location_kind);
    return {users.first, users.second, source_file.first, context.os_scheme_display,
            plugin_static_function::get_source_count_name()};
}

QString path_below_root(const QString& path, const QString& root) {
    if (!path.startsWith(root)) {
        return path;
    }
    const QString below = path.mid(root.size());
    return below.startsWith(QLatin1Char('/')) ? below : QLatin1Char('/') + below;
}

qint64 filetime_to_unix_seconds(const QString& text) {
    const qint64 ticks = text.trimmed().toLongLong();
    return ticks > 0 ? (ticks - filetime::ticks_before_1970) / filetime::ticks_per_second : 0;
}

qint64 iso_text_to_unix_seconds(const QString& text) {
    QString time = text.trimmed();
    time.replace(QLatin1Char('T'), QLatin1Char(' '));
    time.remove(QLatin1Char('Z'));
    time = time.trimmed();
    if (time.isEmpty()) {
        return 0;
    }
    // Deliberate: no validity test; a text that does not parse gives what an invalid date-time gives, as it always did.
    return QDateTime::fromString(time, QStringLiteral("yyyy-MM-dd hh:mm:ss")).toMSecsSinceEpoch() / 1000;
}

QString map_url(const QString& latitude, const QString& longitude) {
    return QStringLiteral("https://www.google.com/maps?q=") + latitude + QLatin1Char(',') + longitude;
}
