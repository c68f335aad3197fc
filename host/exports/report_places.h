// SPDX-License-Identifier: MIT
// Where something happened: the places of all rows on a grid of longitude and latitude. No map is loaded.
#pragma once

#include "host/exports/places.h"

#include <string>
#include <vector>

class report_places {
public:
    void take(const export_row& row);
    // The picture and a list of the places, as HTML.
    std::string html() const;

private:
    struct drawn_place {
        QByteArray table;
        qint64 row;
        std::string name; // HTML
        place where;
    };
    std::string list() const;

    std::vector<drawn_place> places; // the first ones
    qint64 valid = 0;
    qint64 invalid = 0;
};
