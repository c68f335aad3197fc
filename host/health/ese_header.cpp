// SPDX-License-Identifier: MIT
// The conditions under which libesedb refuses a file by its header. It sums up the header's first fields only; newer
// versions of Windows have more of them behind and sum up the whole page.
#include "host/health/ese_header.h"

#include "host/health/bytes.h"
#include "host/health/ese_page_sums.h"

#include <QDateTime>

namespace {

constexpr quint32 signature = 0x89abcdef;
constexpr std::size_t summed_fields = 668;
constexpr quint32 smallest_page = 2048;
constexpr quint32 largest_page = 32768;

bool is_possible_page_size(quint32 size) {
    return size >= smallest_page && size <= largest_page && (size & (size - 1)) == 0;
}

quint32 page_size_told(std::string_view header) {
    return number_at<quint32>(header, 236);
}

bool is_sum_right(std::string_view header, std::size_t size) {
    return header.size() >= size && ese_header_sum(header.substr(0, size)) == number_at<quint32>(header, 0);
}

bool has_signature(std::string_view header) {
    return number_at<quint32>(header, 4) == signature;
}

bool are_fields_sound(std::string_view header) {
    return has_signature(header) && is_sum_right(header, summed_fields);
}

bool is_whole_page_sound(std::string_view header) {
    const quint32 size = page_size_told(header);
    return has_signature(header) && is_possible_page_size(size) && is_sum_right(header, size);
}

bool is_believable(std::string_view header) {
    return is_possible_page_size(page_size_told(header)) && (are_fields_sound(header) || is_whole_page_sound(header));
}

// The header to go by: the first one, else a copy that lies where its own page size tells. Empty: there is none.
std::string_view believed_header(std::string_view head) {
    if (is_believable(head)) {
        return head;
    }
    for (quint32 size = smallest_page; size <= largest_page; size *= 2) {
        const std::string_view copy = part_of(head, size, head.size());
        if (page_size_told(copy) == size && is_believable(copy)) {
            return copy;
        }
    }
    return {};
}

// Seconds, minutes, hours, day, month, years since 1900; the lowest bit of the next byte tells UTC.
QString time_at(std::string_view header, std::size_t offset) {
    const auto part = [&](std::size_t at) { return int{number_at<quint8>(header, offset + at)}; };
    const QDateTime time(QDate(1900 + part(5), part(4), part(3)), QTime(part(2), part(1), part(0)), Qt::UTC);
    if (!time.isValid() || part(4) == 0) {
        return {};
    }
    const QString zone = (part(6) & 1) != 0 ? QStringLiteral("Z") : QString();
    return time.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + zone;
}

constexpr quint32 clean_shutdown = 3;

QString state_name(quint32 state) {
    switch (state) {
    case 1:
        return QStringLiteral("just created");
    case 2:
        return QStringLiteral("dirty");
    case clean_shutdown:
        return QStringLiteral("clean");
    default:
        return QStringLiteral("state %1").arg(state);
    }
}

ese_health facts_of(std::string_view header) {
    ese_health facts;
    facts.page_size = page_size_told(header);
    facts.version = number_at<quint32>(header, 8);
    facts.revision = number_at<quint32>(header, 232);
    facts.state = state_name(number_at<quint32>(header, 52));
    facts.last_consistent = time_at(header, 64);
    facts.last_attached = time_at(header, 72);
    facts.last_detached = time_at(header, 88);
    return facts;
}

QString problem_of(std::string_view head) {
    constexpr quint32 known_version = 0x620;
    if (head.empty()) {
        return QStringLiteral("it is empty");
    }
    if (!has_signature(head) && believed_header(head).empty()) {
        return QStringLiteral("it is not an ESE database");
    }
    if (!are_fields_sound(head)) {
        return is_whole_page_sound(head)
                   ? QStringLiteral("the header of the ESE database is of a newer kind that cannot be read")
                   : QStringLiteral("the header of the ESE database is damaged");
    }
    if (number_at<quint32>(head, 8) != known_version) {
        return QStringLiteral("the format version of the ESE database is not known");
    }
    if (!is_possible_page_size(page_size_told(head))) {
        return QStringLiteral("the page size of the ESE database is not possible");
    }
    if (!are_fields_sound(part_of(head, page_size_told(head), summed_fields))) {
        return QStringLiteral("the copy of the header of the ESE database is damaged");
    }
    return {};
}

QStringList notes_of(std::string_view head) {
    QStringList notes;
    if (number_at<quint32>(head, 52) != clean_shutdown) {
        notes << QStringLiteral("the ESE database was not shut down cleanly; its transaction logs are not applied");
    }
    const quint32 size = page_size_told(head);
    for (const std::string_view header : {head, part_of(head, size, size)}) {
        if (!is_whole_page_sound(header)) {
            notes << QStringLiteral("a header page of the ESE database is damaged behind the fields that are read");
            break;
        }
    }
    return notes;
}

} // namespace

ese_header judge_ese_header(std::string_view head) {
    ese_header result;
    result.problem = problem_of(head);
    if (result.problem.isEmpty()) {
        result.notes = notes_of(head);
    }
    const std::string_view header = believed_header(head);
    result.is_read = !header.empty();
    if (result.is_read) {
        result.facts = facts_of(header);
    }
    return result;
}
