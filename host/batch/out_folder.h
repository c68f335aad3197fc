// SPDX-License-Identifier: MIT
// Names in the folder that the results of a batch go to. What begins with "." is the program's own: no id does.
#pragma once

#include "contract/result_layout.h"

#include <QString>

namespace batch {

class out_folder {
public:
    explicit out_folder(const QString& folder) : base(folder + QLatin1Char('/')) {}

    QString result(const QString& id) const { return base + id; }
    QString record(const QString& id) const { return result(id) + QStringLiteral("/batch.json"); }
    QString partial(const QString& id) const { return base + QLatin1Char('.') + id + QStringLiteral(".partial"); }
    QString lock(const QString& id) const { return partial(id) + QStringLiteral(".lock"); }
    // Of the last attempt that gave no result; a batch record as well.
    QString failure(const QString& id) const { return base + QLatin1Char('.') + id + QStringLiteral(".failed.json"); }
    // The batch's own copy, so that a look at the folder needs nothing else.
    QString manifest() const { return base + QStringLiteral(".manifest.jsonl"); }

private:
    QString base;
};

// The result database of a result folder.
inline QString database_of(const QString& result) {
    return result_layout::database_file(result_layout::plugin_folder(result, artifact_name), artifact_name);
}

// The run record of a result folder.
inline QString run_record_of(const QString& result) {
    return result_layout::plugin_folder(result, artifact_name) + QStringLiteral("run.json");
}

} // namespace batch
