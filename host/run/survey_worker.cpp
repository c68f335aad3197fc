// SPDX-License-Identifier: MIT
// The plugin's own readers and rules are asked, so that what is found is what rows will hold.
#include "host/run/survey_worker.h"

#include "ese/container_reader.h"
#include "extractors/search_rules.h"
#include "extractors/webcache_paths.h"
#include "host/intake/asked_names.h"
#include "host/intake/staged_hives.h"
#include "host/run/cancellation.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "source/places.h"

#include <QFile>
#include <QMap>
#include <QSet>

#include <sys/stat.h>

namespace {

QString as_found(const QString& hive) {
    return QFile::decodeName(intake::as_found(QFile::encodeName(hive)));
}

// Collects the paths that entries name and that were not staged, each once, and sends them in pieces.
class asked_collector {
public:
    asked_collector(const QString& staged_root, const message_sender& sender)
        : root(QFile::encodeName(staged_root)), send(sender) {
        message.what = worker_message::asked;
    }

    void add(const QString& windows_path) {
        const QByteArray on_disk = QFile::encodeName(on_disk_path(windows_path, QStringLiteral("/")));
        for (const QByteArray& path : on_disk.startsWith('/') ? intake::asked_paths(on_disk) : QVector<QByteArray>()) {
            add_path(path);
        }
    }
    void flush() {
        send(message);
        message.paths.clear();
        message_bytes = 0;
    }
    bool is_full() const { return bytes > most_bytes; }

private:
    void add_path(const QByteArray& path) {
        if (is_full() || known.contains(path)) {
            return;
        }
        known.insert(path);
        bytes += path.size() + bytes_of_a_node;
        struct stat status = {};
        if (::lstat((root + path).constData(), &status) == 0) {
            return;
        }
        message.paths.append(path);
        message_bytes += path.size();
        constexpr int most_message_bytes = 1 << 16;
        if (message_bytes > most_message_bytes) {
            flush();
        }
    }

    static constexpr qint64 most_bytes = qint64{32} << 20; // about 200,000 names of usual length
    static constexpr qint64 bytes_of_a_node = 48;
    QByteArray root;
    const message_sender& send;
    worker_message message;
    int message_bytes = 0;
    QSet<QByteArray> known;
    qint64 bytes = 0;
};

// Reads of an entry what its path is made of; the other columns are visited all the same, since their number counts.
class name_reader : public container_reader {
public:
    using container_reader::get_record_values;
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type, QString directory, QStringList secure_directories) override {
        const bool is_wanted =
            column_name == QLatin1String("Filename") || column_name == QLatin1String("SecureDirectory");
        container_reader::get_record_values(record, error, is_wanted ? column_name : QString(), value_index,
                                            column_type, directory, secure_directories);
    }
};

void read_names(const QString& root, const QString& file, const QStringList& tables, asked_collector& collector,
                health_report& findings) {
    const QString database = root + file;
    name_reader reader;
    const webcache_naming* naming = nullptr;
    reader.set_record_sink([&] {
        for (const specific_table::struct_ano_data& entry : qAsConst(reader.list_ano_data)) {
            collector.add(naming->windows_path(entry));
        }
        reader.list_ano_data.clear();
        return !is_cancelled() && !collector.is_full();
    });
    reader.start_parsing(database, QStringLiteral("Containers"));
    const QString prefix = QStringLiteral("Container_");
    for (const webcache_naming* const one : {&cache_files_naming, &cookies_naming, &domstore_naming}) {
        naming = one;
        for (const specific_table::struct_container_data& container : qAsConst(reader.list_container_data)) {
            if (tables.contains(QLatin1String(one->table)) && !is_cancelled() &&
                is_cortana_container(container, QLatin1String(one->container_name))) {
                reader.start_parsing(database, prefix + container.container_id, container.directory,
                                     container.secure_directories);
            }
        }
    }
    if (collector.is_full()) {
        findings.add_problem(file, QStringLiteral("its entries name very many files: not all of them were looked for "
                                                  "outside of the package folder"));
    }
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
    asked_collector collector(request.source_root, send);
    for (const system_account& account : request.accounts) {
        const QString profile = QLatin1String(places::users_folder) + account.system_user;
        for (const evidence_place& place : places::in_profile) {
            const QString file = profile + QLatin1String(place.below);
            const bool is_checked = request.checked_tables.contains(QLatin1String(place.tables));
            const bool is_hive = place.kind == evidence_kind::registry_hive;
            if (is_hive && is_checked && QFile::exists(request.source_root + as_found(file))) {
                compare_searches(request.source_root, file, checked.health);
            } else if (!is_hive && QFile::exists(request.source_root + file)) {
                read_names(request.source_root, file, request.checked_tables, collector, checked.health);
            }
        }
    }
    collector.flush();
    send(checked);
}
