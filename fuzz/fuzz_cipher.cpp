// SPDX-License-Identifier: MIT
// Any bytes are deciphered without harm, and any text comes back from its own ciphertext.
#include "common/encryptor_string.h"

#include <QtGlobal>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    encryptor_string cipher(1);
    cipher.decryptToByteArray(bytes);
    if (cipher.decryptToByteArray(cipher.encryptToByteArray(bytes)) != bytes) {
        std::abort();
    }
    return 0;
}
