// SPDX-License-Identifier: MIT
// Circles are drawn on a sphere, which for such radii differs from the Earth by less than half a percent.
#include "host/exports/places.h"

#include "host/exports/cell_text.h"

#include <cmath>

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr const char* blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The number in a column, be it stored as text or as a number.
bool read_column(const export_row& row, const char* name, double& value, bool& is_empty) {
    const int column = row.table.index_of(name);
    std::string text;
    if (column >= 0) {
        append_exact(row.cells[static_cast<std::size_t>(column)], text);
    }
    const std::string_view digits = trimmed(text);
    is_empty = digits.empty();
    return read_number(digits, value);
}

} // namespace

place place_of(const export_row& row) {
    constexpr double pole = 90;
    constexpr double antimeridian = 180;
    place found;
    if (row.table.index_of("latitude") < 0 || row.table.index_of("longitude") < 0) {
        found.state = place_state::no_table;
        return found;
    }
    bool no_latitude = false;
    bool no_longitude = false;
    const bool has_latitude = read_column(row, "latitude", found.point.latitude, no_latitude);
    const bool has_longitude = read_column(row, "longitude", found.point.longitude, no_longitude);
    if (no_latitude && no_longitude) {
        return found;
    }
    const bool valid = has_latitude && has_longitude && std::abs(found.point.latitude) <= pole &&
                       std::abs(found.point.longitude) <= antimeridian;
    found.state = valid ? place_state::valid : place_state::invalid;
    bool no_radius = false;
    read_column(row, "radius", found.radius, no_radius);
    return found;
}

QString reason_of(place_state state) {
    switch (state) {
    case place_state::no_table:
        return QStringLiteral("the table holds no places");
    case place_state::invalid:
        return QStringLiteral("invalid coordinates");
    default:
        return QStringLiteral("no coordinates");
    }
}

QVector<map_point> circle_around(const place& centre) {
    constexpr int corners = 64;
    constexpr double largest = 1000000;
    constexpr double earth_radius = 6371008.8; // metres, mean
    constexpr double degree = M_PI / 180;
    const double angle = centre.radius / earth_radius;
    if (!(centre.radius > 0 && centre.radius <= largest) || std::abs(centre.point.latitude) + angle / degree >= 90) {
        return {};
    }
    const double latitude = centre.point.latitude * degree;
    QVector<map_point> ring;
    for (int i = 0; i < corners; ++i) {
        const double bearing = -2 * M_PI * i / corners; // north, west, south, east
        const double y =
            std::asin(std::sin(latitude) * std::cos(angle) + std::cos(latitude) * std::sin(angle) * std::cos(bearing));
        const double x = std::atan2(std::sin(bearing) * std::sin(angle) * std::cos(latitude),
                                    std::cos(angle) - std::sin(latitude) * std::sin(y));
        ring.append({centre.point.longitude + x / degree, y / degree});
        if (std::abs(ring.last().longitude) > 180) {
            return {};
        }
    }
    ring.append(ring.first());
    return ring;
}
