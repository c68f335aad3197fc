// SPDX-License-Identifier: MIT
// One line a format.
#include "host/exports/formats.h"

#include "host/exports/bodyfile_writer.h"
#include "host/exports/csv_writer.h"
#include "host/exports/geojson_writer.h"
#include "host/exports/jsonl_writer.h"
#include "host/exports/kml_writer.h"
#include "host/exports/l2tcsv_writer.h"
#include "host/exports/timesketch_writer.h"
#include "host/exports/xlsx_writer.h"

namespace {

using writer = std::unique_ptr<export_writer>;

struct format {
    QString name;
    writer (*make)(export_folder& folder, bool exact);
};

const format formats[] = {
    {QStringLiteral("csv"),
     [](export_folder& to, bool exact) -> writer { return std::make_unique<csv_writer>(to, exact); }},
    {QStringLiteral("jsonl"), [](export_folder& to, bool) -> writer { return std::make_unique<jsonl_writer>(to); }},
    {QStringLiteral("xlsx"), [](export_folder& to, bool) -> writer { return std::make_unique<xlsx_writer>(to); }},
    {QStringLiteral("timesketch"),
     [](export_folder& to, bool) -> writer { return std::make_unique<timesketch_writer>(to); }},
    {QStringLiteral("bodyfile"),
     [](export_folder& to, bool) -> writer { return std::make_unique<bodyfile_writer>(to); }},
    {QStringLiteral("l2tcsv"),
     [](export_folder& to, bool exact) -> writer { return std::make_unique<l2tcsv_writer>(to, exact); }},
    {QStringLiteral("kml"), [](export_folder& to, bool) -> writer { return std::make_unique<kml_writer>(to); }},
    {QStringLiteral("geojson"), [](export_folder& to, bool) -> writer { return std::make_unique<geojson_writer>(to); }},
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

writer make_writer(const QString& name, export_folder& folder, bool exact) {
    for (const format& known : formats) {
        if (known.name == name) {
            return known.make(folder, exact);
        }
    }
    return nullptr;
}
