// SPDX-License-Identifier: MIT
// The manifest on disk, and the batch's own copy of it beside the results.
#pragma once

#include "host/batch/manifest.h"
#include "host/batch/out_folder.h"

namespace batch {

// The whole file. A null text: it cannot be read, or is larger than any manifest; error says why.
QByteArray manifest_text(const QString& file, QString& error);

// Keeps the manifest in the folder of the results. A manifest that is there already may grow and be put in another
// order, but no source that it has may change or be missing. False: it did, or nothing can be written; error says
// which. is_other tells the first.
bool keep_manifest(const QByteArray& text, const out_folder& out, bool& is_other, QString& error);

} // namespace batch
