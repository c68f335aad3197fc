// SPDX-License-Identifier: MIT
// Profiles differ in their names only, which rows are cleared of, so all of them are compared with one clean run.
#include "fuzz/mutated_runs.h"

#include "samples/ese_checksum.h"
#include "samples/sample_source.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <cstring>
#include <filesystem>

namespace {

constexpr const char* sound_name = "sound0000";

int below(random_source& random, int bound) {
    return static_cast<int>(random() % static_cast<unsigned>(bound));
}

int used_byte(const QByteArray& file, random_source& random) {
    int at = below(random, file.size());
    while (file.at(at) == 0) {
        at = (at + 1) % file.size();
    }
    return at;
}

void mend_page(QByteArray& file, int page_size, int page) {
    std::string bytes(file.constData() + page * page_size, static_cast<std::size_t>(page_size));
    ese_set_page_checksums(bytes, static_cast<std::uint32_t>(page - 1));
    file.replace(page * page_size, page_size, bytes.data(), page_size);
}

// Of the bytes that are in use: header, tags and entries are hit as often as they are large.
void change_and_mend(QByteArray& file, int page_size, random_source& random) {
    int at = used_byte(file, random);
    while (at < 2 * page_size || at % page_size < 16) {
        at = used_byte(file, random);
    }
    file[at] = static_cast<char>(random());
    if (file.startsWith("regf")) {
        return;
    }
    mend_page(file, page_size, at / page_size);
}

const mutation mutations[] = {
    {"changed byte, mended", true, change_and_mend},
    {"one bit in use", false,
     [](QByteArray& file, int, random_source& random) {
         const int at = used_byte(file, random);
         file[at] = static_cast<char>(file.at(at) ^ (1 << below(random, 8)));
     }},
    {"16 random bytes", false,
     [](QByteArray& file, int, random_source& random) {
         const int at = qMin(used_byte(file, random), file.size() - 16);
         for (int i = 0; i < 16; ++i) {
             file[at + i] = static_cast<char>(random());
         }
     }},
    {"page zeroed", false,
     [](QByteArray& file, int page_size, random_source& random) {
         std::memset(file.data() + used_byte(file, random) / page_size * page_size, 0,
                     static_cast<std::size_t>(page_size));
     }},
    {"page over another", false,
     [](QByteArray& file, int page_size, random_source& random) {
         const QByteArray page = file.mid(used_byte(file, random) / page_size * page_size, page_size);
         file.replace(used_byte(file, random) / page_size * page_size, page_size, page);
     }},
    {"cut off", false, [](QByteArray& file, int, random_source& random) { file.truncate(below(random, file.size())); }},
};

const mutated_file mutated_files[] = {
    {"CortanaCoreDb.dat",
     "AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/ESEDatabase_CortanaCoreInstance/"
     "CortanaCoreDb.dat",
     32768, true},
    {"WebCacheV01.dat", "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", 32768, true},
    {"NTUSER.DAT", "NTUSER.DAT", 4096, false},
};

struct mutated_profile {
    QString name;
    mutation_counts* counts;
    unsigned seed;
};

QByteArray content_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put_content(const QString& path, const QByteArray& content) {
    QFile::remove(path); // it is linked to the sample's
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

void link_profile(const QString& from, const QString& to) {
    QDir().mkpath(QFileInfo(to).path());
    std::filesystem::copy(QFile::encodeName(from).constData(), QFile::encodeName(to).constData(),
                          std::filesystem::copy_options::recursive | std::filesystem::copy_options::create_hard_links);
}

struct run_outcome {
    bool died = true;
    QJsonObject summary;
    QHash<QString, QStringList> rows;
};

run_outcome run_program(const QString& program, const QString& source, const QString& result) {
    run_outcome outcome;
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(program, {QStringLiteral("extract"), QStringLiteral("--json"), QStringLiteral("--jobs"),
                            QStringLiteral("2"), source, result});
    constexpr int hung = 600000;
    const bool ended = process.waitForFinished(hung) && process.exitStatus() == QProcess::NormalExit;
    outcome.died = !ended || (process.exitCode() != 0 && process.exitCode() != 3);
    outcome.summary = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    outcome.rows = rows_by_profile(result + QStringLiteral("/Artifacts_Result/Cortana/Cortana.sqlite"));
    return outcome;
}

class mutated_run {
public:
    mutated_run(const QString& cortana, const QString& place) : program(cortana), folder(place) {
        const QString root = folder + QStringLiteral("/sample/");
        if (!write_sample_source(root)) {
            qFatal("cannot write the sample");
        }
        sample = root + QStringLiteral("Users/anna");
        clean = run({}).rows.value(QLatin1String(sound_name));
        if (clean.isEmpty()) {
            qFatal("the clean run gives no rows");
        }
        clear();
    }

    void take(const std::vector<mutated_profile>& profiles, mutation_result& result) {
        const run_outcome outcome = run(profiles);
        ++result.runs;
        result.died += outcome.died ? 1 : 0;
        result.wrong_sound += outcome.rows.value(QLatin1String(sound_name)) == clean ? 0 : 1;
        for (const mutated_profile& one : profiles) {
            judge(one, outcome, result);
        }
        clear();
    }

private:
    QString profile_folder(const QString& name) const { return folder + QStringLiteral("/source/Users/") + name; }

    run_outcome run(const std::vector<mutated_profile>& profiles) const {
        link_profile(sample, profile_folder(QLatin1String(sound_name)));
        for (const mutated_profile& one : profiles) {
            link_profile(sample, profile_folder(one.name));
            const mutated_file& kind = *one.counts->file;
            const QString path = profile_folder(one.name) + QLatin1Char('/') + QLatin1String(kind.below);
            QByteArray file = content_of(path);
            random_source random(one.seed);
            one.counts->how->apply(file, kind.page_size, random);
            put_content(path, file);
        }
        return run_program(program, folder + QStringLiteral("/source"), folder + QStringLiteral("/result"));
    }

    void clear() const {
        QDir(folder + QStringLiteral("/source")).removeRecursively();
        QDir(folder + QStringLiteral("/result")).removeRecursively();
    }

    void judge(const mutated_profile& one, const run_outcome& outcome, mutation_result& result) const {
        mutation_counts& counts = *one.counts;
        bool told = false;
        const QString path = QStringLiteral("/Users/") + one.name + QLatin1Char('/');
        for (const QJsonValue& problem : outcome.summary[QStringLiteral("problems")].toArray()) {
            told = told || problem.toObject()[QStringLiteral("path")].toString().contains(path);
        }
        for (const QJsonValue& value : outcome.summary[QStringLiteral("losses")].toArray()) {
            const QJsonObject loss = value.toObject();
            if (loss[QStringLiteral("profile")].toString() == one.name) {
                told = true;
                const bool killed = loss[QStringLiteral("reason")].toString().startsWith(QLatin1String("killed by"));
                ++(killed ? counts.lost : counts.over_limits);
            }
        }
        const bool same = outcome.rows.value(one.name) == clean;
        const bool tells = counts.file->has_sums && !counts.how->mends;
        ++counts.profiles;
        ++(same    ? (told ? counts.same_told : counts.same_untold)
           : told  ? counts.other_told
           : tells ? counts.other_untold
                   : counts.other_unseen);
        if (!same && !told) {
            keep(one, tells, result);
        }
    }

    void keep(const mutated_profile& one, bool tells, mutation_result& result) const {
        const QString kept = QStringLiteral("%1, %2, seed %3%4")
                                 .arg(QLatin1String(one.counts->file->name), QLatin1String(one.counts->how->name))
                                 .arg(one.seed)
                                 .arg(tells ? QStringLiteral(": UNTOLD") : QString());
        result.suspicious << kept;
        QDir().mkpath(folder + QStringLiteral("/kept"));
        QFile::copy(profile_folder(one.name) + QLatin1Char('/') + QLatin1String(one.counts->file->below),
                    folder + QStringLiteral("/kept/") + kept);
    }

    QString program;
    QString folder;
    QString sample;
    QStringList clean;
};

} // namespace

QHash<QString, QStringList> rows_by_profile(const QString& database) {
    QHash<QString, QStringList> rows;
    if (!QFile::exists(database)) { // opening would make it
        return rows;
    }
    {
        QSqlDatabase opened = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("mutated_runs"));
        opened.setDatabaseName(database);
        opened.open();
        const QStringList tables = opened.tables();
        for (const QString& table : tables) {
            QSqlQuery query(QStringLiteral("select * from ") + table, opened);
            while (query.next()) {
                const QSqlRecord record = query.record();
                const QString name = record.value(QStringLiteral("system_user")).toString();
                QString text = table;
                for (int i = 0; i < record.count(); ++i) {
                    text += record.fieldName(i) == QLatin1String("INT") ? QString()
                                                                        : QLatin1Char('|') + record.value(i).toString();
                }
                rows[name].append(text.replace(name, QStringLiteral("X")));
            }
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("mutated_runs"));
    return rows;
}

mutation_result run_mutated_sources(const QString& program, const QString& folder, int rounds, int mutated_a_source) {
    mutation_result result;
    for (const mutated_file& file : mutated_files) {
        for (const mutation& how : mutations) {
            mutation_counts counts;
            counts.file = &file;
            counts.how = &how;
            result.counts.push_back(counts);
        }
    }
    mutated_run runs(program, folder);
    std::vector<mutated_profile> waiting;
    for (int round = 0; round < rounds; ++round) {
        for (mutation_counts& counts : result.counts) {
            const auto number = static_cast<int>(waiting.size()) + 1;
            waiting.push_back({QStringLiteral("other%1").arg(number, 4, 10, QLatin1Char('0')), &counts,
                               static_cast<unsigned>(round)});
            if (static_cast<int>(waiting.size()) == mutated_a_source) {
                runs.take(waiting, result);
                waiting.clear();
            }
        }
    }
    if (!waiting.empty()) {
        runs.take(waiting, result);
    }
    return result;
}
