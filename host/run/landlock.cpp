// SPDX-License-Identifier: MIT
// The kernel takes attributes that it does not know as long as they are zero, so one structure serves every version.
#include "host/run/landlock.h"

#include "source/native_names.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// What the headers of Debian 12 do not have yet.
constexpr quint64 truncate_file = 1U << 14;     // version 3
constexpr quint64 control_device = 1U << 15;    // version 5
constexpr quint64 bind_and_connect_tcp = 0x3;   // version 4
constexpr quint64 sockets_and_signals = 0x3;    // version 6: abstract sockets and signals of others
constexpr quint64 rights_of_version_1 = 0x1FFF; // LANDLOCK_ACCESS_FS_EXECUTE to LANDLOCK_ACCESS_FS_MAKE_SYM

struct ruleset_attributes {
    quint64 files;
    quint64 network;
    quint64 scopes;
};

constexpr quint64 reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr quint64 writing = reading | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                            LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                            LANDLOCK_ACCESS_FS_REFER | truncate_file;
constexpr quint64 rights_of_a_file = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | truncate_file;

ruleset_attributes everything_handled(int abi) {
    ruleset_attributes handled = {rights_of_version_1, 0, 0};
    handled.files |= abi >= 2 ? quint64{LANDLOCK_ACCESS_FS_REFER} : 0;
    handled.files |= abi >= 3 ? truncate_file : 0;
    handled.files |= abi >= 5 ? control_device : 0;
    handled.network = abi >= 4 ? bind_and_connect_tcp : 0;
    handled.scopes = abi >= 6 ? sockets_and_signals : 0;
    return handled;
}

class descriptor {
public:
    explicit descriptor(long opened) : handle(static_cast<int>(opened)) {}
    ~descriptor() {
        if (handle >= 0) {
            ::close(handle);
        }
    }
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;
    bool is_open() const { return handle >= 0; }
    int get() const { return handle; }

private:
    int handle;
};

// A set of rules in the making; trouble says what went wrong first.
class ruleset {
public:
    explicit ruleset(const ruleset_attributes& attributes)
        : handled(attributes.files), rules(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof(attributes), 0)) {
        if (!rules.is_open()) {
            trouble = error_words(errno);
        }
    }

    // As the process could not reach it unconfined either, what cannot be found needs no rule when may_miss.
    void allow(const QByteArray& path, quint64 rights, bool may_miss) {
        const descriptor opened(::open(path.constData(), O_PATH | O_CLOEXEC));
        struct stat status = {};
        if (!opened.is_open() || ::fstat(opened.get(), &status) != 0) {
            const bool is_missing = errno == ENOENT || errno == ENOTDIR || errno == EACCES;
            note(path, is_missing && may_miss);
            return;
        }
        landlock_path_beneath_attr rule = {};
        rule.allowed_access = rights & handled & (S_ISDIR(status.st_mode) ? ~quint64{0} : rights_of_a_file);
        rule.parent_fd = opened.get();
        note(path, ::syscall(SYS_landlock_add_rule, rules.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0);
    }

    QString enforce() {
        if (trouble.isNull() && ::syscall(SYS_landlock_restrict_self, rules.get(), 0) != 0) {
            trouble = error_words(errno);
        }
        return trouble;
    }

private:
    void note(const QByteArray& path, bool went_well) {
        const int error = errno;
        if (!went_well && trouble.isNull()) {
            trouble = shown_path(path) + QStringLiteral(": ") + error_words(error);
        }
    }

    quint64 handled;
    descriptor rules;
    QString trouble;
};

// Only asking for the version tells whether there is Landlock at all.
landlock_outcome ask_the_kernel() {
    landlock_outcome outcome;
    const long abi = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (abi > 0) {
        outcome.abi = static_cast<int>(abi);
    } else if (errno == ENOSYS) {
        outcome.note = QStringLiteral("the kernel has no Landlock");
    } else if (errno == EOPNOTSUPP) {
        outcome.note = QStringLiteral("Landlock is switched off in this kernel");
    } else {
        outcome.note = QStringLiteral("the system refuses Landlock: ") + error_words(errno);
    }
    return outcome;
}

} // namespace

landlock_outcome apply_landlock(const QVector<QByteArray>& readable, const QVector<QByteArray>& writable,
                                const QVector<QByteArray>& listable) {
    landlock_outcome outcome = ask_the_kernel();
    if (outcome.abi == 0) {
        return outcome;
    }
    ruleset rules(everything_handled(outcome.abi));
    for (const QByteArray& path : readable) {
        rules.allow(path, reading, true);
    }
    for (const QByteArray& path : listable) {
        rules.allow(path, LANDLOCK_ACCESS_FS_READ_DIR, true);
    }
    for (const QByteArray& path : writable) {
        rules.allow(path, writing, false);
    }
    rules.allow("/dev/null", writing, true);
    const QString trouble = rules.enforce();
    if (trouble.isNull()) {
        outcome.result = protection::active;
    } else {
        outcome = {protection::failed, 0, QStringLiteral("Landlock could not be applied: ") + trouble};
    }
    return outcome;
}
