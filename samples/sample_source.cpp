// SPDX-License-Identifier: MIT
// The sample source as a whole: its profiles and what each of them gets.
#include "samples/sample_source.h"

bool write_sample_source(const QString& root) {
    const QString folder = root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/');
    const QString users[] = {QStringLiteral("anna"), QStringLiteral("bernd")};
    bool written = true;
    int number = 0;
    for (const QString& user : users) {
        const sample_profile profile{folder, user, number++};
        for (const auto write : {write_sample_reminders, write_sample_webcache, write_sample_hive, write_sample_graph,
                                 write_sample_speech}) {
            written = write(profile) && written;
        }
    }
    return written;
}
