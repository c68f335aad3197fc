// SPDX-License-Identifier: MIT
// Cancelling the command-line host, and its progress line. The program shows its debug log on a pipe that holds 4 KiB
// and that the test empties only when it likes: the program cannot get to its end before the test lets it, whatever
// the machine's speed.
#include "host_case.h"

#include <QFile>
#include <QJsonArray>
#include <QtTest>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int profile_count = 100; // their log is many times what pipe and reader can hold

QByteArray profile_name(int number) {
    return "p" + QByteArray::number(1000 + number);
}

void add_profiles(const host_case& host) {
    for (int i = 0; i < profile_count; ++i) {
        host.add_recording(profile_name(i), "a.wav");
    }
}

struct running_host {
    host_process process;
    int log;
    QByteArray seen; // of its standard error

    // Its standard error goes to one descriptor and is read from the other, its standard output is a file.
    running_host(const host_case& host, const QStringList& arguments, int error, int read_end) : log(read_end) {
        process.in_child = [error] { ::dup2(error, STDERR_FILENO); };
        process.setStandardOutputFile(QString::fromUtf8(host.base() + "/stdout"));
        process.start(q(HOST_PROGRAM), host.filled(arguments));
        ::close(error);
    }
    bool read_more() {
        char buffer[256];
        const ssize_t got = ::read(log, buffer, sizeof buffer);
        seen.append(buffer, static_cast<int>(std::max<ssize_t>(got, 0)));
        return got > 0;
    }
    void signal_after(const QByteArray& words, const QVector<int>& signals_to_send) {
        while (!seen.contains(words) && read_more()) {
        }
        QVERIFY2(seen.contains(words), seen.constData());
        for (const int number : signals_to_send) {
            QCOMPARE(::kill(static_cast<pid_t>(process.processId()), number), 0);
        }
    }
    int exit_code() {
        const bool ended = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
        ::close(log);
        return ended ? process.exitCode() : -1;
    }
    int last_exit_code() {
        while (read_more()) {
        }
        return exit_code();
    }
};

std::unique_ptr<running_host> start_on_pipe(const host_case& host, const QStringList& options) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0 || ::fcntl(ends[1], F_SETPIPE_SZ, 4096) != 4096) {
        qFatal("no pipe");
    }
    const QStringList words = QStringList{q("extract"), q("--json"), q("--log-terminal"), q("{S}"), q("{R}")} + options;
    return std::make_unique<running_host>(host, words, ends[1], ends[0]);
}

} // namespace

class test_host_signals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cancels_and_keeps_what_was_written_data() {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QByteArray>("after"); // words of the log to wait for
        QTest::addColumn<int>("signal");
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("rows_kept");
        QTest::newRow("after the first profile")
            << "--clear" << QByteArray("[pub_extract_artifacts] - END") << SIGINT << 130 << true;
        QTest::newRow("while sources are looked for")
            << "--all-profiles" << QByteArray("FILE EXIST--") << SIGTERM << 143 << false;
    }
    void cancels_and_keeps_what_was_written() {
        QFETCH(QString, option);
        QFETCH(QByteArray, after);
        QFETCH(int, signal);
        QFETCH(bool, rows_kept);
        const host_case host;
        add_profiles(host);
        const auto program = start_on_pipe(host, {option});
        program->signal_after(after, {signal});
        QTEST(program->last_exit_code(), "code");
        QVERIFY2(program->seen.contains("cortana: cancelled"), program->seen.constData());
        const QJsonObject summary = QJsonDocument::fromJson(read_file(host.base() + "/stdout")).object();
        QCOMPARE(summary[q("outcome")].toString(), q("cancelled"));
        const QStringList users = host.query(q("select system_user from latest_audio_search order by INT"));
        QCOMPARE(summary[q("rows_added")].toInt(), users.size());
        QCOMPARE(users.value(0), rows_kept ? QString::fromUtf8(profile_name(0)) : QString());
        const QString last = QString::fromUtf8(profile_name(profile_count - 1));
        QVERIFY(!users.contains(last));
        QCOMPARE(summary[q("not_examined")].toArray().contains(last), rows_kept); // one run left out nobody
    }

    void cancels_before_the_first_run() {
        const host_case host;
        host.make_folders(host.speech_folder("anna"));
        for (int i = 0; i < profile_count; ++i) { // each gives a note, and the pipe cannot hold all of them
            const QByteArray pipe = host.speech_folder("anna") + "/" + profile_name(i);
            QCOMPARE(::mkfifo(pipe.constData(), 0644), 0);
        }
        const auto program = start_on_pipe(host, {});
        program->signal_after("note: ", {SIGINT});
        QCOMPARE(program->last_exit_code(), 130);
        QVERIFY(!QFile::exists(QString::fromUtf8(host.database())));
        QVERIFY2(program->seen.contains("cortana: cancelled; not examined: anna"), program->seen.constData());
    }

    void stops_at_once_at_the_second_signal() {
        const host_case host;
        add_profiles(host);
        const auto program = start_on_pipe(host, {});
        program->signal_after("FILE EXIST--", {SIGINT, SIGTERM});
        const int code = program->exit_code(); // nobody empties the pipe, so it cannot end in any other way
        QVERIFY2(code == 130 || code == 143, QByteArray::number(code).constData()); // as the kernel orders them
        QCOMPARE(read_file(host.base() + "/stdout"), QByteArray());
    }

    void shows_progress_on_a_terminal() {
        const host_case host;
        host.add_recording("anna\x1b[2J", "a.wav");
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        QVERIFY(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
        const int side = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
        running_host program(host, {q("extract"), q("{S}"), q("{R}")}, side, terminal);
        QCOMPARE(program.last_exit_code(), 0);
        const QByteArray shown = program.seen;
        QVERIFY2(shown.startsWith("\rtable 1 of 9 time_reminders, 0 records, 0 s, anna\\x1b[2J\x1b[K"),
                 shown.constData());
        QVERIFY2(shown.contains("\rtable 5 of 9 graphed_cache, 1 records, "), shown.constData());
        QVERIFY2(shown.endsWith("\r\x1b[K"), shown.constData());
        QVERIFY(!shown.contains('\n'));
        QCOMPARE(shown.count('\x1b'), shown.count("\x1b[K"));
    }
};

QTEST_GUILESS_MAIN(test_host_signals)
#include "test_host_signals.moc"
