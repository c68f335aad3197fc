// SPDX-License-Identifier: MIT
// A page is judged where it lies in the chunk; only one that two chunks share is put together first.
#include "host/health/ese_checker.h"

#include "host/health/bytes.h"
#include "host/health/ese_page_sums.h"

#include <algorithm>

namespace {

// Two headers and pages 1 to 24, which hold the catalog and its copy.
constexpr int fixed_pages = 26;

const char* fault_of(ese_page_sum sum) {
    switch (sum) {
    case ese_page_sum::wrong:
        return "its checksum is wrong";
    case ese_page_sum::of_another_page:
        return "it holds the content of another page";
    case ese_page_sum::right:
        break;
    }
    return nullptr;
}

// Leaves of space trees hold no rows, and their branches lead to pages of the tree only that nobody reads.
bool is_read_by_tables(const page_view& page) {
    return !page.has(page_view::space_tree) && !page.has(page_view::empty);
}

// False: an entry lies outside the page, or a child has no number.
bool collect_children(const page_view& page, QVector<quint32>& children) {
    for (int index = 0; index < page.entry_count(); ++index) {
        const auto entry = page.entry_at(index);
        const quint32 child = entry ? number_at<quint32>(entry->data, 0) : 0;
        if (child == 0 && !(entry && entry->is_deleted)) {
            return false;
        }
        if (!entry->is_deleted) {
            children.append(child);
        }
    }
    return true;
}

} // namespace

void ese_checker::take(const char* bytes, qint64 size) {
    std::string_view rest(bytes, static_cast<std::size_t>(size));
    taken += size;
    if (!is_open) {
        const std::size_t wanted = ese_largest_head - static_cast<std::size_t>(gathered.size());
        const std::string_view head = rest.substr(0, wanted);
        gathered.append(head.data(), static_cast<int>(head.size()));
        rest.remove_prefix(head.size());
        if (static_cast<std::size_t>(gathered.size()) < ese_largest_head) {
            return;
        }
        start();
    }
    take_pages(rest);
}

void ese_checker::start() {
    is_open = true;
    const QByteArray head = gathered;
    gathered.clear();
    const std::string_view bytes(head.constData(), static_cast<std::size_t>(head.size()));
    header = judge_ese_header(bytes);
    take_pages(part_of(bytes, std::size_t{2} * header.facts.page_size, bytes.size()));
}

void ese_checker::take_pages(std::string_view bytes) {
    const std::size_t page_size = header.facts.page_size;
    if (!header.is_read) {
        return;
    }
    if (!gathered.isEmpty()) {
        const std::string_view end = bytes.substr(0, page_size - static_cast<std::size_t>(gathered.size()));
        gathered.append(end.data(), static_cast<int>(end.size()));
        bytes.remove_prefix(end.size());
        if (static_cast<std::size_t>(gathered.size()) < page_size) {
            return;
        }
        take_page({gathered.constData(), page_size});
        gathered.clear();
    }
    for (; bytes.size() >= page_size; bytes.remove_prefix(page_size)) {
        take_page(bytes.substr(0, page_size));
    }
    gathered.append(bytes.data(), static_cast<int>(bytes.size()));
}

// What the page leads to. False: its entries do not make sense.
bool ese_checker::read_content(const page_view& page, ese_trees::page_content& content) {
    content.object = page.object();
    if (!is_read_by_tables(page)) {
        return true;
    }
    if (!page.has(page_view::leaf)) {
        return collect_children(page, content.children);
    }
    const std::optional<int> entries = page.live_entries();
    content.live_entries = entries.value_or(0);
    content.is_doubtful = entries && !records.take_leaf(page);
    return entries.has_value();
}

void ese_checker::take_page(std::string_view bytes) {
    const page_view page(bytes);
    ++page_number;
    if (page.is_all_zero()) {
        ++unwritten;
        trees.add_unwritten();
        return;
    }
    const char* fault = fault_of(judge_ese_page_sum(bytes, page_number));
    ese_trees::page_content content;
    const bool makes_sense = read_content(page, content);
    if (fault == nullptr && !makes_sense) {
        fault = "its entries do not lie within it";
    }
    if (fault != nullptr) {
        damage.add_by_page(page_number, content.object, fault);
        trees.add_damaged(content);
        return;
    }
    trees.add_sound(content);
    take_catalog(page);
}

void ese_checker::take_catalog(const page_view& page) {
    const bool is_catalog =
        page.object() == page_view::catalog_object || page.object() == page_view::catalog_copy_object;
    if (is_catalog && page.has(page_view::leaf) && is_read_by_tables(page)) {
        tables.add_catalog_page(page, page_number);
    }
}

file_health ese_checker::finish() {
    if (!is_open) {
        start();
    }
    file_health result;
    result.kind = QStringLiteral("ESE database");
    result.size = taken;
    result.problem = header.problem;
    result.notes = header.notes;
    if (header.is_read) {
        result.ese = header.facts;
        finish_pages(result);
    }
    return result;
}

void ese_checker::finish_pages(file_health& result) {
    const bool is_cut_early = taken < qint64{fixed_pages} * header.facts.page_size;
    if (is_cut_early && result.problem.isEmpty()) {
        result.problem = QStringLiteral("the ESE database is cut off");
        result.notes.clear();
    }
    if (!gathered.isEmpty()) {
        damage.add_by_page(++page_number, 0, "it is cut off");
        trees.add_damaged({});
    }
    if (!is_cut_early) {
        tables.survey(trees, records, damage, result);
    }
    result.ese->pages = page_number;
    name_damage(result);
}

void ese_checker::name_damage(file_health& result) const {
    constexpr int most_told = 20;
    ese_health& facts = *result.ese;
    for (const page_damage::item& item : damage.first_ones()) {
        const quint32 reached_from = item.is_sure_object ? 0 : trees.owner(item.page);
        const ese_tables::owner owner = tables.owner_of(reached_from != 0 ? reached_from : item.object);
        facts.damaged.append({item.page, owner.table, owner.part, QLatin1String(item.reason)});
    }
    std::stable_sort(facts.damaged.begin(), facts.damaged.end(),
                     [](const damaged_page& left, const damaged_page& right) { return left.number < right.number; });
    facts.damaged_pages = damage.total();
    facts.unwritten_pages = unwritten;
    for (const damaged_page& page : qAsConst(facts.damaged).mid(0, most_told)) {
        result.problems << text_of(page);
    }
    if (facts.damaged_pages > most_told) {
        result.problems << QStringLiteral("%1 more of its pages are damaged").arg(facts.damaged_pages - most_told);
    }
}
