// SPDX-License-Identifier: MIT
// One line a format.
#include "host/exports/formats.h"

#include "host/exports/bodyfile_writer.h"
#include "host/exports/csv_writer.h"
#include "host/exports/geojson_writer.h"
#include "host/exports/html_writer.h"
#include "host/exports/jsonl_writer.h"
#include "host/exports/kml_writer.h"
#include "host/exports/l2tcsv_writer.h"
#include "host/exports/timesketch_writer.h"
#include "host/exports/xlsx_writer.h"

namespace {

using writer = std::unique_ptr<export_writer>;

struct format {
    QString name;
    writer (*make)(const writer_means& means);
};

const format formats[] = {
    {QStringLiteral("csv"),
     [](const writer_means& means) -> writer { return std::make_unique<csv_writer>(means.folder, means.exact); }},
    {QStringLiteral("jsonl"),
     [](const writer_means& means) -> writer { return std::make_unique<jsonl_writer>(means.folder); }},
    {QStringLiteral("xlsx"),
     [](const writer_means& means) -> writer { return std::make_unique<xlsx_writer>(means.folder); }},
    {QStringLiteral("timesketch"),
     [](const writer_means& means) -> writer { return std::make_unique<timesketch_writer>(means.folder); }},
    {QStringLiteral("bodyfile"),
     [](const writer_means& means) -> writer { return std::make_unique<bodyfile_writer>(means.folder); }},
    {QStringLiteral("l2tcsv"),
     [](const writer_means& means) -> writer { return std::make_unique<l2tcsv_writer>(means.folder, means.exact); }},
    {QStringLiteral("kml"),
     [](const writer_means& means) -> writer { return std::make_unique<kml_writer>(means.folder); }},
    {QStringLiteral("geojson"),
     [](const writer_means& means) -> writer { return std::make_unique<geojson_writer>(means.folder); }},
    {QStringLiteral("html"),
     [](const writer_means& means) -> writer {
         return std::make_unique<html_writer>(means.folder, means.source, means.database);
     }},
};

} // namespace

const QStringList& format_names() {
    static const QStringList names = [] {
        QStringList list;
        for (const format& known : formats) {
            list.append(known.name);
        }
        return list;
    }();
    return names;
}

writer make_writer(const QString& name, const writer_means& means) {
    for (const format& known : formats) {
        if (known.name == name) {
            return known.make(means);
        }
    }
    return nullptr;
}
