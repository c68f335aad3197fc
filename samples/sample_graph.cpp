// SPDX-License-Identifier: MIT
// The sample's graph cache: Turtle-like text files with line ends of two bytes, one property a line.
#include "samples/sample_files.h"
#include "samples/sample_source.h"

namespace {

// One looked-up entity; empty properties are left out of the file.
struct sample_entity {
    const char* name;
    const char* sid;
    const char* phone;
    const char* point; // latitude, blank, longitude
    const char* created;
};

QByteArray line(const QByteArray& property, const char* value, const char* type = "") {
    return *value == '\0' ? QByteArray() : "    schema:" + property + " \"" + value + '"' + type + " ;\r\n";
}

QByteArray point_or_nothing(const char* coordinates) {
    return *coordinates == '\0' ? QByteArray() : QByteArray("Point(") + coordinates + ')';
}

QByteArray entity_text(const sample_entity& entity, const QByteArray& id) {
    constexpr const char* time_type = "^^schema:DateTime"; // its "Date" is what ends the value
    return "<urn:entity:" + id + ">\r\n" + line("originalName", entity.name) +
           line("dateCreated", entity.created, time_type) +
           line("dateModified", "2019-05-02T08:00:00.000Z", time_type) +
           line("<dateAccessed>", " ", time_type) + // blank: the one kind of date that yields a number
           line("entityId", id.constData()) + line("about", QByteArray(QByteArray("sid:") + entity.sid).constData()) +
           line("phone", entity.phone) + line("geo", point_or_nothing(entity.point).constData()) + "    .\r\n";
}

} // namespace

bool write_sample_graph(const sample_profile& profile) {
    const QByteArray number = QByteArray::number(profile.number);
    const sample_entity museum = {"Deutsches Museum M\xc3\xbcnchen", "place.museum", "+49 89 21791", "48.1299 11.5834",
                                  "2019-05-01T10:20:30.000Z"};
    const sample_entity space_needle = {"Space Needle", "place.needle", "", "47.6 -122.3", "2019-05-01T11:00:00.000Z"};
    const sample_entity contact = {"Zo\xc3\xab Jansen", "contact.17", "+31 20 555 0100", "", " "};
    const QByteArray prefix = "@prefix schema: <http://schema.org/> .\r\n";
    const QString folder = profile.package_folder() + QStringLiteral("LocalState/Graph/");
    return write_sample_file(folder + QStringLiteral("places.ttl"),
                             prefix + entity_text(museum, "m-" + number) + entity_text(space_needle, "n-" + number)) &&
           write_sample_file(folder + QStringLiteral("People/contacts.ttl"),
                             prefix + entity_text(contact, "c-" + number)) &&
           write_sample_file(folder + QStringLiteral("index.json"), "{\"originalName\": \"not a graph file\"}\r\n");
}
