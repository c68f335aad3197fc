// SPDX-License-Identifier: MIT
// Confinement, seen from within: the program starts itself, and that process confines itself and tries everything.
// Each protection is tried alone, both together, and none, where everything has to succeed.
#include "host/run/runtime_paths.h"
#include "host/run/sandbox.h"
#include "samples/sample_source.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/run/attempts.h"
#include "tests/support/test_support.h"

#include <QApplication>
#include <QProcess>
#include <QtTest>

#include <cstdio>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <linux/capability.h>

Q_DECLARE_METATYPE(protection)

namespace {

// Has a system call fail, as it does in a kernel or a container without it.
void take_away(int call, uint32_t error, const std::vector<scmp_arg_cmp>& conditions = {}) {
    const scmp_filter_ctx filter = ::seccomp_init(SCMP_ACT_ALLOW);
    const auto count = static_cast<unsigned int>(conditions.size());
    if (::seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(error), call, count, conditions.data()) != 0 ||
        ::seccomp_load(filter) != 0) {
        qFatal("no filter");
    }
    ::seccomp_release(filter);
}

void prepare(const QString& preparation, sandbox_plan& plan) {
    if (preparation == "a thread"_q) {
        std::thread([] { ::pause(); }).detach();
    } else if (preparation == "a folder that is not there"_q) {
        plan.writable.append("none");
    } else if (preparation == "no Landlock"_q) {
        take_away(SCMP_SYS(landlock_create_ruleset), ENOSYS);
    } else if (preparation == "Landlock switched off"_q) {
        take_away(SCMP_SYS(landlock_create_ruleset), EOPNOTSUPP);
    } else if (preparation == "Landlock that fails"_q) {
        take_away(SCMP_SYS(landlock_restrict_self), E2BIG);
    } else if (preparation == "no filters"_q) {
        take_away(SCMP_SYS(seccomp), ENOSYS);
    } else if (preparation == "a filter that fails"_q) {
        take_away(SCMP_SYS(seccomp), ENOMEM, {{0, SCMP_CMP_EQ, SECCOMP_SET_MODE_FILTER, 0}});
    }
}

// Root in a container may have less than all rights.
bool is_privileged() {
    return ::geteuid() == 0 && ::prctl(PR_CAPBSET_READ, CAP_SYS_ADMIN) == 1;
}

void run_plugin() {
    int one = 1;
    char name[] = "confined";
    char* words[] = {name, nullptr};
    const QApplication application(one, words);
    run_settings settings;
    settings.root = QDir::currentPath() + "/source/"_q;
    settings.result = QDir::currentPath() + "/output/result"_q;
    settings.tables = all_tables();
    settings.users = QStringList{"anna"_q, "bernd"_q};
    loaded_plugin plugin;
    plugin.set_up(settings);
    plugin.extract();
    plugin->pub_remove_temporary_asthetics();
}

QByteArray folder_of_attempt(const QByteArray& base, int number) {
    return base + '/' + QByteArray::number(number);
}

// A line with the errno value of each attempt, in a folder of its own.
void try_everything(const QByteArray& base) {
    for (int number = 0; number < all_attempts().size(); ++number) {
        const int error = ::chdir(folder_of_attempt(base, number).constData()) == 0 ? all_attempts()[number].run() : -1;
        std::printf("%d\n", error);
        std::fflush(stdout);
    }
}

// words: what to try, which protections ("lf", "l", "f", ""), what to prepare.
int confined_main(const QStringList& words) {
    const QByteArray base = QFile::encodeName(QDir::currentPath());
    sandbox_plan plan;
    plan.readable = runtime_paths() + QVector<QByteArray>{base + "/source", PLUGIN_LIBRARY};
    plan.writable = {base + "/output"};
    for (int number = 0; words[0] == "attempts"_q && number < all_attempts().size(); ++number) {
        plan.readable.append(folder_of_attempt(base, number) + "/source");
        plan.writable.append(folder_of_attempt(base, number) + "/output");
    }
    plan.landlock = words[1].contains(QLatin1Char('l'));
    plan.syscall_filter = words[1].contains(QLatin1Char('f'));
    prepare(words[2], plan);
    const sandbox_state state = confine_process(plan);
    std::printf("%d %d %d %d %s\n", state.no_new_privs, int(state.landlock), state.landlock_abi,
                int(state.syscall_filter), state.note.toUtf8().constData());
    std::fflush(stdout);
    if (words[0] == "abort"_q) {
        std::abort();
    } else if (words[0] == "plugin"_q) {
        run_plugin();
    } else if (words[0] == "attempts"_q) {
        try_everything(base);
    }
    ::_exit(0); // past threads that still run
}

} // namespace

class test_sandbox : public QObject {
    Q_OBJECT

    struct outcome {
        sandbox_state state;
        QList<QByteArray> lines; // that follow the state
        QByteArray noise;        // on standard error
        bool has_ended = false;  // by itself
    };

    std::unique_ptr<QTemporaryDir> folder;

    QString in(const char* below) const { return folder->filePath(QString::fromUtf8(below)); }
    outcome run(const QString& what, const QString& protections, const QString& preparation = ""_q) const {
        QProcess process;
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("XDG_RUNTIME_DIR"_q, folder->path()); // Qt tells of it when there is none
        process.setProcessEnvironment(variables);
        process.setWorkingDirectory(folder->path());
        process.start(QCoreApplication::applicationFilePath(), {"--confined"_q, what, protections, preparation});
        process.waitForFinished(120000);
        outcome told;
        told.noise = process.readAllStandardError();
        told.lines = process.readAllStandardOutput().trimmed().split('\n');
        told.has_ended = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
        const QList<QByteArray> fields = told.lines.takeFirst().split(' ');
        told.state.no_new_privs = fields.value(0) == "1";
        told.state.landlock = protection(fields.value(1).toInt());
        told.state.landlock_abi = fields.value(2).toInt();
        told.state.syscall_filter = protection(fields.value(3).toInt());
        told.state.note = QString::fromUtf8(fields.mid(4).join(' '));
        return told;
    }
    QStringList all_rows() const {
        QStringList rows;
        for (const QString& table : all_tables()) {
            rows += dump_table(in("output/result/Artifacts_Result/Cortana/Cortana.sqlite"), table);
        }
        return rows;
    }

    // QSKIP without its variadic macro, which clang++ takes exception to.
    static void skip(const QString& why) { QTest::qSkip(qPrintable(why), __FILE__, __LINE__); }

    void make_folders(const QString& top) const {
        for (const char* const name : {"/source/folder", "/outside", "/output"}) {
            QVERIFY(QDir().mkpath(top + QLatin1String(name)));
        }
        for (const char* const name : {"/source/file", "/source/program", "/outside/secret"}) {
            QFile file(top + QLatin1String(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
        }
        const QByteArray native = QFile::encodeName(top);
        QCOMPARE(::chmod((native + "/source/program").constData(), 0700), 0);
        QCOMPARE(::symlink("../outside/secret", (native + "/source/out").constData()), 0);
    }
    static bool is_refused(const attempt& tried, const sandbox_state& state) {
        const bool by_landlock = tried.landlock > 0 && state.landlock_abi >= tried.landlock;
        return by_landlock || (tried.filter && state.syscall_filter == protection::active);
    }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        make_folders(folder->path());
    }

    void attempts_data() {
        QTest::addColumn<QString>("protections");
        for (const char* const protections : {"", "l", "f", "lf"}) {
            QTest::addRow("[%s]", protections) << QString::fromUtf8(protections);
        }
    }
    void attempts() {
        QFETCH(QString, protections);
        for (int number = 0; number < all_attempts().size(); ++number) {
            make_folders(in(QByteArray::number(number).constData()));
        }
        const outcome told = run("attempts"_q, protections);
        QVERIFY2(!told.state.has_failed(), qPrintable(told.state.note));
        QCOMPARE(told.state.syscall_filter == protection::active, protections.contains(QLatin1Char('f')));
        QVERIFY(told.has_ended);
        QCOMPARE(told.lines.size(), all_attempts().size());
        QStringList wrong;
        for (int number = 0; number < all_attempts().size(); ++number) {
            const attempt& tried = all_attempts()[number];
            const int error = told.lines[number].toInt();
            const bool is_as_due = is_refused(tried, told.state)
                                       ? error == EPERM || error == EACCES || error == EXDEV
                                       : error == 0 || (error > 0 && tried.needs_root && !is_privileged());
            if (!is_as_due) {
                wrong << "%1: %2"_q.arg(QLatin1String(tried.name), QLatin1String(strerror(error)));
            }
        }
        QCOMPARE(wrong, QStringList());
    }

    void abort_ends_with_its_signal() { QVERIFY(!run("abort"_q, "lf"_q).has_ended); }

    void what_took_hold_data() {
        QTest::addColumn<protection>("landlock");
        QTest::addColumn<protection>("syscall_filter");
        QTest::addColumn<bool>("no_new_privs");
        QTest::addColumn<QString>("note");
        const protection active = protection::active;
        const protection failed = protection::failed;
        const protection unavailable = protection::unavailable;
        QTest::newRow("a thread") << failed << failed << false << "other threads"_q;
        QTest::newRow("a folder that is not there") << failed << active << true << "none: "_q;
        QTest::newRow("no Landlock") << unavailable << active << true << "has no Landlock"_q;
        QTest::newRow("Landlock switched off") << unavailable << active << true << "switched off"_q;
        QTest::newRow("Landlock that fails") << failed << active << true << "Landlock could not"_q;
        QTest::newRow("no filters") << active << unavailable << true << "no filter"_q;
        QTest::newRow("a filter that fails") << active << failed << true << "filter of system calls could not"_q;
    }
    void what_took_hold() {
        QFETCH(QString, note);
        const QString row = QString::fromUtf8(QTest::currentDataTag());
        const sandbox_state usual = run(""_q, "lf"_q).state;
        if (usual.landlock != protection::active) {
            return skip(usual.note);
        }
        const sandbox_state state = run(""_q, "lf"_q, row).state;
        QTEST(state.landlock, "landlock");
        QTEST(state.syscall_filter, "syscall_filter");
        QTEST(state.no_new_privs, "no_new_privs");
        QVERIFY2(state.note.contains(note), qPrintable(state.note));
    }

    // Everything at once: Qt starts, the library is loaded, libesedb and hivex read, SQLite writes.
    void plugin_finds_the_same_rows() {
        QVERIFY(write_sample_source(in("source")));
        const outcome free_run = run("plugin"_q, ""_q);
        QVERIFY(free_run.has_ended);
        const QStringList unconfined = all_rows();
        QVERIFY(QDir(in("output/result")).removeRecursively());
        const outcome confined_run = run("plugin"_q, "lf"_q);
        QVERIFY(confined_run.has_ended);
        for (const QByteArray& line :
             confined_run.noise.split('\n')) { // some systems' font settings are a noise of their own
            QVERIFY2(free_run.noise.contains(line), line.constData());
        }
        QVERIFY(unconfined.size() > all_tables().size());
        QCOMPARE(all_rows(), unconfined);
    }
};

int main(int argc, char** argv) {
    if (argc == 5 && QByteArray(argv[1]) == "--confined") {
        return confined_main({QString::fromUtf8(argv[2]), QString::fromUtf8(argv[3]), QString::fromUtf8(argv[4])});
    }
    const QCoreApplication application(argc, argv);
    test_sandbox test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_sandbox.moc"
