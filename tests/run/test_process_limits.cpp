// SPDX-License-Identifier: MIT
// Sizes as users write them, the kernel's figures of memory, and the bounds that a process sets for itself.
#include "host/run/process_limits.h"
#include "tests/support/test_text.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Runs check in a fork of its own: true when it says so.
template <class Check>
bool holds_in_child(Check check) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(check() ? 0 : 1);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

class test_process_limits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sizes_data() {
        QTest::addColumn<qint64>("bytes"); // -1: no size
        const std::pair<const char*, qint64> sizes[] = {{"0", 0},
                                                        {"1000", 1000},
                                                        {"1024K", 1048576},
                                                        {"512M", 536870912},
                                                        {"2G", 2147483648},
                                                        {"3t", 3298534883328},
                                                        {"2g", 2147483648},
                                                        {"9223372036854775807", 9223372036854775807},
                                                        {"8388607T", 9223370937343148032},
                                                        // Not one of them is a size.
                                                        {"", -1},
                                                        {"K", -1},
                                                        {"-1", -1},
                                                        {"+1", -1},
                                                        {" 1", -1},
                                                        {"1 K", -1},
                                                        {"1.5G", -1},
                                                        {"1KB", -1},
                                                        {"1KK", -1},
                                                        {"0x10", -1},
                                                        {"1E", -1},
                                                        {"9223372036854775808", -1},
                                                        {"8388608T", -1},
                                                        {"18446744073709551616K", -1},
                                                        {"\xD9\xA1", -1},
                                                        {"\xEF\xBC\x91K", -1}}; // digits of other scripts
        for (const auto& [text, bytes] : sizes) {
            QTest::addRow("'%s'", text) << bytes;
        }
    }
    void sizes() {
        const QString tag = QString::fromUtf8(QTest::currentDataTag());
        const std::optional<qint64> parsed = parse_size(tag.mid(1, tag.size() - 2));
        QTEST(parsed.value_or(-1), "bytes");
    }

    void status_texts_data() {
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<qint64>("held");
        const QByteArray name = "Name:\tx\nVmPeak:\t 900 kB\n";
        QTest::newRow("usual") << name + "VmRSS:\t  100 kB\nRssFile:\t 30 kB\nVmSwap:\t 7 kB\nThreads:\t1\n"
                               << qint64(77 * 1024);
        QTest::newRow("no swap, no parts") << name + "VmRSS:\t  100 kB\n" << qint64(102400);
        QTest::newRow("ended") << name << qint64(-1);
        QTest::newRow("empty") << QByteArray() << qint64(-1);
        QTest::newRow("no unit") << name + "VmRSS:\t  100\n" << qint64(-1);
        QTest::newRow("too large") << name + "VmRSS:\t 9223372036854775807 kB\n" << qint64(-1);
        QTest::newRow("negative") << name + "VmRSS:\t -5 kB\n" << qint64(-1);
        QTest::newRow("named so") << QByteArray("Name:\tVmRSS:\t1 kB\n") << qint64(-1);
    }
    void status_texts() {
        QFETCH(QByteArray, status);
        const std::optional<process_memory> memory = memory_from_status(status);
        QTEST(memory ? memory->held() : qint64(-1), "held");
    }

    // Memory counts when it is touched, not when it is asked for, and a mapped file's pages are not held.
    void memory_of_a_process() {
        constexpr std::size_t size = 64 << 20;
        constexpr qint64 slack = 8 << 20;
        QTemporaryFile file("/var/tmp/mapped_XXXXXX"_q); // on a disk: what lies in tmpfs is held
        QVERIFY(file.open() && file.resize(size));
        const auto mapped = [](int flags, int handle) {
            void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, flags, handle, 0);
            return memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
        };
        char* const memory = mapped(MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1);
        char* const of_file = mapped(MAP_SHARED, file.handle());
        QVERIFY(memory != nullptr && of_file != nullptr);
        const auto held = [] { return memory_of(::getpid()).value_or(process_memory()).held(); };
        const qint64 asked_for = held();
        QVERIFY(asked_for > 0);
        std::memset(memory, 1, size);
        QVERIFY2(qAbs(held() - asked_for - qint64(size)) < slack, qPrintable(QString::number(held())));
        ::munmap(memory, size);
        QVERIFY2(qAbs(held() - asked_for) < slack, qPrintable(QString::number(held())));
        QCOMPARE(std::count(of_file, of_file + size, '\0'), std::ptrdiff_t(size));
        QVERIFY2(qAbs(held() - asked_for) < slack, qPrintable(QString::number(held())));
        QVERIFY(memory_of(::getpid())->resident > qint64(size));
        ::munmap(of_file, size);
    }

    void ended_process_holds_nothing() {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(0);
        }
        siginfo_t info = {};
        QCOMPARE(::waitid(P_PID, id_t(child), &info, WEXITED | WNOWAIT), 0);
        QVERIFY(!memory_of(child)); // not waited for yet
        ::waitpid(child, nullptr, 0);
        QVERIFY(!memory_of(child));
    }

    void file_size_has_a_limit() {
        QTemporaryDir folder;
        const QByteArray path = QFile::encodeName(folder.filePath("file"_q));
        QVERIFY(holds_in_child([&] {
            const int handle = ::open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            return limit_file_size(10) && ::write(handle, "0123456789abcdef", 16) == 10 &&
                   ::write(handle, "x", 1) == -1 && errno == EFBIG;
        }));
        QVERIFY(holds_in_child([] { return !limit_file_size(-1) && errno == EINVAL; }));
    }

    void no_core_files_and_ended_first() {
        QVERIFY(holds_in_child([] {
            rlimit limit = {1, 1};
            QFile score("/proc/self/oom_score_adj"_q);
            return forbid_core_files() && ::getrlimit(RLIMIT_CORE, &limit) == 0 && limit.rlim_max == 0 &&
                   be_ended_first() && score.open(QIODevice::ReadOnly) && score.readAll() == "500\n";
        }));
    }

    // The grandchild outlives the child that started it, unless the signal comes: its end of the pipe then closes.
    void ends_with_its_parent() {
        int alive[2];
        QVERIFY(::pipe(alive) == 0);
        QVERIFY(holds_in_child([&] {
            const pid_t parent = ::getpid();
            if (::fork() == 0) {
                const bool is_set = die_with_parent(parent);
                if (::write(alive[1], is_set ? "y" : "n", 1) == 1) {
                    ::pause();
                }
                ::_exit(0);
            }
            char answer = 0;
            return ::read(alive[0], &answer, 1) == 1 && answer == 'y';
        }));
        ::close(alive[1]);
        char byte = 0;
        QCOMPARE(::read(alive[0], &byte, 1), ssize_t(0)); // hangs until the time limit when the grandchild lives on
        ::close(alive[0]);
        QVERIFY(holds_in_child([] { return !die_with_parent(::getpid()) && errno == ESRCH; }));
    }
};

QTEST_GUILESS_MAIN(test_process_limits)
#include "test_process_limits.moc"
