// SPDX-License-Identifier: MIT
// places.kml (OGC KML 2.2): a placemark a row with coordinates, and a polygon where it has a radius.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/places.h"
#include "host/exports/whole_files.h"

class kml_writer : public export_writer {
public:
    explicit kml_writer(export_folder& folder);

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override { return !file.failed(); }
    bool finish() override;

private:
    pending_file& file;
};
