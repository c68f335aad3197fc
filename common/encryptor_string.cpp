// SPDX-License-Identifier: MIT
// Implementation of the log cipher.
#include "common/encryptor_string.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QtDebug>
#include <QtEndian>

namespace {

constexpr quint64 built_in_key = 0x7c1f9a3be2645d08; // writer and reader of a log must share it
constexpr char version_byte = 3;
constexpr int flag_compressed = 1;
constexpr int flag_checksum = 2;
constexpr int flag_hash = 4;
constexpr int checksum_size = 2;
constexpr int hash_size = 20;
constexpr int length_prefix_size = 4;
constexpr quint32 most_expansion = 1100; // zlib cannot expand a byte into more

QByteArray checksum_of(const QByteArray& data) {
    QByteArray block(checksum_size, '\0');
    qToBigEndian(qChecksum(data.constData(), static_cast<uint>(data.size())), block.data());
    return block;
}

QByteArray hash_of(const QByteArray& data) {
    return QCryptographicHash::hash(data, QCryptographicHash::Sha1);
}

// Checks and drops the integrity block in front of data.
bool take_integrity_block(QByteArray& data, int size, QByteArray (*compute)(const QByteArray&)) {
    if (data.size() < size) {
        return false;
    }
    const QByteArray stored = data.left(size);
    data.remove(0, size);
    return compute(data) == stored;
}

// False when the data cannot be expanded, or the length that it claims cannot be true: a forged one must not make us
// allocate gigabytes.
bool uncompress(QByteArray& data) {
    if (data.size() < length_prefix_size) {
        return false;
    }
    const auto claimed = qFromBigEndian<quint32>(data.constData());
    if (claimed / most_expansion > static_cast<quint32>(data.size())) {
        return false;
    }
    data = qUncompress(data);
    return claimed == 0 || !data.isEmpty();
}

} // namespace

encryptor_string::encryptor_string()
    : encryptor_string(static_cast<quint32>(QDateTime::currentMSecsSinceEpoch() & 0xffff)) {}

encryptor_string::encryptor_string(quint32 seed) : key(built_in_key), random(seed) {
    splitKey();
}

void encryptor_string::splitKey() {
    key_parts.clear();
    for (int i = 0; i < 8; ++i) {
        key_parts.append(static_cast<char>((key >> (8 * i)) & 0xff));
    }
}

bool encryptor_string::has_key() {
    if (!key_parts.isEmpty()) {
        return true;
    }
    qWarning("No key set.");
    last_error = no_key_set;
    return false;
}

QByteArray encryptor_string::encryptToByteArray(QByteArray plaintext) {
    if (!has_key()) {
        return {};
    }
    QByteArray data = plaintext;
    int flags = 0;
    if (compression_mode != compression_never) {
        const QByteArray compressed = qCompress(data, 9);
        if (compression_mode == compression_always || compressed.size() < data.size()) {
            data = compressed;
            flags |= flag_compressed;
        }
    }
    QByteArray block;
    if (protection_mode == protection_checksum) {
        block = checksum_of(data);
        flags |= flag_checksum;
    } else if (protection_mode == protection_hash) {
        block = hash_of(data);
        flags |= flag_hash;
    }
    data = QByteArray(1, static_cast<char>(random.generate() & 0xff)) + block + data;
    char previous = 0;
    for (int i = 0; i < data.size(); ++i) {
        previous = static_cast<char>(data.at(i) ^ previous ^ key_parts.at(i % 8));
        data[i] = previous;
    }
    last_error = no_error;
    return QByteArray(1, version_byte) + static_cast<char>(flags) + data;
}

QByteArray encryptor_string::decryptToByteArray(QByteArray ciphertext) {
    if (!has_key()) {
        return {};
    }
    if (ciphertext.size() < 3) {
        return {};
    }
    if (ciphertext.at(0) != version_byte) {
        last_error = unknown_version;
        qWarning("Invalid version or not a cyphertext.");
        return {};
    }
    const int flags = static_cast<unsigned char>(ciphertext.at(1));
    QByteArray data = ciphertext.mid(2);
    char previous = 0;
    for (int i = 0; i < data.size(); ++i) {
        const char enciphered = data.at(i);
        data[i] = static_cast<char>(enciphered ^ previous ^ key_parts.at(i % 8));
        previous = enciphered;
    }
    data.remove(0, 1);
    bool sound = true;
    if (flags & flag_checksum) {
        sound = take_integrity_block(data, checksum_size, checksum_of);
    } else if (flags & flag_hash) {
        sound = take_integrity_block(data, hash_size, hash_of);
    }
    if (sound && (flags & flag_compressed)) {
        sound = uncompress(data);
    }
    if (!sound) {
        last_error = integrity_failed;
        return {};
    }
    last_error = no_error;
    return data;
}

QByteArray encryptor_string::encryptToByteArray(QString plaintext) {
    return encryptToByteArray(plaintext.toUtf8());
}

QString encryptor_string::encryptToString(QByteArray plaintext) {
    return QString::fromLatin1(encryptToByteArray(plaintext).toBase64());
}

QString encryptor_string::encryptToString(QString plaintext) {
    return encryptToString(plaintext.toUtf8());
}

QByteArray encryptor_string::decryptToByteArray(QString ciphertext) {
    return decryptToByteArray(QByteArray::fromBase64(ciphertext.toLatin1()));
}

QString encryptor_string::decryptToString(QByteArray ciphertext) {
    return QString::fromUtf8(decryptToByteArray(ciphertext));
}

QString encryptor_string::decryptToString(QString ciphertext) {
    return QString::fromUtf8(decryptToByteArray(ciphertext));
}
