// SPDX-License-Identifier: MIT
// The log cipher: its format byte by byte, the round trip in every mode, and every kind of damage.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_text.h"

#include <QtTest>

class test_encryptor_string : public QObject {
    Q_OBJECT

    static encryptor_string cipher_with(int compression, int protection) {
        encryptor_string cipher(7);
        cipher.set_compression_mode(static_cast<encryptor_string::compression>(compression));
        cipher.set_protection_mode(static_cast<encryptor_string::protection>(protection));
        return cipher;
    }

private Q_SLOTS:
    void round_trip_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("compression");
        QTest::addColumn<int>("protection");
        QTest::addColumn<int>("flags");
        const QString long_text(5000, QLatin1Char('x'));
        QTest::newRow("short text is not compressed") << "abc"_q << 0 << 1 << 2;
        QTest::newRow("long text is") << long_text << 0 << 1 << 3;
        QTest::newRow("always compressed, hash") << "abc"_q << 1 << 2 << 5;
        QTest::newRow("never compressed, unprotected") << long_text << 2 << 0 << 0;
        QTest::newRow("not ASCII") << "Übergrößen \U0001F98A"_q << 0 << 1 << 2;
        QTest::newRow("empty") << ""_q << 2 << 1 << 2;
    }
    void round_trip() {
        QFETCH(QString, text);
        QFETCH(int, compression);
        QFETCH(int, protection);
        encryptor_string cipher = cipher_with(compression, protection);
        const QByteArray ciphertext = cipher.encryptToByteArray(text);
        QTEST(int(ciphertext.at(1)), "flags");
        encryptor_string reader(9);
        QCOMPARE(reader.decryptToString(ciphertext), text);
        QCOMPARE(reader.last_error_code(), int(encryptor_string::no_error));
        QCOMPARE(reader.decryptToString(cipher.encryptToString(text)), text);
    }

    // Logs that were written once must stay readable, so the bytes are what they were.
    void format() {
        const QByteArray text = "abc";
        QCOMPARE(cipher_with(2, 1).encryptToByteArray(text).toHex(), QByteArray("0302e52667e4bd44"));
        QCOMPARE(cipher_with(2, 2).encryptToByteArray(text).toHex(),
                 QByteArray("0304e511ec303de0f9046681db1c56b4fb4521e0546ec8334e51"));
        // The hash is over what is compressed. This one is only read: another zlib may compress otherwise.
        const char* const compressed = "0305e5fd3bf571240accf744c2241c30fc6b9f98597135afb0ccc7e25cf582524b373d2d488d";
        QCOMPARE(encryptor_string(9).decryptToByteArray(QByteArray::fromHex(compressed)), text);
    }

    void damage_data() {
        QTest::addColumn<QByteArray>("ciphertext");
        const QByteArray checked = cipher_with(0, 1).encryptToByteArray("one line of the log, not too short"_q);
        const QByteArray hashed = cipher_with(0, 2).encryptToByteArray("one line of the log, not too short"_q);
        QTest::newRow("changed body, checksum") << QByteArray(checked).replace(9, 1, "?");
        QTest::newRow("changed body, hash") << QByteArray(hashed).replace(30, 1, "?");
        QTest::newRow("checksum cut off") << checked.left(4);
        QTest::newRow("hash cut off") << hashed.left(12);
        const auto not_compressed = [](const QByteArray& content) {
            return cipher_with(2, 0).encryptToByteArray(content).replace(1, 1, "\x01"); // says "compressed"
        };
        // What follows the length would expand.
        QTest::newRow("forged length, not to be believed")
            << not_compressed(QByteArray::fromHex("10000000") + qCompress(QByteArray("abc")).mid(4));
        QTest::newRow("no zlib stream") << not_compressed(QByteArray("\0\0\0\x05 no zlib", 12));
    }
    void damage() {
        QFETCH(QByteArray, ciphertext);
        if (QByteArray(QTest::currentDataTag()) == "no zlib stream") {
            QTest::ignoreMessage(QtWarningMsg, "qUncompress: Z_DATA_ERROR: Input data is corrupted");
        }
        encryptor_string cipher(9);
        QCOMPARE(cipher.decryptToByteArray(ciphertext), QByteArray());
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::integrity_failed));
    }

    // What is too short to be a ciphertext leaves the code; the next success clears it.
    void error_code_stays_until_success() {
        encryptor_string cipher(5);
        const QString ours = cipher.encryptToString("a line"_q);
        QTest::ignoreMessage(QtWarningMsg, "Invalid version or not a cyphertext.");
        QCOMPARE(cipher.decryptToString("BAAA"_q), QString()); // Base64 of 4, 0, 0
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::unknown_version));
        QCOMPARE(cipher.decryptToString("AwA="_q), QString()); // 3, 0
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::unknown_version));
        QCOMPARE(cipher.decryptToString(ours), "a line"_q);
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::no_error));
    }

    void nothing_stays_nothing() { QCOMPARE(plugin_static_function::encrypt_string(QString(), QString()), ""_q); }
};

QTEST_GUILESS_MAIN(test_encryptor_string)
#include "test_encryptor_string.moc"
