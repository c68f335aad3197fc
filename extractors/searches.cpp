// SPDX-License-Identifier: MIT
// Result table searches: both extractors, one after the other.
#include "common/plugin_static_function.h"
#include "extractors/row_values.h"
#include "plugin/cortana_winos.h"

void cortana_winos::extract_searches() {
    const QString function = QStringLiteral("void cortana_winos::extract_searches()");
    plugin_static_function::app_debug(QStringLiteral("[extract_searches] ----- STARTS ------"), function);
    extract_search_from_recents();
    extract_search_from_com_registry();
    plugin_static_function::app_debug(QStringLiteral("[extract_searches] ----- ENDS ------"), function);
}

qint64 cortana_winos::give_epoch_from_string(QString filetime) {
    return filetime_to_unix_seconds(filetime);
}
