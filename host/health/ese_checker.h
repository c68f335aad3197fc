// SPDX-License-Identifier: MIT
// The check of an ESE database: its header, the checksum of every page, its tables and the trees of their pages.
#pragma once

#include "host/health/ese_header.h"
#include "host/health/ese_tables.h"
#include "host/health/file_checker.h"

#include <QByteArray>

class ese_checker : public file_checker {
public:
    void take(const char* bytes, qint64 size) override;
    file_health finish() override;

private:
    void start();
    void take_pages(std::string_view bytes);
    void take_page(std::string_view bytes);
    bool read_content(const page_view& page, ese_trees::page_content& content);
    void take_catalog(const page_view& page);
    void finish_pages(file_health& result);
    void name_damage(file_health& result) const;

    qint64 taken = 0;
    QByteArray gathered;  // the head; later a page that has come in part
    bool is_open = false; // the head has been judged
    ese_header header;
    quint32 page_number = 0; // of the last page
    qint64 unwritten = 0;
    ese_trees trees;
    ese_tables tables;
    record_survey records;
    page_damage damage;
};
