// SPDX-License-Identifier: MIT
// Cancelling the command-line host, and its progress line. The program shows its debug log on a pipe that holds 4 KiB
// and that the test empties only when it likes: the program cannot get to its end before the test lets it, whatever
// the machine's speed.
#include "host_case.h"

#include <QJsonArray>
#include <QtTest>

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int profile_count = 100; // their log is many times what pipe and reader can hold

void add_profiles(const host_case& host) {
    for (int i = 0; i < profile_count; ++i) {
        host.add_recording("p" + QByteArray::number(1000 + i), "a.wav");
    }
}

struct running_host {
    // Its standard error goes to one descriptor and is read from the other, its standard output is a file.
    running_host(const host_case& host, const QString& words, int error, int read_end) : log(read_end) {
        process.in_child = [error] { ::dup2(error, STDERR_FILENO); };
        process.setStandardOutputFile(QString::fromUtf8(host.base() + "/stdout"));
        process.start(QStringLiteral(HOST_PROGRAM), host.filled(words));
        ::close(error);
    }
    void signal_after(const QByteArray& words, const QVector<int>& signals_to_send) {
        while (!seen.contains(words) && read_more()) {
        }
        QVERIFY2(seen.contains(words), seen.constData());
        for (const int number : signals_to_send) {
            QCOMPARE(::kill(static_cast<pid_t>(process.processId()), number), 0);
        }
    }
    int exit_code(bool read_on = true) {
        while (read_on && read_more()) {
        }
        const bool ended = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
        ::close(log);
        return ended ? process.exitCode() : -1;
    }
    bool read_more() {
        char buffer[256];
        const ssize_t got = ::read(log, buffer, sizeof buffer);
        seen.append(buffer, static_cast<int>(std::max<ssize_t>(got, 0)));
        return got > 0;
    }

    host_process process;
    int log;
    QByteArray seen; // of its standard error
};

std::unique_ptr<running_host> start_on_pipe(const host_case& host, const QString& option = {}) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0 || ::fcntl(ends[1], F_SETPIPE_SZ, 4096) != 4096) {
        qFatal("no pipe");
    }
    return std::make_unique<running_host>(host, "extract --json --log-terminal {S} {R} "_q + option, ends[1], ends[0]);
}

} // namespace

class test_host_signals : public QObject {
    Q_OBJECT

    // Cancels after these words of the log.
    static void cancel(const QString& option, const QByteArray& words, int signal) {
        const host_case host;
        add_profiles(host);
        const auto program = start_on_pipe(host, option);
        program->signal_after(words, {signal});
        QCOMPARE(program->exit_code(), 128 + signal);
        QVERIFY2(program->seen.contains("cortana: cancelled"), program->seen.constData());
        const QByteArray out = whole_file(QString::fromUtf8(host.base() + "/stdout"));
        const QJsonObject summary = QJsonDocument::fromJson(out).object();
        QCOMPARE(summary["outcome"_q].toString(), "cancelled"_q);
        const QStringList users = host.recordings({"system_user"_q});
        QCOMPARE(summary["rows_added"_q].toInt(), users.size());
        QCOMPARE(users.value(0), "system_user=text:p1000"_q);
        QCOMPARE(users.filter("p1099"_q), QStringList());
        QVERIFY(summary["not_examined"_q].toArray().contains("p1099"_q));
    }

    static QByteArray shown_on_a_terminal(const host_case& host, const QString& option) {
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) {
            qFatal("no terminal");
        }
        const int side = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
        running_host program(host, "extract {S} {R} "_q + option, side, terminal);
        const int code = program.exit_code();
        return code == 0 ? program.seen : "exit code " + QByteArray::number(code);
    }

private Q_SLOTS:
    void keeps_what_was_written() { cancel("--clear --jobs 1"_q, "[pub_extract_artifacts] - END", SIGINT); }

    void stops_at_once_at_the_second_signal() {
        const host_case host;
        add_profiles(host);
        const auto program = start_on_pipe(host);
        program->signal_after("FILE EXIST--", {SIGINT, SIGTERM});
        const int code = program->exit_code(false); // nobody empties the pipe, so it cannot end in any other way
        QVERIFY2(code == 130 || code == 143, QByteArray::number(code).constData()); // as the kernel orders them
        QCOMPARE(QFileInfo(QString::fromUtf8(host.base() + "/stdout")).size(), 0);
    }

    void shows_progress_on_a_terminal() {
        const host_case host;
        host.add_recording("anna\x1b[2J", "a.wav");
        const QByteArray seen = shown_on_a_terminal(host, {});
        QVERIFY2(seen.startsWith("\r0/1 profiles, 0 rows, 0 rows/s, 0 s: anna\\x1b[2J checked\x1b[K"),
                 seen.constData());
        QVERIFY2(seen.contains("\r0/1 profiles, 1 rows, "), seen.constData());
        QVERIFY2(seen.contains("anna\\x1b[2J graphed_cache\x1b[K"), seen.constData());
        QVERIFY2(seen.endsWith("\r\x1b[K"), seen.constData());
        QVERIFY(!seen.contains('\n'));
        QCOMPARE(seen.count('\x1b'), seen.count("\x1b[K"));
        // The log takes the line's place: the two would write into each other.
        const QByteArray log = shown_on_a_terminal(host, "--log-terminal"_q);
        QCOMPARE(shown_on_a_terminal(host, "--quiet"_q), QByteArray());
        QVERIFY2(log.contains("FILE EXIST--") && !log.contains("/1 profiles"), log.constData());
    }
};

QTEST_GUILESS_MAIN(test_host_signals)
#include "test_host_signals.moc"
