// SPDX-License-Identifier: MIT
// One feature a line, so that the file never is in memory as a whole.
#include "host/exports/geojson_writer.h"

#include "host/exports/cell_text.h"
#include "host/exports/json_text.h"
#include "host/exports/places.h"

namespace {

void append_point(const map_point& point, std::string& to) {
    to += '[';
    append_number(point.longitude, to);
    to += ',';
    append_number(point.latitude, to);
    to += ']';
}

std::string polygon(const QVector<map_point>& ring) {
    std::string geometry = R"({"type":"Polygon","coordinates":[[)";
    for (const map_point& point : ring) {
        geometry += geometry.back() == '[' ? "" : ",";
        append_point(point, geometry);
    }
    return geometry + "]]}";
}

std::string properties_of(const export_row& row) {
    std::string properties = "{";
    append_json_field("table", std::string_view(row.table.name.constData()), properties);
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const column_description& column = row.table.columns[static_cast<int>(i)];
        if (row.cells[i].type == export_cell::null) {
            continue;
        }
        append_json_field(column.name, row.cells[i], properties);
        if (column.kind == column_kind::time) {
            append_json_times(column.name, row.times[i], row.table.with_zone, properties);
        }
    }
    return properties + '}';
}

} // namespace

geojson_writer::geojson_writer(export_folder& folder) : file(folder.create("places.geojson")) {
    file.write("{\"type\":\"FeatureCollection\",\"features\":[\n");
}

bool geojson_writer::begin(const export_table&) {
    start_counts();
    return !file.failed();
}

bool geojson_writer::row(const export_row& row) {
    const place found = place_of(row);
    if (found.state != place_state::valid) {
        return leave_out(reason_of(found.state));
    }
    const std::string properties = properties_of(row);
    std::string point = R"({"type":"Point","coordinates":)";
    append_point(found.point, point);
    count_out();
    if (!write_feature(point + '}', properties)) {
        return false;
    }
    const QVector<map_point> ring = circle_around(found);
    if (ring.isEmpty()) {
        return true;
    }
    note(QStringLiteral("circles"));
    return write_feature(polygon(ring), properties);
}

bool geojson_writer::write_feature(const std::string& geometry, const std::string& properties) {
    std::string feature = is_first ? "" : ",\n";
    is_first = false;
    feature += R"({"type":"Feature","geometry":)" + geometry + R"(,"properties":)" + properties + '}';
    return file.write(feature);
}

bool geojson_writer::finish() {
    return file.write("\n]}\n") && file.make_whole();
}
