// SPDX-License-Identifier: MIT
// The log cipher: its format byte by byte, the round trip in every mode, and every kind of damage.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_text.h"

#include <QCryptographicHash>
#include <QtTest>

class test_encryptor_string : public QObject {
    Q_OBJECT

    static encryptor_string cipher_with(int compression, int protection, quint32 seed = 7) {
        encryptor_string cipher(seed);
        cipher.set_compression_mode(static_cast<encryptor_string::compression>(compression));
        cipher.set_protection_mode(static_cast<encryptor_string::protection>(protection));
        return cipher;
    }
    static encryptor_string bare_cipher() {
        return cipher_with(encryptor_string::compression_never, encryptor_string::protection_none);
    }

private Q_SLOTS:
    void round_trip_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("compression");
        QTest::addColumn<int>("protection");
        QTest::addColumn<int>("flags");
        const QString long_text(5000, QLatin1Char('x'));
        const QString umlauts = "Übergrößen \U0001F98A"_q;
        QTest::newRow("short text is not compressed") << "abc"_q << 0 << 1 << 2;
        QTest::newRow("long text is") << long_text << 0 << 1 << 3;
        QTest::newRow("always compressed, hash") << "abc"_q << 1 << 2 << 5;
        QTest::newRow("never compressed, unprotected") << long_text << 2 << 0 << 0;
        QTest::newRow("not ASCII") << umlauts << 0 << 1 << 2;
        QTest::newRow("empty") << ""_q << 2 << 1 << 2;
    }
    void round_trip() {
        QFETCH(QString, text);
        QFETCH(int, compression);
        QFETCH(int, protection);
        QFETCH(int, flags);
        encryptor_string cipher = cipher_with(compression, protection);
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
        const QByteArray zeros = bare_cipher().encryptToByteArray(QByteArray(16, '\0')).mid(2);
        QByteArray key(8, '\0');
        for (int i = 1; i <= 8; ++i) {
            key[i % 8] = static_cast<char>(zeros.at(i) ^ zeros.at(i - 1));
        }
        QVERIFY(key != QByteArray(8, '\0'));

        encryptor_string cipher = cipher_with(compression, protection);
        const QByteArray chained = cipher.encryptToByteArray(QByteArray("abc")).mid(2);
        QByteArray data;
        for (int i = 0; i < chained.size(); ++i) {
            data += static_cast<char>(chained.at(i) ^ (i > 0 ? chained.at(i - 1) : 0) ^ key.at(i % 8));
        }
        QCOMPARE(data.at(0), static_cast<char>(QRandomGenerator(7).generate() & 0xff));
        QCOMPARE(data.mid(1), below);
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
        QTest::newRow("two bytes") << 1 << 2 << -1 << int(encryptor_string::no_error);
    }
    void damage() {
        QFETCH(int, protection);
        QFETCH(int, cut_to);
        QFETCH(int, flip_at);
        encryptor_string cipher = cipher_with(encryptor_string::compression_auto, protection);
        QByteArray ciphertext = cipher.encryptToByteArray("one line of the log, not too short"_q).left(cut_to);
        if (flip_at >= 0) {
            ciphertext[flip_at] = static_cast<char>(ciphertext.at(flip_at) ^ 0x10);
        }
        QCOMPARE(cipher.decryptToByteArray(ciphertext), QByteArray());
        QTEST(cipher.last_error_code(), "error");
    }

    void damaged_compression_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("tried");
        QTest::newRow("forged length, not to be believed") << QByteArray("\x7f\xff\xff\xff zip", 8) << false;
        QTest::newRow("no zlib stream") << QByteArray("\0\0\0\x05 no zlib", 12) << true;
    }
    void damaged_compression() {
        QFETCH(QByteArray, content);
        QFETCH(bool, tried);
        encryptor_string cipher = bare_cipher();
        QByteArray ciphertext = cipher.encryptToByteArray(content);
        ciphertext[1] = 1; // says "compressed"
        if (tried) {
            QTest::ignoreMessage(QtWarningMsg, "qUncompress: Z_DATA_ERROR: Input data is corrupted");
        }
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

    void static_entry() {
        QCOMPARE(plugin_static_function::encrypt_string(QString(), QString()), ""_q);
        const QString text = "a line"_q;
        const QString enciphered = plugin_static_function::encrypt_string(text, "caller"_q);
        QCOMPARE(encryptor_string().decryptToString(enciphered), text);
    }
};

QTEST_GUILESS_MAIN(test_encryptor_string)
#include "test_encryptor_string.moc"
