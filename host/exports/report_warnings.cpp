// SPDX-License-Identifier: MIT
// The gravest come first. A run without any says that it had none, and what that means.
#include "host/exports/report_warnings.h"

#include "host/exports/html_text.h"

#include <QJsonArray>

namespace {

class warning_list {
public:
    // kind: "bad", "warn" or "info". details: HTML of the things that it is about, one an entry.
    void add(const char* kind, const std::string& heading, const std::string& text, const QStringList& details = {},
             qint64 all = 0) {
        html += std::string("<li class=\"") + kind + "\"><h3>" + heading + "</h3>\n<p>" + text + "</p>\n";
        append_details(details, all);
        html += "</li>\n";
    }

    std::string take() const { return html; }

private:
    void append_details(const QStringList& details, qint64 all) {
        constexpr int most_seen = 12;
        append_list(details.mid(0, most_seen));
        if (details.size() > most_seen) {
            html += "<details><summary>" + grouped(details.size() - most_seen) + " more</summary>\n";
            append_list(details.mid(most_seen));
            html += "</details>\n";
        }
        if (all > details.size()) {
            html += "<p>The record lists " + grouped(details.size()) + " of " + grouped(all) + ".</p>\n";
        }
    }

    void append_list(const QStringList& details) {
        html += details.isEmpty() ? "" : "<ul>\n";
        for (const QString& detail : details) {
            html += "<li>" + html_line(detail) + "</li>\n";
        }
        html += details.isEmpty() ? "" : "</ul>\n";
    }

    std::string html;
};

QStringList findings(const report_record& record, const char* list) {
    QStringList found;
    const QJsonArray values = record.run[QLatin1String(list)].toArray();
    for (const QJsonValue& value : values) {
        const QString path = report_record::text_in(value, "path");
        found.append((path.isEmpty() ? QString() : path + QStringLiteral(": ")) +
                     report_record::text_in(value, "reason"));
    }
    return found;
}

QStringList losses(const report_record& record) {
    QStringList found;
    const QJsonArray values = record.run[QLatin1String("losses")].toArray();
    for (const QJsonValue& value : values) {
        const auto text = [&](const char* name) { return report_record::text_in(value, name); };
        const QString table = text("table");
        const QString file = text("file");
        found.append(QStringLiteral("profile %1, %2%3: %4")
                         .arg(text("profile"), table.isEmpty() ? QStringLiteral("the look over the evidence") : table,
                              file.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(file), text("reason")));
    }
    return found;
}

// The records lie with the results that were put together.
void add_merged_state(const report_record& record, warning_list& list) {
    QStringList outcomes;
    for (auto outcome = record.outcomes.begin(); outcome != record.outcomes.end(); ++outcome) {
        outcomes.append(QStringLiteral("%1: %2").arg(outcome.key()).arg(outcome.value()));
    }
    list.add(
        record.has_gaps() ? "bad" : "info", "The database was put together of several sources",
        "What could not be read of each stands in the run record beside its own result. The outcomes of their runs, "
        "which <a href=\"#sources\">the list of sources</a> tells one by one:",
        outcomes);
}

void add_record_state(const report_record& record, warning_list& list) {
    if (!record.is_there && record.is_merged()) {
        return add_merged_state(record, list);
    }
    if (!record.is_there) {
        list.add(
            "bad", "There is no run record",
            "Beside the database lies no readable <code>run.json</code> (" + html_line(record.trouble) +
                "). What could not be read, which evidence was looked at and whether the run came to its end is not "
                "known. A table without rows does not show that there was no data.");
        return;
    }
    const int code = static_cast<int>(record.number("exit_code"));
    if (code >= 128 || code == 1 || code == 5) {
        list.add("bad", "The run did not come to its end",
                 "Its outcome: " + html_line(record.text("outcome")) + ". Rows are missing that the evidence may hold.",
                 record.texts("output_troubles"));
    }
    const QStringList left = record.texts("not_examined");
    if (!left.isEmpty()) {
        list.add("bad", counted(left.size(), "profile was", "profiles were") + " not examined",
                 "The run ended before it came to them:", left);
    }
}

void add_gaps(const report_record& record, warning_list& list) {
    const QStringList lost = losses(record);
    if (!lost.isEmpty()) {
        list.add("bad", counted(lost.size(), "step was", "steps were") + " not finished",
                 "A worker process died or passed a limit. Rows of these steps are missing, in part or all:", lost);
    }
    if (const qint64 unread = record.number("could_not_read"); unread > 0) {
        list.add("bad", "Evidence could not be read, or is damaged (" + grouped(unread) + ")",
                 "Rows that these hold may be missing:", findings(record, "problems"), unread);
    }
    if (const qint64 failures = record.number("failures"); failures > 0) {
        list.add("bad", "The debug log tells of " + counted(failures, "failure", "failures"),
                 "Rows may be missing. The first lines:", record.texts("first_failures"), failures);
    }
}

void add_reminders(const report_facts& facts, warning_list& list) {
    if (facts.reminders > 0 && !facts.has_links) {
        list.add(
            "warn", "Titles and texts of reminders were not checked",
            "A reminder row pairs a trigger (time, place, contact) with a title and a text by position. Whether they "
            "belong together by their ids is not known: there is no links database beside the result database.");
    }
    if (const qint64 wrong = facts.links.value("contradicted"); wrong > 0) {
        list.add(
            "warn", "The ids contradict " + counted(wrong, "reminder row", "reminder rows"),
            "The result database pairs a trigger (time, place, contact) with title, text and times by position; by the "
            "ids in the evidence they belong to another reminder. This report shows first what the ids lead to, and "
            "what the position gave as “by position”. Files in other formats hold what the position gave.");
    }
    if (const qint64 open = facts.links.value("undecided"); open > 0) {
        list.add(
            "warn", "Of " + counted(open, "reminder row", "reminder rows") + " the ids tell nothing",
            "Ids are missing, repeated or unreadable, or rows cannot be told apart. Title, text and times are those of "
            "the position and may belong to another reminder.");
    }
    if (const qint64 older = facts.has_links ? facts.links.value("") : 0; older > 0) {
        list.add("warn", counted(older, "reminder row was", "reminder rows were") + " not looked at",
                 "The rows come from another program or from before the check. Title and text may belong to another "
                 "reminder.");
    }
    if (facts.not_shown > 0) {
        list.add(
            "warn", counted(facts.not_shown, "reminder stands", "reminders stand") + " in no row",
            "The evidence holds them, the pairing by position leaves them out. They are <a href=\"#not-shown\">listed "
            "below</a>.");
    }
}

void add_database_state(const report_record& record, const report_facts& facts, warning_list& list) {
    if (!record.is_there) {
        return;
    }
    const QString recorded = record.recorded_sha256();
    if (!recorded.isEmpty() && recorded.toLatin1() != record.sha256) {
        list.add(
            "warn", "The database is not as the run left it",
            "Its SHA-256 differs from the recorded one: another program, or a later run without a record, wrote into "
            "it.");
    }
    const qint64 added = record.number("rows_added");
    if (added != facts.rows || record.earlier > 0) {
        list.add("info", "The record tells of the last run only",
                 "That run added " + counted(added, "row", "rows") + "; this report shows " + grouped(facts.rows) +
                     ". Records of earlier runs that lie beside the database (<code>run-*.json</code>): " +
                     grouped(record.earlier) + ". What they warn of is not repeated here.");
    }
}

} // namespace

std::string warnings_html(const report_record& record, const report_facts& facts) {
    warning_list list;
    add_record_state(record, list);
    add_gaps(record, list);
    add_reminders(facts, list);
    add_database_state(record, facts, list);
    if (const qint64 notes = record.number("note_count"); notes > 0) {
        list.add("warn", "What was noticed about the evidence (" + grouped(notes) + ")",
                 "Databases that were not shut down cleanly, hives with unfinished writes, links, newer layouts:",
                 findings(record, "notes"), notes);
    }
    std::string html;
    if (!record.has_gaps()) {
        html =
            record.number("exit_code") == 4
                ? "<p class=\"verdict info\">The run found nothing that Cortana's data could come from, and met no "
                  "trouble.</p>\n"
                : "<p class=\"verdict ok\">All evidence that the run found was read to its end. A table without rows "
                  "means that its evidence holds none, or is not there.</p>\n";
    } else {
        html = "<p class=\"verdict bad\">Something was not read, or is not known to have been. A table without rows "
               "does not "
               "show that there was no data.</p>\n";
    }
    const std::string entries = list.take();
    return html + (entries.empty() ? "" : "<ul class=\"warnings\">\n" + entries + "</ul>\n");
}
