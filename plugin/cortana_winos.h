// SPDX-License-Identifier: MIT
// The front for Windows sources: keeps the run's settings and the found sources, and runs the extractors one result
// table at a time. Driven by the cortana object only, on the host's thread.
#pragma once

#include "contract/host_records.h"
#include "extractors/step_run.h"
#include "source/places.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QWidget>

#include <memory>

class contact_triggers;
class place_triggers;
class plugin_helper_functions;
class search_from_com;
class specific_table;
class text_search_registry;
class timetriggers;

class cortana_winos : public QWidget {
    Q_OBJECT

public:
    explicit cortana_winos(QWidget* parent = nullptr);
    ~cortana_winos() override;

    void winos_set_engine_type(int type);
    void winos_set_plugin_name(QString name);
    void winos_set_essentials(); // clears the cancel flag
    void winos_set_source_count(int count);
    void winos_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info desktop_info); // ignored
    void winos_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_info); // ignored
    void winos_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info);
    void winos_set_essential_for_vantor_desk_extraction(QStringList tables);
    void winos_set_destination_location(QString result_dir, QString tmp_dir, QString db_path);
    void winos_cancel_extraction();
    void winos_find_artifacts_source();
    void winos_extract_artifacts();
    void winos_set_plugin_helper_obj(plugin_helper_functions* helper); // not owned
    void winos_set_record_count(qint64 count);
    void winos_set_tab_processed_count(int count);

    // Discovery: fills the six lists below from the user profiles of the source.
    void find_source_file();
    const QStringList& found_webcache_files() const { return webcache_file_list; }
    const QStringList& found_ntuser_files() const { return ntuser_file_list; }
    const QStringList& found_indexed_db_files() const { return indexed_db_file_list; }
    const QStringList& found_cortana_core_db_files() const { return cortana_core_db_file_list; }
    const QStringList& found_speech_dirs() const { return speech_dir_list; }
    const QStringList& found_graph_dirs() const { return graph_dir_list; }

    // Driver (plugin/cortana_winos_driver.cpp).
    void extract_plugin_artifacts();

    // The steps; each is one file in extractors/ and a line in cortana_winos_steps.cpp.
    void extract_timetriggers();
    void extract_place_reminders();
    void extract_contact_triggers();
    void extract_audio_search_files();
    void extract_graph_search_files();
    void extract_cache_files();
    void extract_cookies();
    void extract_domstore();
    void extract_searches();
    void extract_search_from_recents();
    void extract_search_from_com_registry();

    // The extractors' rules; each forwards to a free function in extractors/.
    qint64 timestamp_format_converter(QString text);
    QString extract_original_name(QByteArray data, qint64 start, qint64 end);
    QString extract_data_str(qint64 start, qint64 end, QByteArray data);
    QString extract_date(qint64 start, qint64 end, QByteArray data);
    QString graphed_timestamp_conversion(QString text);
    QString get_search_text(QByteArray value_data);
    QString get_search_time(QByteArray value_data);
    QString get_searched_text_for_com(QByteArray key_name);
    QString get_time(QByteArray key_name);
    qint64 give_epoch_from_string(QString filetime);

Q_SIGNALS:
    void signal_extracted_records_of_plugin_winos(qint64 records);
    void signal_total_tabs_processed_winos(int count);

private:
    QStringList& found_list(source_list list);
    step_context context_for_step();
    void count_inserted_record();

    int tab_count_int = 0;
    qint64 records_count = 0;
    std::unique_ptr<QElapsedTimer> progress_timer; // time since the last record-count signal
    QString plugin_tmp_dir_path;
    QString destination_db_path;
    QString plugin_result_dir_path;
    QString fs_extraction_source_path;
    int type_engine_int = -1;
    bool bool_cancel_extraction = false;
    int source_count_int = -1;
    QString os_scheme_display;
    QString source_path_2;
    QStringList user_name_list;
    QStringList selected_tables;
    QString plugin_name;
    QStringList indexed_db_file_list;
    QStringList cortana_core_db_file_list;
    QStringList webcache_file_list;
    QStringList speech_dir_list;
    QStringList graph_dir_list;
    QStringList ntuser_file_list;
    plugin_helper_functions* plugin_helper_obj = nullptr;
    QString location_kind; // never set: Windows sources have none

    // The reader of the running step, created by the step and deleted by it.
    std::unique_ptr<timetriggers> time_reader;
    std::unique_ptr<place_triggers> place_reader;
    std::unique_ptr<contact_triggers> contact_reader;
    std::unique_ptr<specific_table> webcache_reader;
    std::unique_ptr<text_search_registry> recents_walker;
    std::unique_ptr<search_from_com> com_walker;
};
