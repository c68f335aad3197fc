// SPDX-License-Identifier: MIT
// SHA-256 of bytes that pass by.
#pragma once

#include <QByteArray>

#include <memory>

#include <openssl/evp.h>

class sha256 {
public:
    sha256();
    void take(const char* bytes, qint64 size);
    // The digest of all taken so far as 64 hexadecimal digits, in small letters; nothing may be taken after it. Empty:
    // the library could not compute it.
    QByteArray finish();

private:
    struct free_context {
        void operator()(EVP_MD_CTX* freed) const { EVP_MD_CTX_free(freed); }
    };
    std::unique_ptr<EVP_MD_CTX, free_context> context;
    bool failed = false;
};
