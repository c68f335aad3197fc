// SPDX-License-Identifier: MIT
// Confinement, seen from within: the program starts itself, and that process confines itself and tries something. Each
// protection is tried alone, both together, and none, where everything has to succeed.
#include "samples/sample_source.h"
#include "host/run/runtime_paths.h"
#include "host/run/sandbox.h"
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

int run_plugin() {
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
    return 0;
}

int run_named(const QString& name) {
    if (name == "abort"_q) {
        std::abort();
    }
    if (name == "plugin"_q) {
        return run_plugin();
    }
    for (const attempt& each : all_attempts()) {
        if (name == QString::fromUtf8(each.name)) {
            return each.run();
        }
    }
    return name.isEmpty() ? 0 : ENOTSUP;
}

// words: what to try, which protections ("lf", "l", "f", ""), what to prepare.
int confined_main(const QStringList& words) {
    const QByteArray base = QFile::encodeName(QDir::currentPath());
    sandbox_plan plan;
    plan.readable = runtime_paths() + QVector<QByteArray>{base + "/source", PLUGIN_LIBRARY};
    plan.writable = {base + "/output"};
    plan.landlock = words[1].contains(QLatin1Char('l'));
    plan.syscall_filter = words[1].contains(QLatin1Char('f'));
    prepare(words[2], plan);
    const sandbox_state state = confine_process(plan);
    std::printf("%d %d %d %d %d %s\n", run_named(words[0]), state.no_new_privs, int(state.landlock), state.landlock_abi,
                int(state.syscall_filter), state.note.toUtf8().constData());
    std::fflush(stdout);
    ::_exit(0); // past threads that still run
}

} // namespace

class test_sandbox : public QObject {
    Q_OBJECT

    struct outcome {
        int error = -1;
        sandbox_state state;
        QByteArray noise; // on standard error
    };

    std::unique_ptr<QTemporaryDir> folder;

    QString in(const char* below) const { return folder->filePath(QString::fromUtf8(below)); }
    void start(QProcess& process, const QStringList& words) const {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("XDG_RUNTIME_DIR"_q, folder->path()); // Qt tells of it when there is none
        process.setProcessEnvironment(variables);
        process.setWorkingDirectory(folder->path());
        process.start(QCoreApplication::applicationFilePath(), QStringList("--confined"_q) + words);
        process.waitForFinished(120000);
    }
    outcome run(const QString& what, const QString& protections, const QString& preparation = ""_q) const {
        QProcess process;
        start(process, {what, protections, preparation});
        outcome told;
        told.noise = process.readAllStandardError();
        const QList<QByteArray> fields = process.readAllStandardOutput().trimmed().split(' ');
        if (process.exitStatus() != QProcess::NormalExit || fields.size() < 5) {
            qWarning("%s: code %d, %s", qPrintable(what), process.exitCode(), told.noise.constData());
            return told;
        }
        told.error = fields[0].toInt();
        told.state.no_new_privs = fields[1] == "1";
        told.state.landlock = protection(fields[2].toInt());
        told.state.landlock_abi = fields[3].toInt();
        told.state.syscall_filter = protection(fields[4].toInt());
        told.state.note = QString::fromUtf8(fields.mid(5).join(' '));
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

private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        for (const char* const name : {"source/folder", "outside", "output"}) {
            QVERIFY(QDir().mkpath(in(name)));
        }
        for (const char* const name : {"source/file", "source/program", "outside/secret"}) {
            QFile file(in(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
        }
        QCOMPARE(::chmod(QFile::encodeName(in("source/program")).constData(), 0700), 0);
        QCOMPARE(::symlink("../outside/secret", QFile::encodeName(in("source/out")).constData()), 0);
    }

    void attempts_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("protections");
        for (int number = 0; number < all_attempts().size(); ++number) {
            for (const char* const protections : {"", "l", "f", "lf"}) {
                QTest::addRow("%s [%s]", all_attempts()[number].name, protections)
                    << number << QString::fromUtf8(protections);
            }
        }
    }
    void attempts() {
        QFETCH(int, number);
        QFETCH(QString, protections);
        const attempt& tried = all_attempts()[number];
        const outcome told = run(QString::fromUtf8(tried.name), protections);
        const sandbox_state& state = told.state;
        QVERIFY2(!state.has_failed(), qPrintable(state.note));
        const bool is_filtered = protections.contains(QLatin1Char('f'));
        QCOMPARE(state.syscall_filter == protection::active, is_filtered);
        const bool by_landlock = tried.landlock > 0 && state.landlock_abi >= tried.landlock;
        if (by_landlock || (tried.filter && is_filtered)) {
            QVERIFY2(told.error == EPERM || told.error == EACCES || told.error == EXDEV, strerror(told.error));
        } else if (tried.needs_root && told.error != 0 && !is_privileged()) {
            return skip("only root could do that unconfined"_q);
        } else {
            QVERIFY2(told.error == 0, strerror(told.error));
        }
        if (protections.contains(QLatin1Char('l')) && state.landlock_abi < tried.landlock) {
            return skip("Landlock does not keep it from that here; "_q + state.note);
        }
    }

    void abort_ends_with_its_signal() {
        QProcess process;
        start(process, {"abort"_q, "lf"_q, ""_q});
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        QCOMPARE(process.exitCode(), SIGABRT);
    }

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
        QCOMPARE(free_run.error, 0);
        const QStringList unconfined = all_rows();
        QVERIFY(QDir(in("output/result")).removeRecursively());
        const outcome confined_run = run("plugin"_q, "lf"_q);
        QCOMPARE(confined_run.error, 0);
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
