// SPDX-License-Identifier: MIT
// Degrees are drawn alike in the middle of the picture; towards its upper and lower edge the scale differs.
#include "host/exports/report_places.h"

#include "host/exports/cell_text.h"
#include "host/exports/html_text.h"
#include "host/exports/report_columns.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t most_drawn = 500;
constexpr std::size_t longest_name = 200;

std::string in_degrees(double value, double step) {
    const int digits = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 6);
    return QByteArray::number(value, 'f', digits).toStdString() + "°";
}

// 1, 2 or 5 times a power of ten, so that about that many lines cross the range.
double step_for(double range) {
    constexpr double lines = 6;
    const double power = std::pow(10, std::floor(std::log10(range / lines)));
    for (const double times : {1.0, 2.0, 5.0}) {
        if (range / (times * power) <= lines) {
            return times * power;
        }
    }
    return 10 * power;
}

class map_frame {
public:
    void include(const map_point& point) {
        west = std::min(west, point.longitude);
        east = std::max(east, point.longitude);
        south = std::min(south, point.latitude);
        north = std::max(north, point.latitude);
    }

    // Some room around, never less than about a kilometre, and the shape of the picture.
    void settle() {
        constexpr double least = 0.01;
        constexpr double room = 1.3;
        const double middle = (south + north) / 2;
        squeeze = std::max(std::cos(middle * M_PI / 180), 0.1);
        double high = std::max(north - south, least) * room;
        double wide = std::max(east - west, least / squeeze) * room;
        const double shape = static_cast<double>(inner_width()) / inner_height();
        high = std::max(high, wide * squeeze / shape);
        wide = high * shape / squeeze;
        centre = {(west + east) / 2, middle};
        degrees_high = high;
        degrees_wide = wide;
    }

    double x_of(double longitude) const {
        return left + inner_width() * ((longitude - centre.longitude) / degrees_wide + 0.5);
    }
    double y_of(double latitude) const {
        return top + inner_height() * (0.5 - (latitude - centre.latitude) / degrees_high);
    }

    std::string grid() const {
        std::string html = "<rect class=\"sea\" x=\"" + number(left) + "\" y=\"" + number(top) + "\" width=\"" +
                           number(inner_width()) + "\" height=\"" + number(inner_height()) + "\"/>\n";
        const double step = step_for(degrees_wide);
        const double from = centre.longitude - degrees_wide / 2;
        for (int i = 0; i <= most_lines; ++i) {
            const double at = (std::ceil(from / step) + i) * step;
            if (at <= from + degrees_wide && std::abs(at) <= 180) {
                html += line(x_of(at), top, x_of(at), top + inner_height()) +
                        label("tick", x_of(at), height - 8, in_degrees(at, step));
            }
        }
        const double rise = step_for(degrees_high * 1.5);
        const double bottom = centre.latitude - degrees_high / 2;
        for (int i = 0; i <= most_lines; ++i) {
            const double at = (std::ceil(bottom / rise) + i) * rise;
            if (at <= bottom + degrees_high && std::abs(at) <= 90) {
                html += line(left, y_of(at), left + inner_width(), y_of(at)) +
                        label("name", left - 8, y_of(at) + 4, in_degrees(at, rise));
            }
        }
        return html;
    }

    static std::string number(double value) { return QByteArray::number(value, 'f', 2).toStdString(); }
    static std::string label(const char* kind, double x, double y, const std::string& text) {
        return std::string("<text class=\"") + kind + "\" x=\"" + number(x) + "\" y=\"" + number(y) + "\">" + text +
               "</text>\n";
    }

    static constexpr int width = 1000;
    static constexpr int height = 460;

private:
    static constexpr int left = 90;
    static constexpr int top = 8;
    static constexpr int most_lines = 20;
    static constexpr int inner_width() { return width - left - 10; }
    static constexpr int inner_height() { return height - top - 28; }

    static std::string line(double x1, double y1, double x2, double y2) {
        return "<line class=\"grid\" x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) +
               "\" y2=\"" + number(y2) + "\"/>";
    }

    double west = 180;
    double east = -180;
    double south = 90;
    double north = -90;
    double squeeze = 1;
    map_point centre = {0, 0};
    double degrees_high = 1;
    double degrees_wide = 1;
};

std::string circle(const map_frame& frame, const QVector<map_point>& ring) {
    std::string points;
    for (const map_point& point : ring) {
        points += (points.empty() ? "" : " ") + map_frame::number(frame.x_of(point.longitude)) + ',' +
                  map_frame::number(frame.y_of(point.latitude));
    }
    return "<polygon class=\"radius\" points=\"" + points + "\"/>";
}

} // namespace

void report_places::take(const export_row& row) {
    const place found = place_of(row);
    invalid += found.state == place_state::invalid ? 1 : 0;
    if (found.state != place_state::valid) {
        return;
    }
    ++valid;
    if (places.size() >= most_drawn) {
        return;
    }
    const bool has_place = row.table.index_of("place") >= 0;
    std::string_view name = text_in(row, row.table.index_of(has_place ? "place" : "search_content"));
    std::string shown;
    append_html_line(name.size() > longest_name ? std::string_view("(a long name)") : name, shown);
    places.push_back({row.table.name, key_of(row), shown, found});
}

std::string report_places::list() const {
    std::string html =
        "<table class=\"numbers\"><caption>Places</caption><thead><tr><th scope=\"col\">no.</th>"
        "<th scope=\"col\">name</th><th scope=\"col\">latitude, longitude</th><th scope=\"col\">radius</th>"
        "<th scope=\"col\">row</th></tr></thead>\n<tbody>\n";
    for (std::size_t i = 0; i < places.size(); ++i) {
        const drawn_place& one = places[i];
        html += "<tr><th scope=\"row\">" + std::to_string(i + 1) + "</th><td>" + one.name + "</td><td>";
        append_number(one.where.point.latitude, html);
        html += ", ";
        append_number(one.where.point.longitude, html);
        html += ' ';
        append_map_link(one.where.point, html);
        html += "</td><td>";
        if (one.where.radius > 0) {
            append_number(one.where.radius, html);
            html += " m";
        }
        html += "</td><td>" + title_of(one.table) + ' ' + std::to_string(one.row) + "</td></tr>\n";
    }
    return html + "</tbody></table>\n";
}

std::string report_places::html() const {
    std::string html;
    if (invalid > 0) {
        html += "<p>Left out: " + counted(invalid, "row", "rows") + " with invalid coordinates.</p>\n";
    }
    if (places.empty()) {
        return html + "<p>No row holds a place.</p>\n";
    }
    map_frame frame;
    for (const drawn_place& one : places) {
        frame.include(one.where.point);
    }
    frame.settle();
    html += "<p>Positions in WGS 84 on a plain grid; circles are radii. A link to a map opens a web page and tells its "
            "operator the place.";
    if (valid > static_cast<qint64>(places.size())) {
        html += " Drawn and listed are the first " + grouped(static_cast<qint64>(places.size())) + " of " +
                grouped(valid) + "; the others stand in their tables.";
    }
    html += "</p>\n<svg class=\"places\" role=\"img\" aria-label=\"Places on a grid; they are listed below\" "
            "viewBox=\"0 0 " +
            std::to_string(map_frame::width) + ' ' + std::to_string(map_frame::height) + "\">\n" + frame.grid();
    for (const drawn_place& one : places) {
        const QVector<map_point> ring = circle_around(one.where);
        html += ring.isEmpty() ? std::string() : circle(frame, ring);
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        const map_point& at = places[i].where.point;
        html += "<circle class=\"point\" cx=\"" + map_frame::number(frame.x_of(at.longitude)) + "\" cy=\"" +
                map_frame::number(frame.y_of(at.latitude)) + "\" r=\"4\"/>";
        html +=
            map_frame::label("point", frame.x_of(at.longitude) + 7, frame.y_of(at.latitude) - 6, std::to_string(i + 1));
    }
    return html + "</svg>\n" + list();
}
