// SPDX-License-Identifier: MIT
// damaged_files [COUNT]: damages the sample's databases and hives in COUNT random ways of each kind, reads each in a
// process of its own through the plugin's readers, and prints what became of them. The seeds are fixed.
#include "ese/cache.h"
#include "ese/timetriggers.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "samples/sample_source.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned seconds_allowed = 20;
constexpr rlim_t bytes_allowed = rlim_t{4} << 30;

enum outcome : int { read_with_rows = 10, read_without_rows = 11, refused = 12 };

int outcome_of(bool opened, qint64 rows) {
    if (!opened) {
        return refused;
    }
    return rows > 0 ? read_with_rows : read_without_rows;
}

int read_core_database(const QString& path) {
    timetriggers reader;
    const int opened = reader.start_parsing(path, QStringLiteral("Triggers"));
    reader.start_parsing(path, QStringLiteral("Reminders"), QStringLiteral("key"), QStringList());
    reader.start_parsing(path, QStringLiteral("TimeTriggers"), QStringLiteral("key"), 1);
    return outcome_of(opened == 0, reader.list_struct_data.size() + reader.list_remainder_data.size() +
                                       reader.list_time_triggers_data.size());
}

int read_webcache(const QString& path) {
    cache reader;
    const int opened = reader.start_parsing(path, QStringLiteral("Containers"));
    const auto containers = reader.list_container_data;
    for (const auto& container : containers) {
        reader.start_parsing(path, QStringLiteral("Container_") + container.container_id, container.directory,
                             container.secure_directories);
    }
    return outcome_of(opened == 0, containers.size() + reader.list_ano_data.size());
}

int read_hive(const QString& path) {
    const QString explorer = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\");
    text_search_registry recents;
    search_from_com extensions;
    const int opened = recents.start_registry_parse(path, explorer + QStringLiteral("RecentDocs"), false);
    extensions.start_registry_parse(path, explorer + QStringLiteral("FileExts"), false);
    return outcome_of(opened == 0, recents.record_list.size() + extensions.record_list.size());
}

using random_source = std::mt19937;

int below(random_source& random, int bound) {
    return static_cast<int>(random() % static_cast<unsigned>(bound));
}

struct damage {
    const char* name;
    void (*apply)(QByteArray& file, int page_size, random_source& random);
};

constexpr damage damages[] = {
    {"one bit",
     [](QByteArray& file, int, random_source& random) {
         const int at = below(random, file.size());
         file[at] = static_cast<char>(file.at(at) ^ (1 << below(random, 8)));
     }},
    {"one bit in use",
     [](QByteArray& file, int, random_source& random) {
         int at = below(random, file.size());
         while (file.at(at) == 0) {
             at = (at + 1) % file.size();
         }
         file[at] = static_cast<char>(file.at(at) ^ (1 << below(random, 8)));
     }},
    {"16 random bytes",
     [](QByteArray& file, int, random_source& random) {
         const int at = below(random, file.size() - 16);
         for (int i = 0; i < 16; ++i) {
             file[at + i] = static_cast<char>(random());
         }
     }},
    {"page zeroed",
     [](QByteArray& file, int page_size, random_source& random) {
         std::memset(file.data() + below(random, file.size() / page_size) * page_size, 0,
                     static_cast<size_t>(page_size));
     }},
    {"page over another",
     [](QByteArray& file, int page_size, random_source& random) {
         const int pages = file.size() / page_size;
         const QByteArray page = file.mid(below(random, pages) * page_size, page_size);
         file.replace(below(random, pages) * page_size, page_size, page);
     }},
    {"cut off", [](QByteArray& file, int, random_source& random) { file.truncate(below(random, file.size())); }},
};

struct kind_of_file {
    const char* name;
    const char* path; // below the profile
    int page_size;
    int (*read)(const QString& path);
};

constexpr kind_of_file kinds[] = {
    {"CortanaCoreDb.dat",
     "AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/ESEDatabase_CortanaCoreInstance/"
     "CortanaCoreDb.dat",
     32768, read_core_database},
    {"WebCacheV01.dat", "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", 32768, read_webcache},
    {"NTUSER.DAT", "NTUSER.DAT", 4096, read_hive},
};

// The outcome of reading path in a child, or minus the signal that ended it.
int read_in_child(const kind_of_file& kind, const QString& path) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit memory = {bytes_allowed, bytes_allowed};
        ::setrlimit(RLIMIT_AS, &memory);
        const rlimit no_core = {0, 0};
        ::setrlimit(RLIMIT_CORE, &no_core);
        ::alarm(seconds_allowed);
        ::_exit(kind.read(path));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

struct counts {
    int with_rows = 0, without_rows = 0, refusals = 0, too_slow = 0, died = 0;

    void add(int result) {
        switch (result) {
        case read_with_rows:
            ++with_rows;
            break;
        case read_without_rows:
            ++without_rows;
            break;
        case refused:
            ++refusals;
            break;
        case -SIGALRM:
            ++too_slow;
            break;
        default:
            ++died;
        }
    }
};

bool write_whole(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

counts try_damage(const kind_of_file& kind, const damage& how, const QByteArray& sound, const QString& path,
                  int count) {
    counts result;
    for (int seed = 0; seed < count; ++seed) {
        random_source random(static_cast<unsigned>(seed));
        QByteArray file = sound;
        how.apply(file, kind.page_size, random);
        if (!write_whole(path, file)) {
            std::perror("damaged_files");
            std::exit(1);
        }
        const int outcome = read_in_child(kind, path);
        result.add(outcome);
        if (outcome < 0) {
            write_whole(path + QStringLiteral(".%1.%2").arg(-outcome).arg(seed), file);
        }
    }
    return result;
}

} // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 200;
    QTemporaryDir folder;
    if (count < 1 || !folder.isValid() || !write_sample_source(folder.path())) {
        std::fputs("usage: damaged_files [COUNT], with a writable temporary folder\n", stderr);
        return 2;
    }
    std::printf("%-18s %-18s %9s %9s %9s %9s %9s\n", "file", "damage", "rows", "no rows", "refused", "too slow",
                "died");
    for (const kind_of_file& kind : kinds) {
        QFile sample(folder.filePath(QStringLiteral("Users/anna/") + QLatin1String(kind.path)));
        const QByteArray sound = sample.open(QIODevice::ReadOnly) ? sample.readAll() : QByteArray();
        for (const damage& how : damages) {
            const counts result = try_damage(kind, how, sound, folder.filePath(QStringLiteral("damaged")), count);
            std::printf("%-18s %-18s %9d %9d %9d %9d %9d\n", kind.name, how.name, result.with_rows, result.without_rows,
                        result.refusals, result.too_slow, result.died);
            std::fflush(stdout);
        }
    }
    return 0;
}
