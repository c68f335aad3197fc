// SPDX-License-Identifier: MIT
// The tables of an ESE database, told by its catalog and counted by walking their trees.
#pragma once

#include "host/health/ese_catalog_entries.h"
#include "host/health/ese_trees.h"
#include "host/health/file_health.h"
#include "host/health/record_survey.h"

class ese_tables {
public:
    // Keeps what a leaf page of the catalog or of its copy tells; pages of other objects, and damaged ones, do not
    // belong here.
    void add_catalog_page(const page_view& page, quint32 page_number);

    // When all pages have been added: walks every tree, adds what is damaged to `damage`, and fills in the tables and
    // what there is to say about them. Once.
    void survey(ese_trees& trees, record_survey& records, page_damage& damage, file_health& result);

    struct owner {
        QString table;
        QString part;
    };
    // Whose tree an object id is. Known after survey(); empty: the catalog does not tell.
    owner owner_of(quint32 object) const { return owners.value(object); }

private:
    void choose_entries(ese_trees& trees, page_damage& damage, file_health& result);
    void name_owners();
    ese_trees::walked_tree walk_once(quint32 root, quint32 object, ese_trees& trees, page_damage& damage);
    void survey_table(const ese_catalog_entry& entry, ese_trees& trees, page_damage& damage, ese_health& result);
    void add_long_values(const ese_catalog_entry& entry, ese_trees& trees, page_damage& damage, ese_health& result);
    void find_lacking_values(record_survey& records, ese_health& result) const;

    QVector<ese_catalog_entry> entries; // of the catalog; after choose_entries() the ones that hold
    QVector<ese_catalog_entry> copies;  // of its copy
    bool is_cut = false;                // there were more entries than memory is given to
    QHash<quint32, owner> owners;
    QHash<quint64, ese_trees::walked_tree> walked; // by root and object
};
