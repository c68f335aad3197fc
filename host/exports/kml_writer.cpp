// SPDX-License-Identifier: MIT
// Each placemark is written by Qt into a text of its own, so that the file never is in memory as a whole.
#include "host/exports/kml_writer.h"

#include "host/exports/cell_text.h"

#include <QXmlStreamWriter>

#include <functional>

namespace {

QString coordinates(const map_point& point) {
    std::string text;
    append_number(point.longitude, text);
    text += ',';
    append_number(point.latitude, text);
    return QString::fromStdString(text);
}

// The first of the telling columns that says something.
QString name_of(const export_row& row) {
    for (const char* const column : row.table.told_by) {
        const QString text = shown_text(row.cells[static_cast<std::size_t>(row.table.index_of(column))]);
        if (!text.isEmpty()) {
            return xml_text(text);
        }
    }
    return QStringLiteral("row %1").arg(key_of(row));
}

void write_datum(QXmlStreamWriter& xml, const QString& name, const QString& value) {
    xml.writeStartElement(QStringLiteral("Data"));
    xml.writeAttribute(QStringLiteral("name"), name);
    xml.writeTextElement(QStringLiteral("value"), value);
    xml.writeEndElement();
}

// The instant in UTC and, where one was asked for, in a time zone.
void write_time(QXmlStreamWriter& xml, const QString& name, const export_time& time, bool with_zone) {
    write_datum(xml, name + QStringLiteral("_utc"), QLatin1String(time.utc.data()));
    if (with_zone) {
        write_datum(xml, name + QStringLiteral("_local"), QLatin1String(time.in_zone.data()));
    }
}

// Every column that says something.
void write_data(QXmlStreamWriter& xml, const export_row& row) {
    xml.writeStartElement(QStringLiteral("ExtendedData"));
    write_datum(xml, QStringLiteral("table"), QString::fromLatin1(row.table.name));
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const column_description& column = row.table.columns[static_cast<int>(i)];
        const QString name = QLatin1String(column.name);
        const bool is_time = column.kind == column_kind::time;
        if (is_time && row.times[i].is_time) {
            write_time(xml, name, row.times[i], row.table.with_zone);
        }
        const QString text = shown_text(row.cells[i]);
        if (!text.isEmpty()) {
            write_datum(xml, name, xml_text(text));
        }
    }
    xml.writeEndElement();
}

void write_placemark(QXmlStreamWriter& xml, const export_row& row, const std::function<void()>& write_geometry) {
    xml.writeStartElement(QStringLiteral("Placemark"));
    xml.writeTextElement(QStringLiteral("name"), name_of(row));
    write_data(xml, row);
    write_geometry();
    xml.writeEndElement();
}

void write_circle(QXmlStreamWriter& xml, const QVector<map_point>& ring) {
    QStringList points;
    for (const map_point& point : ring) {
        points.append(coordinates(point));
    }
    xml.writeStartElement(QStringLiteral("Polygon"));
    xml.writeStartElement(QStringLiteral("outerBoundaryIs"));
    xml.writeStartElement(QStringLiteral("LinearRing"));
    xml.writeTextElement(QStringLiteral("coordinates"), points.join(QLatin1Char(' ')));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement();
}

void write_point(QXmlStreamWriter& xml, const map_point& point) {
    xml.writeStartElement(QStringLiteral("Point"));
    xml.writeTextElement(QStringLiteral("coordinates"), coordinates(point));
    xml.writeEndElement();
}

} // namespace

kml_writer::kml_writer(export_folder& folder) : file(folder.create("places.kml")) {
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<kml xmlns=\"http://www.opengis.net/kml/2.2\"><Document><name>Cortana</name>\n");
}

bool kml_writer::begin(const export_table&) {
    start_counts();
    return !file.failed();
}

bool kml_writer::row(const export_row& row) {
    const place found = place_of(row);
    if (found.state != place_state::valid) {
        return leave_out(reason_of(found.state));
    }
    const QVector<map_point> ring = circle_around(found);
    QByteArray placemarks;
    QXmlStreamWriter xml(&placemarks);
    write_placemark(xml, row, [&] { write_point(xml, found.point); });
    if (!ring.isEmpty()) {
        write_placemark(xml, row, [&] { write_circle(xml, ring); });
        note(QStringLiteral("circles"));
    }
    count_out();
    placemarks += '\n';
    return file.write({placemarks.constData(), static_cast<std::size_t>(placemarks.size())});
}

bool kml_writer::finish() {
    return file.write("</Document></kml>\n") && file.make_whole();
}
