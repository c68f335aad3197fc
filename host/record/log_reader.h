// SPDX-License-Identifier: MIT
// Reads a debug log piece by piece. A log may hold plain lines, enciphered records, or one after the other.
#pragma once

#include <QByteArray>
#include <QIODevice>

struct log_piece {
    enum kind { plain, deciphered, broken };
    kind what = plain;
    QByteArray text;   // a plain line with its line break, or the deciphered record; empty for a broken record
    qint64 number = 0; // from 1: of the record in the log, a plain line counting as one
};

// True when a line of the plugin's log begins here: [yyyy-MMM-ddThh-mm-ss][
bool is_line_start(const QByteArray& bytes, int position = 0);

class log_reader {
public:
    // device: open for reading, outlives this object; reading begins where it stands.
    explicit log_reader(QIODevice& device) : source(device) {}

    // False at the end of the log. A record longer than the buffer is given in parts, all of them broken or plain.
    bool next(log_piece& piece);

private:
    bool fill();
    log_piece judge(int length, bool ended_by_line_break, bool ended_by_separator);

    QIODevice& source;
    QByteArray buffer;
    int position = 0; // of the first byte not given yet
    int searched = 0; // up to here there is neither a line break nor a separator
    bool at_end = false;
    qint64 given = 0;
    log_piece::kind last = log_piece::plain;
};
