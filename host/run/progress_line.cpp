// SPDX-License-Identifier: MIT
// The line is cut to the terminal's width: a line that wraps could not be rewritten in place.
#include "host/run/progress_line.h"

#include "host/console.h"

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

int terminal_width() {
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col - 1 : 79;
}

void rewrite(const QString& line) {
    const QByteArray bytes = "\r" + line.toUtf8() + "\x1b[K";
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

} // namespace

progress_line::progress_line(const QStringList& tables, bool shown) : table_names(tables), is_shown(shown) {
    elapsed.start();
}

void progress_line::begin_run(const QString& label) {
    run_label = label;
    record_count = 0;
    tables_done = 0;
    draw();
}

void progress_line::clear() {
    if (is_shown) {
        rewrite(QString());
    }
}

void progress_line::records_changed(qint64 records) {
    record_count = records;
    draw();
}

void progress_line::tables_changed(int done) {
    tables_done = done;
    draw();
}

void progress_line::draw() {
    if (!is_shown) {
        return;
    }
    const bool running = tables_done < table_names.size();
    const int number = running ? tables_done + 1 : table_names.size();
    rewrite(QStringLiteral("table %1 of %2 %3, %4 records, %5 s, %6")
                .arg(number)
                .arg(table_names.size())
                .arg(running ? table_names[tables_done] : QStringLiteral("done"))
                .arg(record_count)
                .arg(elapsed.elapsed() / 1000)
                .arg(printable(run_label))
                .left(terminal_width()));
}
