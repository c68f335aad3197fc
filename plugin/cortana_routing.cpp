// SPDX-License-Identifier: MIT
// The two operations that do real work go to the one front of the source's operating-system scheme.
#include "common/plugin_static_function.h"
#include "plugin/cortana.h"
#include "plugin/cortana_ios_uid.h"
#include "plugin/cortana_macos.h"
#include "plugin/cortana_winos.h"

struct cortana::route {
    const char* scheme;
    void (*find)(cortana& plugin);
    void (*extract)(cortana& plugin);
};

const cortana::route* cortana::route_of_source() const {
    static const route routes[] = {
        {"macOS", [](cortana& plugin) { plugin.macos_front->macos_find_artifacts_source(); },
         [](cortana& plugin) { plugin.macos_front->macos_extract_artifacts(); }},
        {"iOS_UID", [](cortana& plugin) { plugin.ios_front->ios_uid_find_artifacts_source(); },
         [](cortana& plugin) { plugin.ios_front->ios_uid_extract_artifacts(); }},
        {"winOS", [](cortana& plugin) { plugin.winos_front->winos_find_artifacts_source(); },
         [](cortana& plugin) { plugin.winos_front->winos_extract_artifacts(); }},
    };
    for (const route& candidate : routes) {
        if (os_scheme_internal == QLatin1String(candidate.scheme)) {
            return &candidate;
        }
    }
    return nullptr;
}

void cortana::log_unknown_scheme(const QString& function) {
    plugin_static_function::app_debug(
        QStringLiteral(
            "------FAILED------- supported os scheme internal not matched, received os scheme internal =  ") +
            os_scheme_internal + QStringLiteral(", plugin name is ") + pub_get_artifact_name(),
        function);
}

void cortana::pub_find_source_file() {
    if (const route* front = route_of_source()) {
        front->find(*this);
    } else {
        log_unknown_scheme(QStringLiteral("virtual void cortana::pub_find_source_file()"));
    }
}

void cortana::pub_extract_artifacts() {
    const QString function = QStringLiteral("virtual void cortana::pub_extract_artifacts()");
    plugin_static_function::app_debug(QStringLiteral("[pub_extract_artifacts] - START"), function);
    Q_EMIT signal_extracted_records_of_plugin_overall(0);
    // The fronts continue the counts rather than restart them.
    macos_front->macos_set_plugin_helper_obj(plugin_helper_obj);
    ios_front->ios_uid_set_plugin_helper_obj(plugin_helper_obj);
    winos_front->winos_set_plugin_helper_obj(plugin_helper_obj);
    macos_front->macos_set_record_count(records_count);
    ios_front->ios_uid_set_record_count(records_count);
    winos_front->winos_set_record_count(records_count);
    macos_front->macos_set_tab_processed_count(tab_count_int);
    ios_front->ios_uid_set_tab_processed_count(tab_count_int);
    winos_front->winos_set_tab_processed_count(tab_count_int);
    if (const route* front = route_of_source()) {
        if (bool_cancel_extraction) {
            return;
        }
        front->extract(*this);
    } else {
        log_unknown_scheme(function);
    }
    Q_EMIT signal_extracted_records_of_plugin_overall(records_count);
    plugin_static_function::app_debug(QStringLiteral("[pub_extract_artifacts] - END"), function);
}
