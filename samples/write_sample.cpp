// SPDX-License-Identifier: MIT
// cortana_write_sample FOLDER: writes the sample Windows source.
#include "samples/sample_source.h"

#include <QFile>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: cortana_write_sample FOLDER\n", stderr);
        return 2;
    }
    return write_sample_source(QFile::decodeName(argv[1])) ? 0 : 1;
}
