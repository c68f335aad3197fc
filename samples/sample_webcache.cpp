// SPDX-License-Identifier: MIT
// The sample's WebCacheV01.dat: containers of Cortana's package and of others, side by side as Windows keeps them, with
// and without the files that their entries name.
#include "samples/cortana_core_schema.h"
#include "samples/sample_files.h"
#include "samples/sample_source.h"
#include "samples/webcache_schema.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

constexpr std::int64_t hour = 3600;
constexpr std::int64_t day = 24 * hour;
constexpr std::int64_t first_visit = 1556791200; // 2019-05-02 10:00:00 UTC

struct sample_entry {
    const char* filename;
    std::string url;
    int secure_directory;
    bool is_on_disk;
};

struct sample_container {
    const char* name;
    const char* directory; // below the profile, Windows spelling
    const char* secure_directories;
    std::vector<sample_entry> entries;
};

// Longer than a record may be, so it is kept as a long value.
std::string long_search_url() {
    std::string url = "https://www.bing.com/search?q=m%C3%BCnchen&form=WNSGPH";
    for (int part = 1; part <= 400; ++part) {
        url += "&experiment" + std::to_string(part) + "=on";
    }
    return url;
}

const std::vector<sample_container>& sample_containers() {
    static const std::vector<sample_container> containers{
        {"Content",
         R"(AppData\Local\Microsoft\Windows\INetCache\IE\)",
         "7QK2M9XAD0PZ3WUE",
         {{"favicon[1].ico", "https://www.example.org/favicon.ico", 1, true}}},
        {"Content",
         R"(AppData\Local\Packages\Microsoft.Windows.Cortana_cw5n1h2txyewy\AC\INetCache\)",
         "T1A9XQ0BH7LMWE42ZP5C8RKD0V6NUJ3S",
         {{"init[1].htm", "https://www.bing.com/AS/API/WindowsCortanaPane/V2/Init", 1, true},
          {"suggestions[1].json", "https://www.bing.com/AS/API/WindowsCortanaPane/V2/Suggestions?qry=wetter", 2, true},
          {"weather[1].png", "https://www.bing.com/th?id=weather", 3, false},
          {"search[1].htm", long_search_url(), 4, true},
          {"container.dat", "https://www.bing.com/", 0, true}}},
        {"Cookies",
         R"(AppData\Local\Packages\Microsoft.Windows.Cortana_cw5n1h2txyewy\AC\INetCookies\)",
         "",
         {{"4XN0A7QD.cookie", "Cookie:{user}@bing.com/", 0, true},
          {"9ZK3M1WE.cookie", "Cookie:{user}@www.bing.com/", 0, false},
          {"deprecated.cookie", "@login.live.com/", 0, false}}},
        {"DOMStore",
         R"(AppData\Local\Packages\Microsoft.Windows.Cortana_cw5n1h2txyewy\AC\Microsoft\Internet Explorer\DOMStore\)",
         "QW4E7R2TYU9I0O1P",
         {{"www.bing[1].xml", "DOMStore:https://www.bing.com", 1, true},
          {"login.live[1].xml", "DOMStore:https://login.live.com", 2, false}}},
        {"History",
         R"(AppData\Local\Packages\Microsoft.Windows.Cortana_cw5n1h2txyewy\AC\History\)",
         "",
         {{"", "Visited: {user}@https://www.bing.com/search?q=wetter", 0, false}}},
        {"Cookies",
         R"(AppData\Local\Packages\Microsoft.MicrosoftEdge_8wekyb3d8bbwe\AC\MicrosoftEdge\Cookies\)",
         "",
         {{"1B2C3D4E.cookie", "Cookie:{user}@example.org/", 0, true}}},
        // The system spells the package in lower case here; the files lie below its proper name.
        {"Content",
         R"(AppData\Local\Packages\microsoft.windows.cortana_cw5n1h2txyewy\AC\AppCache\)",
         "L0ST5F1L",
         {{"core[1].js", "https://www.bing.com/rs/core.js", 1, true},
          {"core[1].css", "https://www.bing.com/rs/core.css", 1, false}}},
        {"DOMStore",
         R"(AppData\Local\Packages\Microsoft.MicrosoftEdge_8wekyb3d8bbwe\AC\MicrosoftEdge\DOMStore\)",
         "M5N8B3V6",
         {{"example[1].xml", "DOMStore:https://example.org", 1, true}}},
    };
    return containers;
}

std::string content_of(const sample_entry& entry) {
    return std::string("Sample of ") + entry.filename + "\n";
}

webcache_entry entry_of(const sample_entry& sample, const std::string& user, int profile, int number) {
    const std::int64_t visited = first_visit + profile * day + number * hour;
    webcache_entry entry;
    entry.filename = sample.filename;
    std::string url = sample.url;
    const std::string place = "{user}";
    const std::size_t at = url.find(place);
    entry.url = at == std::string::npos ? url : url.replace(at, place.size(), user);
    entry.secure_directory = sample.secure_directory;
    entry.file_size = content_of(sample).size();
    entry.access_count = number + 1;
    entry.sync_time = filetime_of(visited);
    entry.creation_time = filetime_of(visited);
    entry.expiry_time = number % 3 == 2 ? 0 : filetime_of(visited + 30 * day);
    entry.modified_time = filetime_of(visited - 7 * day);
    entry.accessed_time = filetime_of(visited + hour / 2);
    return entry;
}

// Entries without a secure sub-directory name a file in the container's directory itself.
bool write_file_of(const QString& profile_folder, const sample_container& container, const sample_entry& entry) {
    QString directory = QLatin1String(container.directory);
    directory.replace(QLatin1Char('\\'), QLatin1Char('/'));
    directory.replace(QLatin1String("microsoft.windows.cortana"), QLatin1String("Microsoft.Windows.Cortana"));
    if (entry.secure_directory > 0) {
        directory += QLatin1String(container.secure_directories + std::ptrdiff_t{8} * (entry.secure_directory - 1), 8) +
                     QLatin1Char('/');
    }
    return write_sample_file(profile_folder + directory + QLatin1String(entry.filename),
                             QByteArray::fromStdString(content_of(entry)));
}

void write_database(const QString& path, const sample_profile& profile) {
    const std::string user = profile.user.toStdString();
    ese_writer file(QFile::encodeName(path).constData());
    std::vector<webcache_container> listed;
    for (const sample_container& container : sample_containers()) {
        listed.push_back({static_cast<std::int64_t>(listed.size() + 1), container.name,
                          "C:\\Users\\" + user + "\\" + container.directory, container.secure_directories});
    }
    write_webcache_containers(file, listed);
    std::int64_t container_id = 0;
    for (const sample_container& container : sample_containers()) {
        std::vector<webcache_entry> entries;
        for (const sample_entry& sample : container.entries) {
            entries.push_back(entry_of(sample, user, profile.number, static_cast<int>(entries.size())));
        }
        write_webcache_entries(file, ++container_id, entries);
    }
    file.close();
}

} // namespace

bool write_sample_webcache(const sample_profile& profile) {
    const QString folder = profile.folder() + QStringLiteral("AppData/Local/Microsoft/Windows/WebCache/");
    const QString path = folder + QStringLiteral("WebCacheV01.dat");
    bool files_written = true;
    for (const sample_container& container : sample_containers()) {
        for (const sample_entry& entry : container.entries) {
            files_written = (!entry.is_on_disk || write_file_of(profile.folder(), container, entry)) && files_written;
        }
    }
    try {
        if (!files_written || !QDir().mkpath(folder)) {
            throw ese_error("cannot write the files beside it");
        }
        write_database(path, profile);
        return true;
    } catch (const ese_error& error) {
        std::fprintf(stderr, "%s: %s\n", QFile::encodeName(path).constData(), error.what());
        return false;
    }
}
