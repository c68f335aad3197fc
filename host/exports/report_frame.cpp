// SPDX-License-Identifier: MIT
// The title is a constant: a browser shows it outside of the page.
#include "host/exports/report_frame.h"

#include "host/exports/html_text.h"
#include "host/exports/report_assets.h"

#include <QCryptographicHash>
#include <QDateTime>

namespace {

std::string source_of(std::string_view text) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(text.data(), static_cast<int>(text.size()));
    return "'sha256-" + hash.result().toBase64().toStdString() + '\'';
}

std::string fact(const char* name, const QString& value) {
    return std::string("<div><dt>") + name + "</dt><dd>" + html_line(value) + "</dd></div>\n";
}

std::string facts_of(const report_record& record) {
    std::string html = "<dl class=\"case\">\n";
    if (record.is_there) {
        html += fact("Source", record.text("source")) +
                fact("Extracted", QString(record.text("ended"))
                                      .replace(QLatin1Char('T'), QLatin1Char(' '))
                                      .replace(QLatin1Char('Z'), QStringLiteral(" UTC"))) +
                fact("Outcome", record.text("outcome"));
    }
    const QString now = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return html + fact("Report made", now + QStringLiteral(" UTC, cortana " CORTANA_VERSION)) + "</dl>\n";
}

} // namespace

std::string report_head(const report_record& record, const std::vector<report_section>& sections) {
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src " +
                       source_of(report_style) + "; script-src " + source_of(report_script) +
                       "; base-uri 'none'; form-action 'none'\">\n<meta name=\"referrer\" content=\"no-referrer\">\n"
                       "<meta http-equiv=\"x-dns-prefetch-control\" content=\"off\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<meta name=\"color-scheme\" content=\"light dark\">\n<title>Cortana report</title>\n<style>";
    html += report_style;
    html += "</style>\n</head>\n<body>\n<header>\n<h1>Cortana data of a Windows source</h1>\n" + facts_of(record) +
            "</header>\n<nav aria-label=\"Sections\"><ul>\n";
    for (const report_section& section : sections) {
        html += "<li><a href=\"#" + section.id + "\">" + section.title + "</a></li>\n";
    }
    return html + "</ul></nav>\n<main>\n";
}

std::string report_foot() {
    std::string html =
        "</main>\n<footer><p>Times are UTC unless a zone is named. Text of the evidence is shown as it is; "
        "characters that would not be seen or that turn the direction of reading show as their code, like "
        "<mark>\\u202e</mark>. An empty cell: the row holds no value there.</p></footer>\n<script>";
    html += report_script;
    return html + "</script>\n</body>\n</html>\n";
}

std::string section_begin(const std::string& id, const std::string& title, const char* kind) {
    const std::string classes = *kind == '\0' ? std::string() : std::string(" class=\"") + kind + '"';
    return "<section id=\"" + id + "\"" + classes + " aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id +
           "-title\">" + title + "</h2>\n";
}

const char* section_end() {
    return "</section>\n";
}
