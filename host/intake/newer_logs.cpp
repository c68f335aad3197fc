// SPDX-License-Identifier: MIT
// The hive's first sector is enough to tell which entries it lacks.
#include "host/intake/newer_logs.h"

#include "host/intake/hive_logs.h"
#include "source/native_names.h"
#include "source/quiet_open.h"

namespace {

constexpr int for_reading = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC;
constexpr qint64 most_of_a_log = qint64{256} * 1024 * 1024;
constexpr qint64 head_of_a_hive = 4128;

// Up to most bytes of the file; null with errno when it cannot be read, with 0 when it is not there.
QByteArray first_bytes(const QByteArray& native_path, qint64 most) {
    const quiet_file file(native_path, for_reading);
    if (!file.is_open() || file.size() < 0) {
        errno = errno == ENOENT ? 0 : errno;
        return {};
    }
    QByteArray bytes(static_cast<int>(qMin(file.size(), most)), Qt::Uninitialized);
    bytes.truncate(static_cast<int>(file.read(bytes.data(), bytes.size(), 0)));
    return bytes;
}

} // namespace

QStringList newer_log_notes(const QByteArray& native_hive) {
    QStringList notes;
    const QByteArray hive = first_bytes(native_hive, head_of_a_hive);
    for (const char* const ending : {".LOG1", ".LOG2"}) {
        errno = 0;
        const QByteArray log = hive.isEmpty() ? QByteArray() : first_bytes(native_hive + ending, most_of_a_log);
        const int error = errno;
        const int entries = entries_newer_than_hive(hive, log);
        if (error != 0) {
            notes.append(QStringLiteral("its %1 cannot be read: %2").arg(QLatin1String(ending), error_words(error)));
        } else if (entries > 0) {
            notes.append(QStringLiteral("its %1 holds newer writes (entries: %2), which are not applied")
                             .arg(QLatin1String(ending))
                             .arg(entries));
        }
    }
    return notes;
}
