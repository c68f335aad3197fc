// SPDX-License-Identifier: MIT
// Cancelling the command-line host, and its progress line. The program shows its debug log on a pipe that holds 4 KiB
// and that the test empties only when it likes: the program cannot get to its end before the test lets it, whatever
// the machine's speed.
#include "host_case.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

class test_host_signals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cancels_and_keeps_what_was_written_data();
    void cancels_and_keeps_what_was_written();
    void cancels_before_the_first_run();
    void stops_at_once_at_the_second_signal();
    void shows_progress_on_a_terminal();
};

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

// Starts the host with the given descriptor as standard error and standard output in a file.
pid_t start_host(const QStringList& arguments, const QByteArray& output, int error) {
    QVector<QByteArray> words{QByteArray(HOST_PROGRAM)};
    for (const QString& argument : arguments) {
        words.append(argument.toUtf8());
    }
    std::vector<char*> list;
    for (QByteArray& word : words) {
        list.push_back(word.data());
    }
    list.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open(output.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
        ::dup2(error, STDERR_FILENO);
        ::execv(list[0], list.data());
        ::_exit(127);
    }
    ::close(error);
    return child;
}

struct running_host {
    pid_t process = -1;
    int log = -1; // read end of its standard error
    QByteArray seen;

    bool read_more() {
        char buffer[256];
        const ssize_t got = ::read(log, buffer, sizeof buffer);
        seen.append(buffer, static_cast<int>(std::max<ssize_t>(got, 0)));
        return got > 0;
    }
    void wait_for(const QByteArray& words) {
        while (!seen.contains(words) && read_more()) {
        }
    }
    int exit_code() const {
        int status = 0;
        ::waitpid(process, &status, 0);
        ::close(log);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

running_host start_on_pipe(const host_case& host, const QStringList& options) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0 || ::fcntl(ends[1], F_SETPIPE_SZ, 4096) != 4096) {
        qFatal("no pipe");
    }
    const QStringList arguments =
        QStringList{QStringLiteral("extract"), QStringLiteral("--json"), QStringLiteral("--log-terminal")} + options +
        QStringList{QStringLiteral("{S}"), QStringLiteral("{R}")};
    return {start_host(host.filled(arguments), host.base() + "/stdout", ends[1]), ends[0], {}};
}

} // namespace

void test_host_signals::cancels_and_keeps_what_was_written_data() {
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

void test_host_signals::cancels_and_keeps_what_was_written() {
    QFETCH(QString, option);
    QFETCH(QByteArray, after);
    QFETCH(int, signal);
    QFETCH(int, code);
    QFETCH(bool, rows_kept);
    const host_case host;
    add_profiles(host);
    running_host program = start_on_pipe(host, {option});
    program.wait_for(after);
    QVERIFY2(program.seen.contains(after), program.seen.constData());
    QCOMPARE(::kill(program.process, signal), 0);
    while (program.read_more()) {
    }
    QCOMPARE(program.exit_code(), code);
    QVERIFY2(program.seen.contains("cortana: cancelled"), program.seen.constData());
    const QJsonObject summary = QJsonDocument::fromJson(read_file(host.base() + "/stdout")).object();
    QCOMPARE(summary[QStringLiteral("outcome")].toString(), QStringLiteral("cancelled"));
    const QStringList users = host.query(QStringLiteral("select system_user from latest_audio_search order by INT"));
    QCOMPARE(summary[QStringLiteral("rows_added")].toInt(), users.size());
    QCOMPARE(users.value(0), rows_kept ? QString::fromUtf8(profile_name(0)) : QString());
    const QString last = QString::fromUtf8(profile_name(profile_count - 1));
    QVERIFY(!users.contains(last));
    QCOMPARE(summary[QStringLiteral("not_examined")].toArray().contains(last), rows_kept); // one run left out nobody
}

void test_host_signals::cancels_before_the_first_run() {
    const host_case host;
    host.make_folders(host.speech_folder("anna"));
    for (int i = 0; i < profile_count; ++i) { // each gives a note, and the pipe cannot hold all of them
        const QByteArray pipe = host.speech_folder("anna") + "/" + profile_name(i);
        QCOMPARE(::mkfifo(pipe.constData(), 0644), 0);
    }
    running_host program = start_on_pipe(host, {});
    program.wait_for("note: ");
    QCOMPARE(::kill(program.process, SIGINT), 0);
    while (program.read_more()) {
    }
    QCOMPARE(program.exit_code(), 130);
    QVERIFY(!QFile::exists(QString::fromUtf8(host.database())));
    QVERIFY2(program.seen.contains("cortana: cancelled; not examined: anna"), program.seen.constData());
}

void test_host_signals::stops_at_once_at_the_second_signal() {
    const host_case host;
    add_profiles(host);
    running_host program = start_on_pipe(host, {});
    program.wait_for("FILE EXIST--");
    QCOMPARE(::kill(program.process, SIGINT), 0);
    QCOMPARE(::kill(program.process, SIGTERM), 0);
    const int code = program.exit_code(); // nobody empties the pipe, so it cannot end in any other way
    QVERIFY2(code == 130 || code == 143, QByteArray::number(code).constData()); // the later one's, as the kernel has it
    QCOMPARE(read_file(host.base() + "/stdout"), QByteArray());
}

void test_host_signals::shows_progress_on_a_terminal() {
    const host_case host;
    host.add_recording("anna\x1b[2J", "a.wav");
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    QVERIFY(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const int side = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const QStringList arguments{QStringLiteral("extract"), QStringLiteral("{S}"), QStringLiteral("{R}")};
    running_host program{start_host(host.filled(arguments), host.base() + "/stdout", side), terminal, {}};
    while (program.read_more()) {
    }
    const QByteArray shown = program.seen;
    QCOMPARE(program.exit_code(), 0);
    QVERIFY2(shown.startsWith("\rtable 1 of 9 time_reminders, 0 records, 0 s, anna\\x1b[2J\x1b[K"), shown.constData());
    QVERIFY2(shown.contains("\rtable 5 of 9 graphed_cache, 1 records, "), shown.constData());
    QVERIFY2(shown.endsWith("\r\x1b[K"), shown.constData());
    QVERIFY(!shown.contains('\n'));
    QCOMPARE(shown.count('\x1b'), shown.count("\x1b[K"));
}

QTEST_GUILESS_MAIN(test_host_signals)
#include "test_host_signals.moc"
