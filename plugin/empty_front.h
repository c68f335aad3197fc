// SPDX-License-Identifier: MIT
// What the fronts share for which the plugin extracts nothing: they accept every setting, find nothing, and answer an
// extraction with the record count that they were handed.
#pragma once

#include <QElapsedTimer>
#include <QStringList>
#include <QWidget>

class plugin_helper_functions;

class empty_front : public QWidget {
protected:
    using QWidget::QWidget;

    struct settings {
        int type_engine_int = -1;
        int source_count_int = -1;
        QString plugin_name;
        QString fs_extraction_source_path;
        QStringList selected_tables;
        QString plugin_result_dir_path;
        QString plugin_tmp_dir_path;
        QString destination_db_path;
        plugin_helper_functions* plugin_helper_obj = nullptr; // not owned
    } set;
    bool bool_cancel_extraction = false;
    qint64 records_count = 0;
    int tab_count_int = 0;
    QElapsedTimer progress_timer;
};
