// SPDX-License-Identifier: MIT
// The record's own words, put into tables.
#include "host/exports/report_evidence.h"

#include "host/exports/html_text.h"

#include <QJsonArray>

namespace {

const char* const no_record = "<p>Not known: there is no readable run record.</p>\n";

std::string digest(const QString& sha256) {
    return sha256.isEmpty() ? "<span class=\"bad\">none: it was not read to its end</span>"
                            : "<code class=\"digest\">" + html_line(sha256) + "</code>";
}

qint64 number_in(const QJsonObject& object, const char* name) {
    return static_cast<qint64>(object[QLatin1String(name)].toDouble());
}

std::string line(const char* kind, const QString& text) {
    return std::string("<div class=\"") + kind + "\">" + html_line(text) + "</div>";
}

std::string lines(const QJsonObject& file, const char* list, const char* kind) {
    std::string html;
    const QJsonArray values = file[QLatin1String(list)].toArray();
    for (const QJsonValue& value : values) {
        html += line(kind, value.toString());
    }
    return html;
}

std::string state_of(const QJsonObject& file) {
    std::string html;
    const QString problem = report_record::text_in(file, "problem");
    html += problem.isEmpty() ? "" : line("bad", problem);
    html += lines(file, "problems", "bad") + lines(file, "notes", "warn");
    const QJsonObject ese = file[QLatin1String("ese")].toObject();
    if (!ese.isEmpty()) {
        const qint64 damaged = number_in(ese, "damaged_pages");
        html += line(damaged > 0 ? "bad" : "fact", QStringLiteral("state %1; %2 pages of %3 bytes, %4 damaged")
                                                       .arg(report_record::text_in(ese, "state"))
                                                       .arg(number_in(ese, "pages"))
                                                       .arg(number_in(ese, "page_size"))
                                                       .arg(damaged));
    }
    const QJsonObject hive = file[QLatin1String("hive")].toObject();
    if (!hive.isEmpty()) {
        html += line("fact", QStringLiteral("sequence numbers %1 and %2")
                                 .arg(number_in(hive, "primary_sequence"))
                                 .arg(number_in(hive, "secondary_sequence")));
    }
    const QString replayed = report_record::text_in(file, "sha256_with_logs");
    if (!replayed.isEmpty()) {
        html += line("warn",
                     QStringLiteral("rows come from a copy with %1 entries of its logs applied; SHA-256 of the copy %2")
                         .arg(number_in(file, "log_entries"))
                         .arg(replayed));
    }
    return html.empty() ? "<div class=\"fact\">read to its end</div>" : html;
}

std::string evidence_row(const QJsonObject& file) {
    const auto text = [&](const char* name) { return html_line(report_record::text_in(file, name)); };
    return "<tr><td><div class=\"path\">" + text("path") + "</div>" + digest(report_record::text_in(file, "sha256")) +
           "</td><td>" + text("kind") + "</td><td class=\"number\">" + grouped(number_in(file, "size")) + "</td><td>" +
           text("modified") + "</td><td>" + state_of(file) + "</td></tr>\n";
}

std::string fact(const char* name, const std::string& html) {
    return std::string("<tr><th scope=\"row\">") + name + "</th><td>" + html + "</td></tr>\n";
}

std::string named_values(const QJsonObject& object) {
    std::string html;
    for (auto value = object.begin(); value != object.end(); ++value) {
        html +=
            "<div><b>" + html_line(value.key()) + "</b> " + html_line(value.value().toVariant().toString()) + "</div>";
    }
    return html;
}

std::string written_files(const report_record& record) {
    std::string html;
    const QJsonArray files = record.run[QLatin1String("written")].toArray();
    for (const QJsonValue& file : files) {
        html += "<div class=\"path\">" + html_line(report_record::text_in(file, "path")) + "</div>" +
                digest(report_record::text_in(file, "sha256"));
    }
    return html;
}

std::string command_of(const report_record& record) {
    std::string html = "<code>cortana";
    const QStringList words = record.texts("arguments");
    for (const QString& word : words) {
        html += ' ' + html_line(word.contains(QLatin1Char(' ')) ? QLatin1Char('"') + word + QLatin1Char('"') : word);
    }
    return html + "</code>";
}

} // namespace

std::string evidence_html(const report_record& record) {
    if (!record.is_there) {
        return no_record;
    }
    const QJsonArray files = record.run[QLatin1String("evidence")].toArray();
    std::string html;
    if (files.isEmpty()) {
        return "<p>The run looked at no file.</p>\n";
    }
    html +=
        "<table class=\"evidence\"><caption>Evidence files of the last run, with their SHA-256 and what the check "
        "found</caption><thead><tr><th scope=\"col\">file, SHA-256</th><th scope=\"col\">kind</th><th "
        "scope=\"col\">bytes</th><th scope=\"col\">modified</th><th scope=\"col\">state</th></tr></thead>\n<tbody>\n";
    for (const QJsonValue& file : files) {
        html += evidence_row(file.toObject());
    }
    html += "</tbody></table>\n";
    const qint64 missing = record.number("evidence_not_listed");
    return html + (missing > 0 ? "<p>" + grouped(missing) + " more are not listed in the record.</p>\n" : "");
}

std::string run_html(const report_record& record) {
    std::string html = "<table class=\"facts\"><caption>The run</caption><tbody>\n";
    if (record.is_there) {
        html += fact("command", command_of(record)) + fact("outcome", html_line(record.text("outcome"))) +
                fact("started", html_line(record.text("started"))) + fact("ended", html_line(record.text("ended"))) +
                fact("profiles", html_line(record.texts("profiles").join(QStringLiteral(", ")))) +
                fact("tables", html_line(record.texts("tables").join(QStringLiteral(", ")))) +
                fact("program", "cortana " + html_line(record.text("version"))) +
                fact("libraries", named_values(record.run[QLatin1String("libraries")].toObject())) +
                fact("machine", named_values(record.run[QLatin1String("machine")].toObject())) +
                fact("confinement", named_values(record.run[QLatin1String("sandbox")].toObject())) +
                fact("written", written_files(record));
    }
    html += fact("database of this report", "<div class=\"path\">" + html_line(record.database) + "</div>" +
                                                digest(QString::fromLatin1(record.sha256)));
    return html + "</tbody></table>\n";
}
