// SPDX-License-Identifier: MIT
// The line is cut to the terminal's width: a line that wraps could not be rewritten in place.
#include "host/run/progress.h"

#include "host/console.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

int terminal_width() {
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col - 1 : 79;
}

void write_out(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

void rewrite(const QString& line) {
    write_out("\r" + line.toUtf8() + "\x1b[K");
}

} // namespace

run_progress::run_progress(progress_form wanted, int all) : form(wanted), all_profiles(all) {
    elapsed.start();
}

void run_progress::update(int place, const profile_progress& state, int done) {
    states.insert(place, state);
    done_profiles = done;
    if (form == progress_form::terminal_line) {
        draw();
    } else if (form == progress_form::json_lines) {
        write_json(state);
    }
}

void run_progress::clear() const {
    if (form == progress_form::terminal_line) {
        rewrite(QString());
    }
}

qint64 run_progress::rows() const {
    qint64 sum = 0;
    for (const profile_progress& state : states) {
        sum += state.rows;
    }
    return sum;
}

qint64 run_progress::rows_per_second() const {
    return rows() * 1000 / std::max<qint64>(elapsed.elapsed(), 1);
}

void run_progress::draw() const {
    QStringList working;
    for (const profile_progress& state : states) {
        if (state.running) {
            const QString doing = state.table.isEmpty() ? QStringLiteral("checked") : state.table;
            working.append(printable(state.profile) + QLatin1Char(' ') + doing);
        }
    }
    rewrite(QStringLiteral("%1/%2 profiles, %3 rows, %4 rows/s, %5 s: %6")
                .arg(done_profiles)
                .arg(all_profiles)
                .arg(rows())
                .arg(rows_per_second())
                .arg(elapsed.elapsed() / 1000)
                .arg(working.join(QStringLiteral(", ")))
                .left(terminal_width()));
}

void run_progress::write_json(const profile_progress& state) const {
    const QJsonObject line{
        {QStringLiteral("event"), QStringLiteral("progress")},
        {QStringLiteral("profile"), state.profile},
        {QStringLiteral("table"), state.table},
        {QStringLiteral("running"), state.running},
        {QStringLiteral("rows"), state.rows},
        {QStringLiteral("all_rows"), rows()},
        {QStringLiteral("rows_per_second"), rows_per_second()},
        {QStringLiteral("profiles_done"), done_profiles},
        {QStringLiteral("profiles"), all_profiles},
        {QStringLiteral("seconds"), static_cast<double>(elapsed.elapsed()) / 1000},
    };
    write_out(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
}
