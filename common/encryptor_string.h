// SPDX-License-Identifier: MIT
// The cipher of enciphered debug logs: XOR with byte chaining under a built-in key, optional compression and integrity
// check, Base64 around it. It keeps a log from being read casually, no more.
//
// Ciphertext: byte 3 (version), a byte of flags (1 compressed, 2 checksum, 4 hash), then chained: one random byte, the
// integrity block (2 bytes big-endian CRC-16, 20 bytes SHA-1 or nothing), the plaintext (compressed or not).
#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>
#include <QVector>

class encryptor_string {
public:
    enum compression { compression_auto = 0, compression_always = 1, compression_never = 2 };
    enum protection { protection_none = 0, protection_checksum = 1, protection_hash = 2 };
    enum error { no_error = 0, no_key_set = 1, unknown_version = 2, integrity_failed = 3 };

    // Seeds from the low 16 bits of the clock's milliseconds.
    encryptor_string();
    explicit encryptor_string(quint32 seed);

    void set_compression_mode(compression mode) { compression_mode = mode; }
    void set_protection_mode(protection mode) { protection_mode = mode; }
    // One of error; set by every operation below, but for what is too short to be a ciphertext.
    int last_error_code() const { return last_error; }
    // key_parts[i] = byte i of key, least significant first.
    void splitKey();

    // Text forms encipher the UTF-8 bytes; ...ToString give Base64.
    QByteArray encryptToByteArray(QByteArray plaintext);
    QByteArray encryptToByteArray(QString plaintext);
    QString encryptToString(QByteArray plaintext);
    QString encryptToString(QString plaintext);
    // Text forms take Base64. An empty result with last_error_code() set tells a text that is not ours or was changed;
    // fewer than 3 bytes give an empty result and leave last_error_code() as it was.
    QByteArray decryptToByteArray(QByteArray ciphertext);
    QByteArray decryptToByteArray(QString ciphertext);
    QString decryptToString(QByteArray ciphertext);
    QString decryptToString(QString ciphertext);

private:
    bool has_key();

    quint64 key;
    QVector<char> key_parts;
    int compression_mode = compression_auto;
    int protection_mode = protection_checksum;
    int last_error = no_error;
    QRandomGenerator random;
};

// What stands between two records of an enciphered log file (there are no line breaks in it).
constexpr const char* enciphered_record_separator = "<[{()}]>";
