// SPDX-License-Identifier: MIT
// The check of a registry hive: what hivex refuses, and one more: hivex reads a hive that ends early at the end of a
// block as if it were whole.
#pragma once

#include "host/health/file_checker.h"

#include <QByteArray>

#include <string_view>

class hive_checker : public file_checker {
public:
    void take(const char* bytes, qint64 size) override;
    file_health finish() override;

private:
    enum class step { header, block, cell, done };
    void take_header();
    void take_block();
    void take_cell();
    void want(step what, qint64 offset, int size);
    void want_next_block();
    QString problem() const;

    qint64 taken = 0;
    // What is waited for: so many bytes from an offset, always ahead.
    step waiting_for = step::header;
    qint64 wanted_at = 0;
    int wanted_size = 512; // the fields of the header; its checksum lies at 508
    QByteArray gathered;

    QByteArray header;
    qint64 bins_end = 0;
    qint64 block_at = 0; // of the block whose cells pass by
    qint64 block_end = 0;
    bool are_blocks_sound = true;
    qint64 root_at = 0;
    QByteArray root_signature;
};
