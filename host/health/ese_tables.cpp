// SPDX-License-Identifier: MIT
// The catalog has a copy, from which tables are known when a page of the catalog itself is damaged.
#include "host/health/ese_tables.h"

#include <QSet>

#include <algorithm>
#include <tuple>

namespace {

constexpr int most_entries = 65536; // for each of catalog and copy

auto place_of(const ese_catalog_entry& entry) {
    return std::make_tuple(entry.table, entry.kind, entry.object);
}

bool is_before(const ese_catalog_entry& left, const ese_catalog_entry& right) {
    return place_of(left) < place_of(right);
}

// In the order of tables, kinds and objects, each of them once, those of pages left out that the tree does not lead to.
void put_in_order(QVector<ese_catalog_entry>& entries, const ese_trees& trees) {
    const auto is_old = [&](const ese_catalog_entry& entry) { return !trees.is_reached(entry.found_on); };
    entries.erase(std::remove_if(entries.begin(), entries.end(), is_old), entries.end());
    std::stable_sort(entries.begin(), entries.end(), is_before);
    const auto is_same = [](const auto& left, const auto& right) { return place_of(left) == place_of(right); };
    entries.erase(std::unique(entries.begin(), entries.end(), is_same), entries.end());
}

// Windows-1252 is Latin-1 as far as names of tables go.
QString name_text(const QByteArray& name) {
    return QString::fromLatin1(name);
}

} // namespace

void ese_tables::add_catalog_page(const page_view& page, quint32 page_number) {
    QVector<ese_catalog_entry>& kept = page.object() == page_view::catalog_object ? entries : copies;
    for (const ese_catalog_entry& entry : ese_catalog_entries(page, page_number)) {
        is_cut = is_cut || kept.size() >= most_entries;
        if (kept.size() < most_entries) {
            kept.append(entry);
        }
    }
}

ese_trees::walked_tree ese_tables::walk_once(quint32 root, quint32 object, ese_trees& trees, page_damage& damage) {
    const quint64 tree = quint64{root} << 32 | object;
    const auto known = walked.constFind(tree);
    return known != walked.constEnd() ? *known : *walked.insert(tree, trees.walk(root, object, damage));
}

void ese_tables::choose_entries(ese_trees& trees, page_damage& damage, file_health& result) {
    const ese_trees::walked_tree catalog = walk_once(page_view::catalog_root, page_view::catalog_object, trees, damage);
    walk_once(page_view::catalog_copy_root, page_view::catalog_copy_object, trees, damage);
    put_in_order(entries, trees);
    if (catalog.doubtful != 0) {
        result.problems << QStringLiteral("the catalog of the ESE database holds entries that cannot be right; tables "
                                          "or columns may be missing");
    }
    if (catalog.damaged == 0) {
        return;
    }
    put_in_order(copies, trees);
    QVector<ese_catalog_entry> all;
    std::set_union(entries.cbegin(), entries.cend(), copies.cbegin(), copies.cend(), std::back_inserter(all),
                   is_before);
    result.problems << QStringLiteral("the catalog of the ESE database is damaged; tables may be missing");
    const auto tables_in = [](const QVector<ese_catalog_entry>& some) {
        return std::count_if(some.cbegin(), some.cend(),
                             [](const ese_catalog_entry& one) { return one.kind == ese_tree_kind::rows; });
    };
    if (const auto more = tables_in(all) - tables_in(entries)) {
        result.notes
            << QStringLiteral("%1 tables of the ESE database are known from the copy of its catalog only").arg(more);
    }
    entries = all;
}

void ese_tables::name_owners() {
    owners.insert(page_view::catalog_object, {QStringLiteral("MSysObjects"), {}});
    owners.insert(page_view::catalog_copy_object, {QStringLiteral("MSysObjectsShadow"), {}});
    for (const ese_catalog_entry& entry : qAsConst(entries)) {
        if (entry.kind == ese_tree_kind::rows) {
            owners.insert(entry.object, {name_text(entry.name), {}});
        } else if (owners.contains(entry.table) && !owners.contains(entry.object)) {
            const bool is_index = entry.kind == ese_tree_kind::index;
            owners.insert(entry.object, {owners.value(entry.table).table,
                                         is_index ? QStringLiteral("index") : QStringLiteral("long values")});
        }
    }
}

void ese_tables::survey_table(const ese_catalog_entry& entry, ese_trees& trees, page_damage& damage,
                              ese_health& result) {
    const ese_trees::walked_tree tree = walk_once(entry.root, entry.object, trees, damage);
    table_health table;
    table.name = name_text(entry.name);
    table.object = entry.object;
    table.root_page = entry.root;
    table.rows = tree.entries;
    table.damaged_pages = tree.damaged;
    table.doubtful_pages = tree.doubtful;
    result.tables.append(table);
}

void ese_tables::add_long_values(const ese_catalog_entry& entry, ese_trees& trees, page_damage& damage,
                                 ese_health& result) {
    table_health& table = result.tables.last();
    const ese_trees::walked_tree tree = walk_once(entry.root, entry.object, trees, damage);
    table.long_value_entries += tree.entries;
    table.damaged_pages += tree.damaged;
    table.lacks_long_values = table.lacks_long_values || tree.doubtful != 0;
}

void ese_tables::find_lacking_values(record_survey& records, ese_health& result) const {
    for (table_health& table : result.tables) {
        QVector<quint32> trees;
        for (const ese_catalog_entry& entry : entries) {
            if (entry.kind == ese_tree_kind::long_values && entry.table == table.object) {
                trees.append(entry.object);
            }
        }
        table.lacks_long_values = table.lacks_long_values || records.lacks_long_values(table.object, trees);
    }
}

void ese_tables::survey(ese_trees& trees, record_survey& records, page_damage& damage, file_health& result) {
    ese_health& facts = *result.ese;
    if (!trees.is_complete()) {
        result.notes << QStringLiteral("the ESE database is too large to count the rows of its tables");
        name_owners();
        return;
    }
    choose_entries(trees, damage, result);
    name_owners();
    for (const ese_catalog_entry& entry : qAsConst(entries)) {
        if (entry.kind == ese_tree_kind::rows) {
            survey_table(entry, trees, damage, facts);
        } else if (entry.kind == ese_tree_kind::long_values && !facts.tables.isEmpty() &&
                   facts.tables.last().object == entry.table) {
            add_long_values(entry, trees, damage, facts);
        }
    }
    find_lacking_values(records, facts);
    QHash<quint32, qint64> outside;
    for (const table_health& table : qAsConst(facts.tables)) {
        outside.insert(table.object, 0);
    }
    trees.count_outside(outside);
    for (table_health& table : facts.tables) {
        table.rows_outside = outside.value(table.object);
    }
    facts.are_tables_known = true;
    if (is_cut) {
        result.notes << QStringLiteral("the catalog of the ESE database has more than %1 entries; the rest is not told")
                            .arg(most_entries);
    }
}
