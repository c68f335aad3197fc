// SPDX-License-Identifier: MIT
// The front's members for steps and rules: each forwards to extractors/, where the step or the rule stands.
#include "common/plugin_static_function.h"
#include "ese/contact_triggers.h"
#include "ese/place_triggers.h"
#include "ese/timetriggers.h"
#include "extractors/graph_text.h"
#include "extractors/row_values.h"
#include "extractors/search_text.h"
#include "extractors/steps.h"
#include "plugin/cortana_winos.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"

step_context cortana_winos::context_for_step() {
    return {fs_extraction_source_path, os_scheme_display,
            destination_db_path,       location_kind,
            bool_cancel_extraction,    [this] { count_inserted_record(); }};
}

void cortana_winos::extract_timetriggers() {
    fill_time_reminders(context_for_step(), time_reader, cortana_core_db_file_list);
}

void cortana_winos::extract_place_reminders() {
    fill_place_reminders(context_for_step(), place_reader, cortana_core_db_file_list);
}

void cortana_winos::extract_contact_triggers() {
    fill_contact_triggers(context_for_step(), contact_reader, cortana_core_db_file_list);
}

void cortana_winos::extract_audio_search_files() {
    fill_latest_audio_search(context_for_step(), speech_dir_list);
}

void cortana_winos::extract_graph_search_files() {
    fill_graphed_cache(context_for_step(), graph_dir_list);
}

void cortana_winos::extract_cache_files() {
    fill_cache_files(context_for_step(), webcache_reader, webcache_file_list);
}

void cortana_winos::extract_cookies() {
    fill_cookies(context_for_step(), webcache_reader, webcache_file_list);
}

void cortana_winos::extract_domstore() {
    fill_domstore(context_for_step(), webcache_reader, webcache_file_list);
}

void cortana_winos::extract_search_from_recents() {
    fill_searches_from_recents(context_for_step(), recents_walker, ntuser_file_list);
}

void cortana_winos::extract_search_from_com_registry() {
    fill_searches_from_com(context_for_step(), com_walker, ntuser_file_list);
}

qint64 cortana_winos::timestamp_format_converter(QString text) {
    return iso_text_to_unix_seconds(text);
}

QString cortana_winos::get_search_text(QByteArray value_data) {
    return search_text_in_value(value_data);
}

QString cortana_winos::get_search_time(QByteArray value_data) {
    return search_time_in_value(value_data);
}

QString cortana_winos::get_searched_text_for_com(QByteArray key_name) {
    return search_text_in_name(key_name);
}

QString cortana_winos::get_time(QByteArray key_name) {
    return search_time_in_name(key_name);
}

QString cortana_winos::extract_original_name(QByteArray content, qint64 start, qint64 end) {
    return graph_original_name(content, start, end);
}

QString cortana_winos::extract_data_str(qint64 start, qint64 end, QByteArray content) {
    return graph_quoted_value(content, start, end);
}

QString cortana_winos::extract_date(qint64 start, qint64 end, QByteArray content) {
    return graph_date(content, start, end);
}

QString cortana_winos::graphed_timestamp_conversion(QString text) {
    return graph_timestamp(text);
}

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
