// SPDX-License-Identifier: MIT
// In constant memory a sheet's rows go to a file of the library's at once, so sheets are written one after the other.
#include "host/exports/xlsx_writer.h"

#include "host/exports/cell_text.h"
#include "host/exports/xlsx_check.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int longest_text = 32767;

// A text that needs no change: short, printable ASCII, nothing like an escape.
bool is_plain(const std::string& text) {
    return text.size() <= longest_text && text.find("_x") == std::string::npos &&
           std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' '; });
}

// Excel reads _xHHHH_ in a cell as a character. The library writes control characters so, but does not say that a
// text which looks like one is meant as it stands.
QString without_escapes(const QString& text) {
    static const QRegularExpression escape(QStringLiteral("_(?=x[0-9A-Fa-f]{4}_)"));
    return text.contains(QLatin1String("_x")) ? QString(text).replace(escape, QStringLiteral("_x005F_")) : text;
}

} // namespace

QString xlsx_cell_text(const QString& text, bool& cut) {
    const QString mark = QStringLiteral(" [cut]");
    QString fit = without_escapes(xml_text(text));
    cut = fit.size() > longest_text;
    if (cut) {
        int kept = longest_text - mark.size();
        kept -= fit.at(kept).isLowSurrogate() ? 1 : 0;
        fit = fit.left(kept) + mark;
    }
    return fit;
}

xlsx_writer::xlsx_writer(export_folder& export_to, qint64 rows_in_sheet)
    : file(export_to.create("cortana.xlsx")), path(export_to.native_path() + '/' + file.temporary_name()),
      folder(export_to.native_path()), most_rows(rows_in_sheet) {
    if (!file.failed()) {
        lxw_workbook_options options = {};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = folder.data();
        options.use_zip64 = LXW_TRUE;
        book.reset(workbook_new_opt(path.constData(), &options));
        if (!book) {
            fail(LXW_ERROR_MEMORY_MALLOC_FAILED);
        }
    }
}

xlsx_writer::~xlsx_writer() = default;

bool xlsx_writer::fail(lxw_error code) {
    file.fail(QString::fromUtf8(lxw_strerror(code)));
    return false;
}

bool xlsx_writer::begin(const export_table& begun) {
    start_counts();
    table = &begun;
    sheets_of_table = 0;
    return !file.failed() && begin_sheet();
}

bool xlsx_writer::begin_sheet() {
    ++sheets_of_table;
    const QByteArray suffix = sheets_of_table == 1 ? QByteArray() : " (" + QByteArray::number(sheets_of_table) + ')';
    sheet = workbook_add_worksheet(book.get(), (table->name + suffix).constData());
    if (!sheet) {
        return fail(LXW_ERROR_MEMORY_MALLOC_FAILED);
    }
    worksheet_freeze_panes(sheet, 1, 0);
    next_row = 0;
    next_column = 0;
    bool done = true;
    for (const column_description& column : table->columns) {
        const std::string name = column.name;
        done = done && put(name);
        if (column.kind == column_kind::time) {
            done = done && put(name + "_utc") && (!table->with_zone || put(name + "_local"));
        }
    }
    columns = next_column;
    ++next_row;
    return done;
}

void xlsx_writer::end_sheet() {
    worksheet_autofilter(sheet, 0, 0, next_row - 1, static_cast<lxw_col_t>(columns - 1));
    rows_of_sheets.append(next_row);
    if (std::ferror(sheet->optimize_tmpfile) != 0 || std::fflush(sheet->optimize_tmpfile) != 0) {
        fail(LXW_ERROR_CREATING_TMPFILE); // the library does not look
    }
}

bool xlsx_writer::row(const export_row& row) {
    if (next_row == most_rows) {
        end_sheet();
        note(QStringLiteral("further sheets"));
        if (file.failed() || !begin_sheet()) {
            return false;
        }
    }
    next_column = 0;
    bool done = true;
    for (std::size_t i = 0; i < row.cells.size() && done; ++i) {
        done = put_cell(row.cells[i]);
        if (done && row.table.columns[static_cast<int>(i)].kind == column_kind::time) {
            done = put_times(row.times[i]);
        }
    }
    ++next_row;
    count_out();
    return done;
}

bool xlsx_writer::put_cell(const export_cell& cell) {
    shown.clear();
    append_shown(cell, shown);
    if (is_plain(shown)) {
        return put(shown);
    }
    QString decoded;
    is_valid_utf8(shown, &decoded);
    bool cut = false;
    const QByteArray text = xlsx_cell_text(decoded, cut).toUtf8();
    if (cut) {
        note(QStringLiteral("cells cut at 32,767 characters"));
    }
    return put(text.toStdString());
}

bool xlsx_writer::put_times(const export_time& time) {
    return put(time.is_time ? time.utc.data() : "") &&
           (!table->with_zone || put(time.is_time ? time.in_zone.data() : ""));
}

bool xlsx_writer::put(const std::string& text) {
    const lxw_col_t column = next_column++;
    if (text.empty()) {
        return true;
    }
    const lxw_error code = worksheet_write_string(sheet, next_row, column, text.c_str(), nullptr);
    return code == LXW_NO_ERROR || fail(code);
}

bool xlsx_writer::end() {
    end_sheet();
    return !file.failed();
}

bool xlsx_writer::finish() {
    const lxw_error code = workbook_close(book.release());
    if (code != LXW_NO_ERROR) {
        return fail(code);
    }
    const QString trouble = xlsx_trouble(path, rows_of_sheets);
    if (!trouble.isEmpty()) {
        file.fail(trouble);
        return false;
    }
    return file.make_whole();
}
