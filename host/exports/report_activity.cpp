// SPDX-License-Identifier: MIT
// A strip of bars a table over one axis of days. A few times far away from all others ("expires in 2099") would press
// everything else into one bar: they are counted beside the picture.
#include "host/exports/report_activity.h"

#include "host/exports/html_text.h"

#include <QDate>

#include <algorithm>

namespace {

constexpr qint64 seconds_per_day = 86400;
constexpr qint64 most_bars = 120;
constexpr std::size_t most_days = 10000; // of a table, before several go together

qint64 floor_of(qint64 number, qint64 divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

std::string date_of(qint64 day) {
    return QDate(1970, 1, 1).addDays(day).toString(Qt::ISODate).toStdString();
}

// The days that the picture shows, and how many go into a bar.
struct day_window {
    qint64 first = 0;
    qint64 bars = 0;
    qint64 width = 1;
    qint64 earlier = 0; // events before
    qint64 later = 0;   // and behind

    qint64 bar_of(qint64 day) const { return floor_of(day - first, width); }
    std::string name_of(qint64 bar) const {
        const qint64 from = first + bar * width;
        return width == 1 ? date_of(from) : date_of(from) + " to " + date_of(from + width - 1);
    }
};

// The first day with which the given part of all events is reached.
qint64 day_at(const std::map<qint64, qint64>& all, qint64 part) {
    qint64 sum = 0;
    for (const auto& [day, events] : all) {
        sum += events;
        if (sum >= part) {
            return day;
        }
    }
    return all.rbegin()->first;
}

day_window window_of(const std::map<qint64, qint64>& all, qint64 together) {
    constexpr qint64 far_away = 4; // times as long as what holds most events
    constexpr qint64 hundredth = 100;
    constexpr qint64 shortest = 14;
    qint64 total = 0;
    for (const auto& [day, events] : all) {
        total += events;
    }
    qint64 from = all.begin()->first;
    qint64 to = all.rbegin()->first + together - 1;
    const qint64 most_from = day_at(all, total / hundredth + 1);
    const qint64 most_to = day_at(all, total - total / hundredth) + together - 1;
    const qint64 most = std::max(most_to - most_from + 1, shortest);
    if (to - from + 1 > far_away * most) {
        from = std::max(from, most_from - most / far_away);
        to = std::min(to, most_to + most / far_away);
    }
    day_window window;
    window.first = from;
    const qint64 days = to - from + 1;
    window.width = std::max((days + most_bars - 1) / most_bars, together);
    window.bars = (days + window.width - 1) / window.width;
    for (const auto& [day, events] : all) {
        window.earlier += day < from ? events : 0;
        window.later += window.bar_of(day) >= window.bars ? events : 0;
    }
    return window;
}

struct strip {
    std::string title;
    std::vector<qint64> bars;
    qint64 highest = 0;
};

class picture {
public:
    picture(const day_window& of_days, const std::vector<strip>& of_tables) : window(of_days), strips(of_tables) {}

    std::string svg() {
        const int height = top + static_cast<int>(strips.size()) * pitch + axis;
        html = "<svg class=\"activity\" role=\"img\" aria-label=\"Events over time, by table; the numbers stand in the "
               "table "
               "below\" viewBox=\"0 0 " +
               std::to_string(width) + ' ' + std::to_string(height) + "\">\n";
        append_axis(height);
        for (std::size_t i = 0; i < strips.size(); ++i) {
            append_strip(strips[i], top + static_cast<int>(i) * pitch, static_cast<int>(i % colours));
        }
        return html + "</svg>\n";
    }

private:
    static constexpr int width = 1000;
    static constexpr int left = 170;
    static constexpr int right = 70;
    static constexpr int top = 6;
    static constexpr int pitch = 40;
    static constexpr int bar_height = 30;
    static constexpr int axis = 28;
    static constexpr std::size_t colours = 4;

    double place_of(qint64 bar) const {
        return left +
               static_cast<double>(width - left - right) * static_cast<double>(bar) / static_cast<double>(window.bars);
    }

    void append(const char* name, double value) {
        constexpr double hundred = 100;
        html += std::string(" ") + name + "=\"" + std::to_string(static_cast<int>(value)) + '.';
        const int rest = static_cast<int>(value * hundred) % 100;
        html += (rest < 10 ? "0" : "") + std::to_string(rest) + '"';
    }

    void append_axis(int height) {
        constexpr qint64 most_ticks = 6;
        const qint64 step = std::max<qint64>((window.bars + most_ticks - 1) / most_ticks, 1);
        for (qint64 bar = 0; bar < window.bars; bar += step) {
            html += "<line class=\"grid\"";
            append("x1", place_of(bar));
            append("x2", place_of(bar));
            append("y1", top);
            append("y2", height - axis + 4);
            html += "/><text class=\"tick\"";
            append("x", place_of(bar));
            append("y", height - 8);
            html += '>' + date_of(window.first + bar * window.width) + "</text>\n";
        }
    }

    void append_strip(const strip& one, int y, int colour) {
        const double base = y + bar_height;
        html += "<text class=\"name\"";
        append("x", left - 12);
        append("y", base - 2);
        html += '>' + one.title + "</text><text class=\"most\"";
        append("x", width - right + 8);
        append("y", base - 2);
        html += ">max " + grouped(one.highest) + "</text><line class=\"base\"";
        append("x1", left);
        append("x2", width - right);
        append("y1", base);
        append("y2", base);
        html += "/>\n<g class=\"s" + std::to_string(colour) + "\">";
        for (std::size_t bar = 0; bar < one.bars.size(); ++bar) {
            if (one.bars[bar] > 0) {
                append_bar(one, static_cast<qint64>(bar), base);
            }
        }
        html += "</g>\n";
    }

    void append_bar(const strip& one, qint64 bar, double base) {
        constexpr double least = 1.5; // so that a single event is seen
        const qint64 events = one.bars[static_cast<std::size_t>(bar)];
        const double height =
            std::max(least, bar_height * static_cast<double>(events) / static_cast<double>(one.highest));
        const double gap = window.bars > most_bars / 2 ? 0.6 : 1.5;
        html += "<rect";
        append("x", place_of(bar) + gap / 2);
        append("y", base - height);
        append("width", std::max(place_of(bar + 1) - place_of(bar) - gap, 1.0));
        append("height", height);
        html += "><title>" + window.name_of(bar) + ": " + counted(events, "event", "events") + "</title></rect>";
    }

    const day_window& window;
    const std::vector<strip>& strips;
    std::string html;
};

std::string numbers_of(const day_window& window, const std::vector<strip>& strips) {
    std::string html =
        "<details><summary>The same as numbers</summary>\n<table class=\"numbers\"><caption>Events by days "
        "(UTC) and table</caption><thead><tr><th scope=\"col\">days</th>";
    for (const strip& one : strips) {
        html += "<th scope=\"col\">" + one.title + "</th>";
    }
    html += "</tr></thead>\n<tbody>";
    for (qint64 bar = 0; bar < window.bars; ++bar) {
        std::string cells;
        bool has_any = false;
        for (const strip& one : strips) {
            const qint64 events = one.bars[static_cast<std::size_t>(bar)];
            has_any = has_any || events > 0;
            cells += "<td>" + (events > 0 ? grouped(events) : std::string()) + "</td>";
        }
        html += has_any ? "<tr><th scope=\"row\">" + window.name_of(bar) + "</th>" + cells + "</tr>\n" : std::string();
    }
    return html + "</tbody></table></details>\n";
}

std::string not_drawn(const day_window& window, const std::map<qint64, qint64>& all) {
    std::string text;
    if (window.earlier > 0) {
        text += " Not drawn: " + counted(window.earlier, "earlier event", "earlier events") + ", the first on " +
                date_of(all.begin()->first) + '.';
    }
    if (window.later > 0) {
        text += " Not drawn: " + counted(window.later, "later event", "later events") + ", the last on " +
                date_of(all.rbegin()->first) + '.';
    }
    return text;
}

} // namespace

void day_counts::add(qint64 unix_seconds) {
    ++counts[floor_of(floor_of(unix_seconds, seconds_per_day), width)];
    if (counts.size() > most_days) {
        widen();
    }
}

void day_counts::widen() {
    constexpr int times = 8;
    std::unordered_map<qint64, qint64> wider;
    for (const auto& [number, events] : counts) {
        wider[floor_of(number, times)] += events;
    }
    counts.swap(wider);
    width *= times;
}

std::map<qint64, qint64> day_counts::by_day() const {
    std::map<qint64, qint64> days;
    for (const auto& [number, events] : counts) {
        days[number * width] += events;
    }
    return days;
}

void report_activity::begin(const export_table& table) {
    tables.push_back({QByteArray(table.name).replace('_', ' ').toStdString(), {}});
}

void report_activity::take(const export_row& row) {
    for (const export_time& time : row.times) {
        if (time.is_time) {
            tables.back().days.add(time.seconds);
        }
    }
}

std::string report_activity::html() const {
    std::map<qint64, qint64> all;
    qint64 together = 1;
    for (const table_days& table : tables) {
        together = std::max<qint64>(together, table.days.days_together());
        for (const auto& [day, events] : table.days.by_day()) {
            all[day] += events;
        }
    }
    if (all.empty()) {
        return "<p>No row holds a time.</p>\n";
    }
    const day_window window = window_of(all, together);
    std::vector<strip> strips;
    for (const table_days& table : tables) {
        strip one{table.title, std::vector<qint64>(static_cast<std::size_t>(window.bars)), 0};
        for (const auto& [day, events] : table.days.by_day()) {
            const qint64 bar = window.bar_of(day);
            if (bar >= 0 && bar < window.bars) {
                one.bars[static_cast<std::size_t>(bar)] += events;
            }
        }
        one.highest = *std::max_element(one.bars.begin(), one.bars.end());
        if (one.highest > 0) {
            strips.push_back(one);
        }
    }
    return "<p>Each bar: " + (window.width == 1 ? std::string("a day") : grouped(window.width) + " days") +
           " (UTC). Each strip has a scale of its own, its highest bar at the right. An event is a column of a row "
           "that "
           "holds a time, as it is stored; reminders and expiry dates lie ahead of the use." +
           not_drawn(window, all) + "</p>\n" + picture(window, strips).svg() + numbers_of(window, strips);
}
