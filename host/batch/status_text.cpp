// SPDX-License-Identifier: MIT
// Docs/batch.md shows both.
#include "host/batch/status_text.h"

#include "host/console.h"
#include "host/exit_codes.h"

#include <QJsonArray>

#include <algorithm>

namespace batch {
namespace {

constexpr int most_slow = 5;
constexpr int most_lines = 20; // of a list in the table

bool is_done_with_failures(const surveyed_source& one) {
    return one.state == source_state::done && one.record.exit_code == exit_failures;
}

bool is_failing(const surveyed_source& one) {
    return one.state == source_state::failed || is_done_with_failures(one);
}

QString state_name(const surveyed_source& one) {
    return one.state == source_state::done     ? QStringLiteral("done")
           : one.state == source_state::failed ? QStringLiteral("failed")
                                               : QStringLiteral("running");
}

double seconds_of(const surveyed_source& one) {
    return static_cast<double>(one.record.milliseconds) / 1000;
}

QString line(const QString& heading, const QString& text) {
    return heading.leftJustified(10) + printable(text) + QLatin1Char('\n');
}

// One line for each source that the test takes, under a heading.
template <class Test, class Words>
QString list(const char* heading, const QVector<surveyed_source>& sources, Test takes, Words words) {
    QString text;
    int count = 0;
    for (const surveyed_source& one : sources) {
        if (takes(one) && ++count <= most_lines) {
            text += line(count == 1 ? QLatin1String(heading) : QString(),
                         one.source.id + QStringLiteral("  ") + words(one));
        }
    }
    return count <= most_lines ? text : text + line({}, QStringLiteral("and %1 more").arg(count - most_lines));
}

QString failure_words(const surveyed_source& one) {
    const QString again = one.retryable ? QStringLiteral(" (worth another run)") : QString();
    return one.state == source_state::done
               ? QStringLiteral("done, with failures: %1").arg(one.reason)
               : QStringLiteral("exit code %1%2: %3").arg(one.record.exit_code).arg(again, one.reason);
}

} // namespace

batch_sums sums_of(const QVector<surveyed_source>& sources) {
    batch_sums sums;
    for (const surveyed_source& one : sources) {
        sums.failed += one.state == source_state::failed ? 1 : 0;
        sums.running += one.state == source_state::running ? 1 : 0;
        sums.waiting += one.state == source_state::waiting ? 1 : 0;
        if (one.state == source_state::done) {
            ++sums.done;
            sums.done_with_failures += is_done_with_failures(one) ? 1 : 0;
            sums.rows += one.record.rows;
            sums.evidence_bytes += one.record.evidence_bytes;
            sums.milliseconds += one.record.milliseconds;
        }
    }
    return sums;
}

QVector<surveyed_source> slowest_of(const QVector<surveyed_source>& sources) {
    QVector<surveyed_source> slow;
    for (const surveyed_source& one : sources) {
        if (one.state == source_state::done) {
            slow.append(one);
        }
    }
    std::stable_sort(slow.begin(), slow.end(), [](const surveyed_source& left, const surveyed_source& right) {
        return left.record.milliseconds > right.record.milliseconds;
    });
    return slow.mid(0, most_slow);
}

QString status_table(const QVector<surveyed_source>& sources) {
    const batch_sums sums = sums_of(sources);
    constexpr double mega = 1e6;
    QString text = line(QStringLiteral("sources"),
                        QStringLiteral("%1: %2 done (%3 with failures), %4 failed, %5 running, %6 waiting")
                            .arg(sources.size())
                            .arg(sums.done)
                            .arg(sums.done_with_failures)
                            .arg(sums.failed)
                            .arg(sums.running)
                            .arg(sums.waiting));
    text += line(QStringLiteral("rows"), QString::number(sums.rows));
    text += line(QStringLiteral("evidence"), QStringLiteral("%1 MB in %2 s of work, %3 MB/s a worker")
                                                 .arg(static_cast<double>(sums.evidence_bytes) / mega, 0, 'f', 1)
                                                 .arg(static_cast<double>(sums.milliseconds) / 1000, 0, 'f', 1)
                                                 .arg(static_cast<double>(sums.bytes_per_second()) / mega, 0, 'f', 1));
    text += list(
        "slowest", slowest_of(sources), [](const surveyed_source&) { return true; },
        [](const surveyed_source& one) {
            return QStringLiteral("%1 s on %2").arg(seconds_of(one), 0, 'f', 1).arg(one.record.host);
        });
    text += list(
        "running", sources, [](const surveyed_source& one) { return one.state == source_state::running; },
        [](const surveyed_source& one) { return one.reason; });
    return text + list("failing", sources, is_failing, failure_words);
}

QJsonObject status_object(const QVector<surveyed_source>& sources) {
    const batch_sums sums = sums_of(sources);
    QJsonArray slowest;
    for (const surveyed_source& one : slowest_of(sources)) {
        slowest.append(QJsonObject{{QStringLiteral("id"), one.source.id},
                                   {QStringLiteral("seconds"), seconds_of(one)},
                                   {QStringLiteral("rows"), one.record.rows},
                                   {QStringLiteral("host"), one.record.host}});
    }
    QJsonArray failing;
    QJsonArray running;
    for (const surveyed_source& one : sources) {
        if (is_failing(one)) {
            failing.append(QJsonObject{{QStringLiteral("id"), one.source.id},
                                       {QStringLiteral("state"), state_name(one)},
                                       {QStringLiteral("exit_code"), one.record.exit_code},
                                       {QStringLiteral("retryable"), one.retryable},
                                       {QStringLiteral("reason"), one.reason}});
        } else if (one.state == source_state::running) {
            running.append(QJsonObject{{QStringLiteral("id"), one.source.id}, {QStringLiteral("holder"), one.reason}});
        }
    }
    return {{QStringLiteral("version"), QStringLiteral(CORTANA_VERSION)},
            {QStringLiteral("sources"), sources.size()},
            {QStringLiteral("done"), sums.done},
            {QStringLiteral("done_with_failures"), sums.done_with_failures},
            {QStringLiteral("failed"), sums.failed},
            {QStringLiteral("running"), sums.running},
            {QStringLiteral("waiting"), sums.waiting},
            {QStringLiteral("rows"), sums.rows},
            {QStringLiteral("evidence_bytes"), sums.evidence_bytes},
            {QStringLiteral("seconds"), static_cast<double>(sums.milliseconds) / 1000},
            {QStringLiteral("bytes_per_second"), sums.bytes_per_second()},
            {QStringLiteral("slowest"), slowest},
            {QStringLiteral("running_now"), running},
            {QStringLiteral("failing"), failing}};
}

} // namespace batch
