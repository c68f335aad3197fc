// SPDX-License-Identifier: MIT
// Counts the row elements of each sheet in its unpacked XML, a block at a time.
#include "host/exports/xlsx_check.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view row_start = "<row ";
constexpr std::string_view sheet_end = "</worksheet>";
constexpr std::string_view sheet_name = "xl/worksheets/sheet";
constexpr std::size_t block_size = 1 << 16;

struct free_archive {
    void operator()(archive* opened) const { archive_read_free(opened); }
};
using archive_handle = std::unique_ptr<archive, free_archive>;

qint64 count(std::string_view text, std::string_view word) {
    qint64 found = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + word.size())) {
        ++found;
    }
    return found;
}

// The rows of the sheet, -1 when it cannot be read or is cut off.
qint64 rows_in(archive* opened) {
    std::string block;
    std::size_t kept = 0; // at the block's begin: the end of the one before, in which a word may have begun
    qint64 rows = 0;
    while (true) {
        block.resize(kept + block_size);
        const la_ssize_t got = archive_read_data(opened, &block[kept], block_size);
        if (got <= 0) {
            block.resize(kept);
            const bool whole = got == 0 && block.size() >= sheet_end.size() &&
                               block.compare(block.size() - sheet_end.size(), sheet_end.size(), sheet_end) == 0;
            return whole ? rows : -1;
        }
        block.resize(kept + static_cast<std::size_t>(got));
        const std::string_view tail = std::string_view(block).substr(0, kept);
        rows += count(block, row_start) - count(tail, row_start);
        block.erase(0, block.size() - std::min(block.size(), sheet_end.size() + 1));
        kept = block.size();
    }
}

} // namespace

QString xlsx_trouble(const QByteArray& native_path, const QVector<qint64>& rows_of_sheets) {
    const archive_handle opened(archive_read_new());
    archive_read_support_format_zip(opened.get());
    if (archive_read_open_filename(opened.get(), native_path.constData(), block_size) != ARCHIVE_OK) {
        return QStringLiteral("the workbook cannot be read back");
    }
    int sheets = 0;
    archive_entry* entry = nullptr;
    int code = archive_read_next_header(opened.get(), &entry);
    for (; code == ARCHIVE_OK; code = archive_read_next_header(opened.get(), &entry)) {
        const QByteArray name(archive_entry_pathname(entry));
        if (!name.startsWith(sheet_name.data())) {
            continue;
        }
        const int number = std::atoi(name.constData() + sheet_name.size());
        if (number < 1 || number > rows_of_sheets.size() || rows_in(opened.get()) != rows_of_sheets[number - 1]) {
            return QStringLiteral("the workbook lacks rows of sheet %1; is the disk full?").arg(number);
        }
        ++sheets;
    }
    const bool all = code == ARCHIVE_EOF && sheets == rows_of_sheets.size();
    return all ? QString() : QStringLiteral("the workbook is cut off; is the disk full?");
}
