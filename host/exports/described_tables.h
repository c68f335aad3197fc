// SPDX-License-Identifier: MIT
// One function a table; table_descriptions() puts them in order.
#pragma once

#include "host/exports/table_descriptions.h"

table_description described_time_reminders();
table_description described_place_reminders();
table_description described_contact_triggers();
table_description described_latest_audio_search();
table_description described_graphed_cache();
table_description described_cache_files();
table_description described_cookies();
table_description described_domstore();
table_description described_searches();
