// SPDX-License-Identifier: MIT
// places.geojson (RFC 7946): a point a row with coordinates, and a polygon where it has a radius.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/whole_files.h"

class geojson_writer : public export_writer {
public:
    explicit geojson_writer(export_folder& folder);

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override { return !file.failed(); }
    bool finish() override;

private:
    bool write_feature(const std::string& geometry, const std::string& properties);

    pending_file& file;
    bool is_first = true;
};
