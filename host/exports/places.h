// SPDX-License-Identifier: MIT
// Rows as places on the map, in WGS 84.
#pragma once

#include "host/exports/export_row.h"

#include <QPair>
#include <QVector>

struct map_point {
    double longitude;
    double latitude;
};

enum class place_state { valid, no_table, none, invalid };

struct place {
    place_state state = place_state::none;
    map_point point = {0, 0};
    double radius = 0; // metres; 0 when the row tells none that can be drawn
};

// no_table: the table holds no places. none: both coordinates are empty. invalid: they are no numbers or lie beyond
// the poles or the antimeridian.
place place_of(const export_row& row);
// Why a place that is not valid is left out.
QString reason_of(place_state state);

// The circle as a closed ring, counterclockwise, its first point again at the end; empty when there is none to draw: no
// radius, or one that reaches a pole or the antimeridian or over 1000 km.
QVector<map_point> circle_around(const place& centre);
