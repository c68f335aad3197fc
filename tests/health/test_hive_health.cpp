// SPDX-License-Identifier: MIT
// Hives in chunks of any size. The kinds of damage to a hive are told in the test of the look
// over the evidence.
#include "checked_file.h"
#include "samples/sample_source.h"

#include <QtTest>

namespace {

constexpr int sector = 512;

void put(QByteArray& bytes, int offset, quint32 number) {
    put_le(bytes.data() + offset, number);
}

// The first sector of a hive or log with its checksum.
QByteArray base_block(quint32 type, quint32 primary, quint32 secondary, quint64 written = 77) {
    QByteArray block(sector, '\0');
    block.replace(0, 4, "regf");
    put(block, 4, primary);
    put(block, 8, secondary);
    put_le(block.data() + 12, written);
    put(block, 20, 1);
    put(block, 28, type);
    put(block, 44, 1);
    quint32 sum = 0;
    for (int offset = 0; offset < 508; offset += 4) {
        sum ^= get_le<quint32>(block.constData() + offset);
    }
    put(block, 508, sum);
    return block;
}

QByteArray changed(QByteArray bytes, int offset) {
    bytes[offset] = static_cast<char>(bytes[offset] ^ 1);
    return bytes;
}

} // namespace

class test_hive_health : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chunks_do_not_matter() {
        const QTemporaryDir folder;
        QVERIFY(write_sample_hive({folder.path() + QLatin1Char('/'), QStringLiteral("anna"), 0}));
        QFile file(folder.filePath(QStringLiteral("Users/anna/NTUSER.DAT")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray hive = file.readAll();
        const int root = get_le<qint32>(hive.constData() + 36) + 0x1004;
        QByteArray long_cell = hive;
        put(long_cell, 0x1020, 0x3000); // longer than its block
        const QString block = QStringLiteral("a block of the registry hive is damaged or missing");
        for (const auto& [bytes, problem] :
             {std::pair(hive, QString()), std::pair(changed(hive, 0x2021), block),
              std::pair(hive.left(hive.size() - 1), block), std::pair(hive.left(0x2000), block),
              std::pair(long_cell, block),
              std::pair(changed(hive, root), QStringLiteral("the root key of the registry hive is damaged"))}) {
            for (const int chunk : {1, 3, 511, 4096, 4097, 1 << 20}) {
                const file_health health = checked(registry_hive_checker(), bytes, chunk);
                QCOMPARE(health.problem, problem);
                QCOMPARE(health.size, qint64{bytes.size()});
                QCOMPARE(health.hive->bins_size, qint64{hive.size()} - 0x1000);
            }
        }
    }

    void more_than_is_read_of_a_hive() {
        const QTemporaryDir folder;
        QVERIFY(write_sample_hive({folder.path() + QLatin1Char('/'), QStringLiteral("anna"), 0}));
        QFile file(folder.filePath(QStringLiteral("Users/anna/NTUSER.DAT")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray hive = file.readAll();
        const QByteArray zeros(1 << 20, '\0');
        for (const qint64 size : {qint64{0x7fffffff}, qint64{0x80000000}}) {
            const auto checker = registry_hive_checker();
            checker->take(hive.constData(), hive.size());
            for (qint64 left = size - hive.size(); left > 0; left -= zeros.size()) {
                checker->take(zeros.constData(), qMin(left, qint64{zeros.size()}));
            }
            const QString problem = QStringLiteral("it is larger than the 2 GiB that are read of a registry hive");
            QCOMPARE(checker->finish().problem, size > 0x7fffffff ? problem : QString());
        }
    }

    void facts() {
        constexpr quint64 new_year_2020 = 132223104000000000;
        const file_health health = checked(registry_hive_checker(), base_block(0, 12, 11, new_year_2020 + 1230000));
        QCOMPARE(health.hive->primary_sequence, 12U);
        QCOMPARE(health.hive->secondary_sequence, 11U);
        QCOMPARE(health.hive->last_written, QStringLiteral("2020-01-01T00:00:00.123Z"));
        QCOMPARE(health.problem, QStringLiteral("the registry hive is cut off"));
    }
};

QTEST_GUILESS_MAIN(test_hive_health)
#include "test_hive_health.moc"
