// SPDX-License-Identifier: MIT
// How a profile to examine is named. A rule over text alone.
#pragma once

#include "contract/host_records.h"

#include <optional>

// NAME or NAME=DOMAIN_USER. Both name a folder below Users/, so neither may lead elsewhere: no value then, nor without
// a NAME.
std::optional<system_account> account_of(const QString& text);
