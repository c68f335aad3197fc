// SPDX-License-Identifier: MIT
// The plugin's own readers and rules are asked, so that what is found is what rows will hold.
#include "host/run/survey_worker.h"

#include "extractors/search_rules.h"
#include "host/intake/staged_hives.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "source/places.h"

#include <QFile>
#include <QMap>

namespace {

QString as_found(const QString& hive) {
    return QFile::decodeName(intake::as_found(QFile::encodeName(hive)));
}

QString shown_search(const QString& text, const QString& time) {
    return time.isEmpty() ? text : QStringLiteral("%1 (time %2)").arg(text, time);
}

// How often a hive has each search, which is text and time.
QMap<QString, int> searches_in(const QString& hive) {
    text_search_registry recents;
    search_from_com com;
    QMap<QString, int> searches;
    for (const auto& [walker, rule] : {std::pair<registry*, const search_rule&>(&recents, recents_rule),
                                       std::pair<registry*, const search_rule&>(&com, com_rule)}) {
        walker->start_registry_parse(hive, QLatin1String(rule.key_path), false);
        for (const registry::my_data_inst_apps& record : qAsConst(walker->record_list)) {
            const QByteArray bytes = rule.searched_bytes(record);
            const QString text = rule.text(bytes);
            const QString time = rule.time(bytes);
            if (!text.isEmpty() || !time.isEmpty()) {
                ++searches[shown_search(text, time)];
            }
        }
    }
    return searches;
}

void compare_searches(const QString& root, const QString& hive, health_report& findings) {
    const QMap<QString, int> with_logs = searches_in(root + hive);
    const QMap<QString, int> without = searches_in(root + as_found(hive));
    for (auto search = with_logs.begin(); search != with_logs.end(); ++search) {
        if (*search > without.value(search.key())) {
            findings.add_note(hive, QStringLiteral("search keyword %1 is in the log only").arg(search.key()));
        }
    }
    for (auto search = without.begin(); search != without.end(); ++search) {
        if (*search > with_logs.value(search.key())) {
            findings.add_note(hive, QStringLiteral("search keyword %1 gives no row: the log removes it (it shows with "
                                                   "--no-hive-logs)")
                                        .arg(search.key()));
        }
    }
}

} // namespace

void survey_staged(const worker_request& request, const message_sender& send) {
    worker_message checked;
    checked.what = worker_message::checked;
    for (const system_account& account : request.accounts) {
        const QString profile = QLatin1String(places::users_folder) + account.system_user;
        for (const evidence_place& place : places::in_profile) {
            const QString file = profile + QLatin1String(place.below);
            const bool is_checked = request.checked_tables.contains(QLatin1String(place.tables));
            if (place.kind == evidence_kind::registry_hive && is_checked &&
                QFile::exists(request.source_root + as_found(file))) {
                compare_searches(request.source_root, file, checked.health);
            }
        }
    }
    send(checked);
}
