// SPDX-License-Identifier: MIT
// A failure anywhere gives no digest at all.
#include "host/health/sha256.h"

sha256::sha256() : context(EVP_MD_CTX_new()) {
    failed = context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1;
}

void sha256::take(const char* bytes, qint64 size) {
    failed = failed || EVP_DigestUpdate(context.get(), bytes, static_cast<size_t>(size)) != 1;
}

QByteArray sha256::finish() {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (failed || EVP_DigestFinal_ex(context.get(), digest, &size) != 1) {
        return {};
    }
    return QByteArray(reinterpret_cast<const char*>(digest), static_cast<int>(size)).toHex();
}
