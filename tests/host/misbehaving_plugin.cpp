// SPDX-License-Identifier: MIT
// A library in the plugin's place: the real plugin, except that a profile's name says what goes wrong before which
// table is filled, as in "dies_before_cookies".
#include "contract/host_interface.h"
#include "contract/table_names.h"

#include <QFile>
#include <QLibrary>

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

// Ends the process in a way that no limit does, so that the test sees that something forbidden was possible.
[[noreturn]] void tell_leak(const char* what) {
    std::fprintf(stderr, "LEAK: %s\n", what);
    ::_exit(99);
}

// As a bad pointer does, also where a sanitizer would make an exit of it.
void die() {
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

[[noreturn]] void hang() {
    while (true) {
        ::poll(nullptr, 0, -1); // a confined process may not pause()
    }
}

[[noreturn]] void eat_memory() {
    constexpr size_t piece = 16 * 1024 * 1024;
    std::vector<std::vector<char>> eaten;
    while (true) {
        eaten.emplace_back(piece, 'x');
    }
}

[[noreturn]] void fill_disk(const QString& database) {
    QFile journal(database + QStringLiteral("-journal"));
    journal.open(QIODevice::WriteOnly);
    while (journal.write(QByteArray(1024 * 1024, 'x')) > 0) {
    }
    hang();
}

void reach_out(const QString& root) {
    const QByteArray in_source = QFile::encodeName(root) + "planted";
    if (::open(in_source.constData(), O_WRONLY | O_CREAT, 0600) >= 0) {
        tell_leak("wrote into the source");
    }
    if (::open(std::getenv("SECRET_FILE"), O_RDONLY) >= 0) {
        tell_leak("read outside of the source");
    }
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    ::inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
    const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
    if (connection >= 0 &&
        (::connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 || errno == ECONNREFUSED)) {
        tell_leak("connected");
    }
    if (::execl("/bin/true", "true", nullptr) == 0 || errno == ENOENT) {
        tell_leak("ran a program");
    }
    if (::kill(::getppid(), SIGCONT) == 0) {
        tell_leak("reached the supervisor");
    }
}

} // namespace

class misbehaving_plugin : public host_interface {
    Q_OBJECT

public:
    misbehaving_plugin() : host_interface(nullptr) {
        QLibrary library(QStringLiteral(REAL_PLUGIN));
        const auto create = reinterpret_cast<create_object_function>(library.resolve(create_object_symbol));
        real = static_cast<host_interface*>(create());
        real->setParent(this);
        connect(real, CORTANA_RECORDS_SIGNAL, this, SLOT(rows_told(qint64)));
        connect(real, CORTANA_TABLES_SIGNAL, this, SLOT(step_ended(int)));
    }

    void pub_set_engine_type(int type) override { real->pub_set_engine_type(type); }
    QString pub_get_artifact_name() override { return real->pub_get_artifact_name(); }
    void pub_set_essentials() override { real->pub_set_essentials(); }
    void pub_set_source_count(int count) override { real->pub_set_source_count(count); }
    void pub_set_ios_uid_backup_pointer(ios_uid_backup_parser*) override {}
    void pub_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info) override {}
    void pub_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info info) override {
        real->pub_set_general_info(info);
    }
    void pub_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info info) override {
        root = info.fs_extraction_source_path;
        profile = info.system_account_QList.value(0).system_user;
        real->pub_set_source_info(info);
    }
    void pub_set_essential_for_vantor_desk_extraction(QStringList wanted, QStringList ignored) override {
        tables = wanted;
        real->pub_set_essential_for_vantor_desk_extraction(wanted, ignored);
    }
    void pub_set_result_directory(QString directory) override {
        log = directory + QStringLiteral("/cortana_debug.log");
        database = directory + QStringLiteral("/Artifacts_Result/Cortana/Cortana.sqlite");
        real->pub_set_result_directory(directory);
    }
    void pub_create_db_tables() override { real->pub_create_db_tables(); }
    void pub_set_clear_db(bool clear) override { real->pub_set_clear_db(clear); }
    void pub_cancel_extraction() override {
        cancelled = true;
        real->pub_cancel_extraction();
    }
    void pub_find_source_file() override {
        if (profile == QLatin1String("waits_for_cancel")) {
            wait_for_cancel();
        }
        real->pub_find_source_file();
    }
    void pub_set_extended_attributes_list(QStringList) override {}
    void pub_extract_artifacts() override {
        misbehave_before(tables.value(0));
        real->pub_extract_artifacts();
    }
    void pub_generate_chat_html_pages() override {}
    void pub_remove_temporary_asthetics() override {
        real->pub_remove_temporary_asthetics();
        if (profile == QLatin1String("loses_its_log")) {
            QFile(log).open(QIODevice::WriteOnly | QIODevice::Truncate);
        }
    }

Q_SIGNALS:
    void signal_extracted_records_of_plugin_overall(qint64 records);
    void signal_tab_processed_of_plugin_overall(int tab_count);

private Q_SLOTS:
    void rows_told(qint64 rows) {
        if (rows > 0 && profile == QLatin1String("waits_in_a_step")) {
            wait_for_cancel();
        }
        Q_EMIT signal_extracted_records_of_plugin_overall(profile == QLatin1String("boasts") ? rows + 1 : rows);
    }
    void step_ended(int steps) {
        Q_EMIT signal_tab_processed_of_plugin_overall(steps);
        misbehave_before(tables.value(steps));
    }

private:
    void misbehave_before(const QString& table) {
        const auto is = [&](const char* deed) {
            return !table.isEmpty() && profile == QLatin1String(deed) + QStringLiteral("_before_") + table;
        };
        if (is("dies")) {
            write_log("half a line");
            die();
        } else if (is("complains")) {
            write_log("[2024-Mar-05T09-07-41][VANTOR_DESK][Artifacts Extraction][a::b]:-- it FAILED\n");
        } else if (is("hangs")) {
            hang();
        } else if (is("eats")) {
            eat_memory();
        } else if (is("fills")) {
            fill_disk(database);
        } else if (is("reaches_out")) {
            reach_out(root);
        } else if (is("exits")) {
            ::_exit(0);
        }
    }

    void wait_for_cancel() const {
        std::fputs("waiting\n", stderr);
        while (!cancelled) {
            ::sched_yield();
        }
    }

    void write_log(const char* text) const {
        QFile file(log);
        file.open(QIODevice::Append);
        file.write(text);
    }

    host_interface* real; // a child of this object
    QString root;
    QString profile;
    QString database;
    QString log;
    QStringList tables;
    volatile bool cancelled = false;
};

extern "C" __attribute__((visibility("default"))) void* create_object() {
    return static_cast<host_interface*>(new misbehaving_plugin);
}

#include "misbehaving_plugin.moc"
