// SPDX-License-Identifier: MIT
// The descriptions as documents.
#pragma once

#include <QByteArray>

// {"tables":[{"name","row","origin","columns":[{"name","kind","unit","meaning","origin"}]}]}, in the order of the
// schema.
QByteArray schema_as_json();
// A heading and a table for each table. docs/artifacts.md holds this text.
QByteArray schema_as_markdown();
