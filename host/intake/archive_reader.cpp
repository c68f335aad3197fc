// SPDX-License-Identifier: MIT
// Only formats and filters that the library handles itself are asked for: others it would leave to programs.
#include "host/intake/archive_reader.h"

#include "host/intake/times.h"

namespace intake {

archive_reader::archive_reader(const quiet_file& file) : reader(archive_read_new()) {
    archive* const opened = reader.get();
    for (const auto support :
         {archive_read_support_format_zip, archive_read_support_format_7zip, archive_read_support_format_tar,
          archive_read_support_filter_gzip, archive_read_support_filter_bzip2, archive_read_support_filter_xz,
          archive_read_support_filter_lzma, archive_read_support_filter_zstd, archive_read_support_filter_lz4,
          archive_read_support_filter_compress}) {
        support(opened);
    }
    constexpr size_t block = 1 << 16;
    ::lseek(file.descriptor(), 0, SEEK_SET);
    if (archive_read_open_fd(opened, file.descriptor(), block) != ARCHIVE_OK) {
        note_problem();
    }
}

void archive_reader::note_problem() {
    const char* const words = archive_error_string(reader.get());
    trouble = words != nullptr ? QString::fromUtf8(words) : QStringLiteral("no reason given");
}

archive_entry* archive_reader::next() {
    if (!trouble.isEmpty()) {
        return nullptr;
    }
    const int result = archive_read_next_header(reader.get(), &entry);
    if (result == ARCHIVE_OK || result == ARCHIVE_WARN) {
        return entry;
    }
    if (result != ARCHIVE_EOF) {
        note_problem();
    }
    return nullptr;
}

qint64 archive_reader::read(char* to, qint64 count) {
    const la_ssize_t got = archive_read_data(reader.get(), to, static_cast<size_t>(count));
    if (got < 0) {
        note_problem();
        return -1;
    }
    return got;
}

bool archive_reader::knows_format() const {
    return archive_format(reader.get()) != 0;
}

bool archive_reader::is_tar() const {
    return (archive_format(reader.get()) & ARCHIVE_FORMAT_BASE_MASK) == ARCHIVE_FORMAT_TAR;
}

bool archive_reader::needs_password() const {
    // The library must not be asked before it knows a format: it looks into one that is not there.
    return knows_format() && archive_read_has_encrypted_entries(reader.get()) > 0;
}

QByteArray archive_reader::name() const {
    const char* const as_utf8 = archive_entry_pathname_utf8(entry);
    return QByteArray(as_utf8 != nullptr ? as_utf8 : archive_entry_pathname(entry));
}

view_entry archive_reader::described() const {
    view_entry described;
    const auto type = archive_entry_filetype(entry);
    const bool is_link = type == AE_IFLNK || archive_entry_hardlink(entry) != nullptr;
    described.kind = is_link            ? entry_kind::link
                     : type == AE_IFREG ? entry_kind::file
                     : type == AE_IFDIR ? entry_kind::folder
                                        : entry_kind::other;
    const bool is_file = described.kind == entry_kind::file;
    described.size = is_file && archive_entry_size_is_set(entry) != 0 ? qint64{archive_entry_size(entry)} : -1;
    if (is_file && archive_entry_is_encrypted(entry) != 0) {
        described.unreadable = QStringLiteral("it is encrypted: unpack the archive with its password");
    }
    const auto told = [](bool is_set, time_t seconds, long nanoseconds) { // zip: set, and 0 where it tells none
        return is_set && (seconds != 0 || nanoseconds != 0) ? ticks_of(seconds, nanoseconds) : std::nullopt;
    };
    ntfs_times& times = described.times;
    times.modified =
        told(archive_entry_mtime_is_set(entry) != 0, archive_entry_mtime(entry), archive_entry_mtime_nsec(entry));
    times.accessed =
        told(archive_entry_atime_is_set(entry) != 0, archive_entry_atime(entry), archive_entry_atime_nsec(entry));
    times.created = told(archive_entry_birthtime_is_set(entry) != 0, archive_entry_birthtime(entry),
                         archive_entry_birthtime_nsec(entry));
    // What tar has under this name is a change of the entry, what zip and 7z have is its creation.
    std::optional<qint64>& third = is_tar() ? times.changed : times.created;
    if (archive_entry_ctime_is_set(entry) != 0) {
        third = told(true, archive_entry_ctime(entry), archive_entry_ctime_nsec(entry));
    }
    return described;
}

} // namespace intake
