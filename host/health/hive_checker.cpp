// SPDX-License-Identifier: MIT
// A hive is a chain of blocks, each of them a chain of cells that ends exactly where the block does. Both are followed
// as the bytes pass by.
#include "host/health/hive_checker.h"

#include "host/health/bytes.h"

#include <QDateTime>

#include <limits>

namespace {

constexpr qint64 header_size = 0x1000;
constexpr int block_header_size = 0x20;
constexpr int signature_size = 2; // of the root key

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QString time_text(quint64 filetime) {
    constexpr qint64 ticks_of_millisecond = 10000;
    constexpr qint64 unix_epoch = 11644473600000; // in milliseconds since 1601
    const QDateTime time =
        QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(filetime / ticks_of_millisecond) - unix_epoch, Qt::UTC);
    return filetime == 0 ? QString() : time.toString(Qt::ISODateWithMs);
}

QString header_problem(const QByteArray& header, qint64 file_size) {
    if (file_size == 0) {
        return QStringLiteral("it is empty");
    }
    if (!header.startsWith("regf")) {
        return QStringLiteral("it is not a registry hive");
    }
    if (file_size > std::numeric_limits<int>::max()) {
        return QStringLiteral("it is larger than the 2 GiB that are read of a registry hive");
    }
    if (file_size < 2 * header_size) {
        return QStringLiteral("the registry hive is cut off");
    }
    if (number_at<quint32>(view(header), 20) != 1) {
        return QStringLiteral("the format version of the registry hive is not known");
    }
    if (xor_of_words(view(header).substr(0, 508), 0) != number_at<quint32>(view(header), 508)) {
        return QStringLiteral("the header of the registry hive is damaged");
    }
    return {};
}

hive_health facts_of(const QByteArray& header) {
    hive_health facts;
    facts.primary_sequence = number_at<quint32>(view(header), 4);
    facts.secondary_sequence = number_at<quint32>(view(header), 8);
    facts.last_written = time_text(number_at<quint64>(view(header), 12));
    facts.minor_version = number_at<quint32>(view(header), 24);
    facts.bins_size = number_at<quint32>(view(header), 40);
    return facts;
}

} // namespace

void hive_checker::want(step what, qint64 offset, int size) {
    waiting_for = what;
    wanted_at = offset;
    wanted_size = size;
}

void hive_checker::want_next_block() {
    if (block_end < bins_end && are_blocks_sound) {
        want(step::block, block_end, block_header_size);
    } else {
        waiting_for = step::done;
    }
}

// Seeds the two chains: of blocks, and the place of the root key's signature.
void hive_checker::take_header() {
    header = gathered;
    bins_end = header_size + number_at<quint32>(view(header), 40);
    root_at = header_size + number_at<quint32>(view(header), 36) + 4;
    block_end = header_size;
    want_next_block();
}

void hive_checker::take_block() {
    const qint64 size = number_at<quint32>(view(gathered), 8);
    block_at = block_end;
    are_blocks_sound = gathered.startsWith("hbin") && number_at<quint32>(view(gathered), 4) == block_at - header_size &&
                       size % header_size == 0;
    block_end = block_at + size;
    if (are_blocks_sound) {
        want(step::cell, block_at + block_header_size, sizeof(qint32));
    } else {
        waiting_for = step::done;
    }
}

void hive_checker::take_cell() {
    const qint64 size = qAbs(qint64{number_at<qint32>(view(gathered), 0)});
    const qint64 next = wanted_at + size;
    are_blocks_sound = size > 4 && size % 4 == 0 && next <= block_end;
    if (are_blocks_sound && next < block_end) {
        want(step::cell, next, sizeof(qint32));
    } else {
        want_next_block();
    }
}

void hive_checker::take(const char* bytes, qint64 size) {
    const std::string_view chunk(bytes, static_cast<std::size_t>(size));
    const qint64 begin = taken;
    taken += size;
    const auto copy = [&](qint64 from, qint64 count) {
        const std::string_view part =
            from < begin ? std::string_view()
                         : part_of(chunk, static_cast<std::size_t>(from - begin), static_cast<std::size_t>(count));
        return QByteArray(part.data(), static_cast<int>(part.size()));
    };
    while (waiting_for != step::done && wanted_at + gathered.size() < taken) {
        gathered += copy(wanted_at + gathered.size(), wanted_size - gathered.size());
        if (gathered.size() < wanted_size) {
            break;
        }
        switch (waiting_for) {
        case step::header:
            take_header();
            break;
        case step::block:
            take_block();
            break;
        case step::cell:
            take_cell();
            break;
        case step::done:
            break;
        }
        gathered.clear();
    }
    if (!header.isEmpty() && root_signature.size() < signature_size) {
        const qint64 from = root_at + root_signature.size();
        root_signature += copy(from, signature_size - root_signature.size());
    }
}

QString hive_checker::problem() const {
    const QString told = header_problem(header.isEmpty() ? gathered : header, taken);
    if (!told.isEmpty()) {
        return told;
    }
    if (!are_blocks_sound || block_end < bins_end || block_end > taken) {
        return QStringLiteral("a block of the registry hive is damaged or missing");
    }
    return root_signature == "nk" ? QString() : QStringLiteral("the root key of the registry hive is damaged");
}

file_health hive_checker::finish() {
    file_health result;
    result.kind = QStringLiteral("registry hive");
    result.size = taken;
    result.problem = problem();
    if (header.startsWith("regf")) {
        result.hive = facts_of(header);
        if (result.problem.isEmpty() && result.hive->primary_sequence != result.hive->secondary_sequence) {
            result.notes << QStringLiteral(
                "the registry hive has unfinished writes; its .LOG1 and .LOG2 are not applied");
        }
    }
    return result;
}
