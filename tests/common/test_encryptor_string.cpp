// SPDX-License-Identifier: MIT
// The log cipher: its format byte by byte, the round trip in every mode, and every kind of damage.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"

#include <QCryptographicHash>
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

    void bytes_below_the_chaining_data() {
        QTest::addColumn<int>("compression");
        QTest::addColumn<int>("protection");
        QTest::addColumn<QByteArray>("below"); // what follows the random byte
        const QByteArray compressed = qCompress(QByteArray("abc"), 9);
        const quint16 checksum = qChecksum("abc", 3);
        QByteArray big_endian;
        big_endian.append(static_cast<char>(checksum >> 8)).append(static_cast<char>(checksum & 0xff));
        QTest::newRow("plain") << 2 << 0 << QByteArray("abc");
        QTest::newRow("checksum in front") << 2 << 1 << big_endian + "abc";
        QTest::newRow("hash in front, over what is compressed")
            << 1 << 2 << QCryptographicHash::hash(compressed, QCryptographicHash::Sha1) + compressed;
    }
    // A plaintext of zeros gives the key away: each byte is the one before it XOR the key's byte at its place.
    void bytes_below_the_chaining() {
        QFETCH(int, compression);
        QFETCH(int, protection);
        QFETCH(QByteArray, below);
        encryptor_string bare(1);
        bare.set_compression_mode(encryptor_string::compression_never);
        bare.set_protection_mode(encryptor_string::protection_none);
        const QByteArray zeros = bare.encryptToByteArray(QByteArray(16, '\0')).mid(2);
        QByteArray key(8, '\0');
        for (int i = 1; i <= 8; ++i) {
            key[i % 8] = static_cast<char>(zeros.at(i) ^ zeros.at(i - 1));
        }
        QVERIFY(key != QByteArray(8, '\0'));

        encryptor_string cipher(7);
        cipher.set_compression_mode(static_cast<encryptor_string::compression>(compression));
        cipher.set_protection_mode(static_cast<encryptor_string::protection>(protection));
        const QByteArray chained = cipher.encryptToByteArray(QByteArray("abc")).mid(2);
        QByteArray data;
        for (int i = 0; i < chained.size(); ++i) {
            data += static_cast<char>(chained.at(i) ^ (i > 0 ? chained.at(i - 1) : 0) ^ key.at(i % 8));
        }
        QCOMPARE(data.at(0), static_cast<char>(QRandomGenerator(7).generate() & 0xff));
        QCOMPARE(data.mid(1), below);
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

    void compressed_data_that_is_no_zlib_stream() {
        encryptor_string cipher(5);
        cipher.set_compression_mode(encryptor_string::compression_never);
        cipher.set_protection_mode(encryptor_string::protection_none);
        QByteArray ciphertext = cipher.encryptToByteArray(QByteArray("\0\0\0\x05 no zlib", 12));
        ciphertext[1] = 1; // says "compressed"
        QTest::ignoreMessage(QtWarningMsg, "qUncompress: Z_DATA_ERROR: Input data is corrupted");
        QCOMPARE(cipher.decryptToByteArray(ciphertext), QByteArray());
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::integrity_failed));
    }

    // What is too short to be a ciphertext leaves the code; the next success clears it.
    void error_code_stays_until_success() {
        encryptor_string cipher(5);
        const QString ours = cipher.encryptToString(QStringLiteral("a line"));
        QTest::ignoreMessage(QtWarningMsg, "Invalid version or not a cyphertext.");
        QCOMPARE(cipher.decryptToString(QStringLiteral("BAAA")), QString()); // Base64 of 4, 0, 0
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::unknown_version));
        QCOMPARE(cipher.decryptToString(QStringLiteral("AwA=")), QString()); // 3, 0
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::unknown_version));
        QCOMPARE(cipher.decryptToString(ours), QStringLiteral("a line"));
        QCOMPARE(cipher.last_error_code(), int(encryptor_string::no_error));
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
