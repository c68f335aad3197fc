// SPDX-License-Identifier: MIT
// Any bytes as a hive with a right checksum: the check does no harm and finds the same whatever the
// chunks.
#include "host/health/bytes.h"
#include "host/health/file_checker.h"

#include <cstdint>
#include <cstdlib>

namespace {

constexpr int header_fields = 512;

file_health check(const QByteArray& file, int chunk_size) {
    const auto checker = registry_hive_checker();
    for (int offset = 0; offset < file.size(); offset += chunk_size) {
        checker->take(file.constData() + offset, qMin(chunk_size, file.size() - offset));
    }
    return checker->finish();
}

// The first bytes as the header, the others as the blocks.
QByteArray hive_of(const QByteArray& bytes) {
    QByteArray hive = bytes.left(header_fields).leftJustified(0x1000, '\0') + bytes.mid(header_fields);
    const quint32 sum = xor_of_words({hive.constData(), 508}, 0);
    qToLittleEndian(sum, hive.data() + 508);
    return hive.leftJustified(0x3000, '\0');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QByteArray hive = hive_of(bytes);
    const file_health health = check(hive, 1 << 20);
    const file_health same = check(hive, 7);
    if (health.problem != same.problem || health.notes != same.notes ||
        health.hive.has_value() != same.hive.has_value()) {
        std::abort();
    }
    return 0;
}
