// SPDX-License-Identifier: MIT
// The list of the steps' statements and bindings.
#include "extractors/step_columns.h"

QVector<step_columns> all_step_columns() {
    return {columns_of_time_reminders(),
            columns_of_place_reminders(),
            columns_of_contact_triggers(),
            columns_of_latest_audio_search(),
            columns_of_graphed_cache(),
            columns_of_cache_files(),
            columns_of_cookies(),
            columns_of_domstore(),
            columns_of_searches_from_recents(),
            columns_of_searches_from_com()};
}
