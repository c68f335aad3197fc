// SPDX-License-Identifier: MIT
// Supervisor or worker killed with SIGKILL at moments spread over a run, counted in its lines of progress. Four
// moments each; CORTANA_KILLS in the environment asks for another number.
#include "fuzz/mutated_runs.h"
#include "host_case.h"
#include "samples/sample_source.h"

#include <QtTest>

#include <csignal>

namespace {

using profile_rows = QHash<QString, QStringList>;

QString database_of(const host_case& host) {
    return QString::fromUtf8(host.database());
}

void fill_source(const host_case& host) {
    QVERIFY(write_sample_source(QString::fromUtf8(host.source())));
    for (const char* const user : {"anna", "bernd", "zoe"}) {
        for (int number = 0; number < 60; ++number) {
            host.add_recording(user, QByteArray::number(number) + ".wav");
        }
    }
}

pid_t first_child(qint64 parent) {
    const QByteArray children = whole_file(QStringLiteral("/proc/%1/task/%1/children").arg(parent)).split(' ').value(0);
    return static_cast<pid_t>(children.toInt());
}

// Runs the program until it has written so many lines of progress (-1: to its end), then kills it or its first worker.
// Returns the lines in all.
int run_until(const host_case& host, int moment, bool worker, int& code) {
    host_process process;
    process.in_child = [] {};
    process.start(QStringLiteral(HOST_PROGRAM), host.filled("extract --quiet --progress json --jobs 2 {S} {R}"_q));
    process.setReadChannel(QProcess::StandardError);
    int lines = 0;
    while (process.waitForReadyRead(60000)) {
        for (; process.canReadLine(); process.readLine()) {
            const pid_t victim = ++lines != moment ? 0
                                 : worker          ? first_child(process.processId())
                                                   : static_cast<pid_t>(process.processId());
            if (victim > 0) {
                ::kill(victim, SIGKILL);
            }
        }
    }
    process.waitForFinished(60000);
    code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return lines;
}

// {"profile table": rows}
QMap<QString, QStringList> steps_of(const profile_rows& rows) {
    QMap<QString, QStringList> steps;
    for (auto profile = rows.begin(); profile != rows.end(); ++profile) {
        for (const QString& row : profile.value()) {
            steps[profile.key() + QLatin1Char(' ') + row.section(QLatin1Char('|'), 0, 0)].append(row);
        }
    }
    return steps;
}

// Tables that hold some of a step's rows but not all.
QStringList half_steps(const profile_rows& rows, const profile_rows& whole) {
    const auto expected = steps_of(whole);
    const auto found = steps_of(rows);
    QStringList halves;
    for (auto step = found.begin(); step != found.end(); ++step) {
        if (step.value() != expected.value(step.key())) {
            halves << step.key();
        }
    }
    return halves;
}

} // namespace

class test_killed_runs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leave_whole_steps_and_a_run_that_can_follow() {
        const host_case host;
        fill_source(host);
        int code = 0;
        const int lines = run_until(host, -1, false, code);
        QCOMPARE(code, 0);
        const profile_rows whole = rows_by_profile(database_of(host));
        QVERIFY(lines > 20 && whole.size() == 3);
        const int kills =
            qEnvironmentVariableIsSet("CORTANA_KILLS") ? qEnvironmentVariableIntValue("CORTANA_KILLS") : 4;
        for (const bool worker : {false, true}) {
            int hits = 0;
            for (int kill = 0; kill < kills; ++kill) {
                hits += one_kill(host, 1 + kill * lines / kills, worker, whole) ? 1 : 0;
                if (QTest::currentTestFailed()) {
                    return;
                }
            }
            std::printf("%d kills of a %s, %d of them before its end\n", kills, worker ? "worker" : "supervisor", hits);
            QVERIFY(hits > 0);
        }
    }

private:
    // True when the kill came before the end.
    static bool one_kill(const host_case& host, int moment, bool worker, const profile_rows& whole) {
        std::error_code ignored;
        std::filesystem::remove_all(host.result().constData(), ignored);
        int code = 0;
        run_until(host, moment, worker, code);
        const bool is_there = QFile::exists(database_of(host));
        const profile_rows left = is_there ? rows_by_profile(database_of(host)) : profile_rows();
        const auto fail = [&](const QString& what) {
            QTest::qFail(qPrintable("moment %1: "_q.arg(moment) + what), __FILE__, __LINE__);
            return false;
        };
        if (!half_steps(left, whole).isEmpty()) {
            return fail("half steps "_q + half_steps(left, whole).join(QLatin1Char(' ')));
        }
        if (worker ? code != 3 && code != 0 : code != -1 && code != 0) {
            return fail("exit code %1"_q.arg(code));
        }
        if (code == 0 && left != whole) {
            return fail("rows are missing without a word"_q);
        }
        const host_answer next = host.extract("--clear"_q);
        if (next.code != 0 || rows_by_profile(database_of(host)) != whole) {
            return fail("the next run's rows are other ones: "_q + QString::fromUtf8(next.error));
        }
        if (QFile::exists(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/.workers"))) {
            return fail("work is left behind"_q);
        }
        return code != 0;
    }
};

QTEST_GUILESS_MAIN(test_killed_runs)
#include "test_killed_runs.moc"
