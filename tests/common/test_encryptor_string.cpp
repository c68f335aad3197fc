// SPDX-License-Identifier: MIT
// The log cipher: its format byte by byte, the round trip in every mode, and every kind of damage.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"

#include <QtTest>

class test_encryptor_string : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void round_trip_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("compression");
        QTest::addColumn<int>("protection");
        QTest::addColumn<int>("flags");
        const QString long_text(5000, QLatin1Char('x'));
        const QString umlauts = QStringLiteral("Übergrößen \U0001F98A");
        QTest::newRow("short text is not compressed") << QStringLiteral("abc") << 0 << 1 << 2;
        QTest::newRow("long text is") << long_text << 0 << 1 << 3;
        QTest::newRow("always compressed, hash") << QStringLiteral("abc") << 1 << 2 << 5;
        QTest::newRow("never compressed, unprotected") << long_text << 2 << 0 << 0;
        QTest::newRow("not ASCII") << umlauts << 0 << 1 << 2;
        QTest::newRow("empty") << QStringLiteral("") << 2 << 1 << 2;
    }
    void round_trip() {
        QFETCH(QString, text);
        QFETCH(int, compression);
        QFETCH(int, protection);
        QFETCH(int, flags);
        encryptor_string cipher(7);
        cipher.set_compression_mode(static_cast<encryptor_string::compression>(compression));
        cipher.set_protection_mode(static_cast<encryptor_string::protection>(protection));
        const QByteArray ciphertext = cipher.encryptToByteArray(text);
        QCOMPARE(int(ciphertext.at(0)), 3);
        QCOMPARE(int(ciphertext.at(1)), flags);
        encryptor_string reader(9);
        QCOMPARE(reader.decryptToString(ciphertext), text);
        QCOMPARE(reader.last_error_code(), int(encryptor_string::no_error));
        QCOMPARE(reader.decryptToString(cipher.encryptToString(text)), text);
    }

    // Undoes the chaining by hand from two known plaintexts: equal first bytes and keys give equal chains.
    void chaining_is_the_documented_xor() {
        encryptor_string cipher(1);
        cipher.set_compression_mode(encryptor_string::compression_never);
        cipher.set_protection_mode(encryptor_string::protection_none);
        const QByteArray body = cipher.encryptToByteArray(QByteArray(17, '\0')).mid(2);
        QCOMPARE(body.size(), 18);
        // With zero plaintext, body[i] ^ body[i - 1] is the key's byte i mod 8: it repeats after eight places.
        for (int i = 1; i + 8 < body.size(); ++i) {
            QCOMPARE(body.at(i) ^ body.at(i - 1), body.at(i + 8) ^ body.at(i + 7));
        }
    }

    void seeds_make_ciphertexts_differ() {
        const QString text = QStringLiteral("the same text");
        const QString first = encryptor_string(1).encryptToString(text);
        const QString second = encryptor_string(2).encryptToString(text);
        QVERIFY(first != second);
        QCOMPARE(encryptor_string(3).decryptToString(first), text);
        QCOMPARE(encryptor_string(3).decryptToString(second), text);
    }

    void damage_data() {
        QTest::addColumn<int>("protection");
        QTest::addColumn<int>("cut_to");
        QTest::addColumn<int>("flip_at");
        QTest::addColumn<int>("error");
        const int whole = 1000;
        QTest::newRow("flipped body, checksum") << 1 << whole << 9 << int(encryptor_string::integrity_failed);
        QTest::newRow("flipped body, hash") << 2 << whole << 30 << int(encryptor_string::integrity_failed);
        QTest::newRow("checksum cut off") << 1 << 4 << -1 << int(encryptor_string::integrity_failed);
        QTest::newRow("hash cut off") << 2 << 12 << -1 << int(encryptor_string::integrity_failed);
        QTest::newRow("other version") << 1 << whole << 0 << int(encryptor_string::unknown_version);
        QTest::newRow("two bytes") << 1 << 2 << -1 << int(encryptor_string::no_error);
    }
    void damage() {
        QFETCH(int, protection);
        QFETCH(int, cut_to);
        QFETCH(int, flip_at);
        QFETCH(int, error);
        encryptor_string cipher(5);
        cipher.set_protection_mode(static_cast<encryptor_string::protection>(protection));
        QByteArray ciphertext =
            cipher.encryptToByteArray(QStringLiteral("one line of the log, not too short")).left(cut_to);
        if (flip_at >= 0) {
            ciphertext[flip_at] = static_cast<char>(ciphertext.at(flip_at) ^ 0x10);
        }
        if (error == encryptor_string::unknown_version) {
            QTest::ignoreMessage(QtWarningMsg, "Invalid version or not a cyphertext.");
        }
        QCOMPARE(cipher.decryptToByteArray(ciphertext), QByteArray());
        QCOMPARE(cipher.last_error_code(), error);
    }

    // A forged length in front of compressed data must not be believed.
    void forged_length_is_refused() {
        encryptor_string cipher(5);
        cipher.set_compression_mode(encryptor_string::compression_never);
        cipher.set_protection_mode(encryptor_string::protection_none);
        QByteArray ciphertext = cipher.encryptToByteArray(QByteArray("\x7f\xff\xff\xff zip", 8));
        ciphertext[1] = 1; // says "compressed"
        QCOMPARE(cipher.decryptToByteArray(ciphertext), QByteArray());
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::integrity_failed));
    }

    void static_entry() {
        QCOMPARE(plugin_static_function::encrypt_string(QString(), QString()), QStringLiteral(""));
        const QString text = QStringLiteral("a line");
        const QString enciphered = plugin_static_function::encrypt_string(text, QStringLiteral("caller"));
        QCOMPARE(encryptor_string().decryptToString(enciphered), text);
    }
};

QTEST_GUILESS_MAIN(test_encryptor_string)
#include "test_encryptor_string.moc"
