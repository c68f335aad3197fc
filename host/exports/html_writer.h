// SPDX-License-Identifier: MIT
// report.html: one file that opens offline and reads without script. What must be known first stands first, but is
// known last: rows go into a file without a name and are copied behind it at the end.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/report_activity.h"
#include "host/exports/report_counts.h"
#include "host/exports/report_places.h"
#include "host/exports/report_record.h"
#include "host/exports/report_rows.h"
#include "host/exports/report_warnings.h"
#include "host/exports/table_reader.h"

#include <vector>

class html_writer : public export_writer {
public:
    // database: what source reads; both outlive the writer's last call.
    html_writer(export_folder& folder, table_reader& source, const QString& database);

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override;
    bool finish() override;

private:
    report_facts facts_of_rows();
    bool write_overview(const report_record& record, const report_facts& facts);
    bool write_table(const report_rows& table, const report_record& record);
    bool write_plain(const char* id, const char* title, const QByteArray& select);
    bool is_whole();

    pending_file& file;
    table_reader& reader;
    QString database;
    scratch_file scratch;
    std::vector<report_rows> tables;
    report_activity activity;
    report_counts rows_by_profile;
    report_places places;
};
