// SPDX-License-Identifier: MIT
// Output that cannot grow beyond some size, as on a disk that fills: the run says so, and what an earlier one left
// stays.
#include "fuzz/mutated_runs.h"
#include "host_case.h"
#include "samples/sample_source.h"

#include <QtTest>

#include <sys/resource.h>

namespace {

const auto with_all_below = std::filesystem::copy_options::recursive;

// The result folder as the earlier run left it.
void keep(const host_case& host) {
    std::filesystem::copy(host.result().constData(), (host.base() + "/kept").constData(), with_all_below);
}
void put_back(const host_case& host) {
    std::filesystem::remove_all(host.result().constData());
    std::filesystem::copy((host.base() + "/kept").constData(), host.result().constData(), with_all_below);
}

} // namespace

class test_full_disk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void earlier_runs_stay_data() {
        QTest::addColumn<QString>("option");
        QTest::addColumn<bool>("has_earlier");
        QTest::newRow("rows are added") << "" << true;
        QTest::newRow("cleared") << "--clear" << true;
        QTest::newRow("first run") << "" << false;
    }
    void earlier_runs_stay() {
        QFETCH(QString, option);
        QFETCH(bool, has_earlier);
        constexpr int step = 96 * 1024;
        const host_case host;
        QVERIFY(write_sample_source(QString::fromUtf8(host.source())));
        host.make_folders(host.result());
        QVERIFY(!has_earlier || host.extract().code == 0);
        const QString folder = QString::fromUtf8(host.result()) + "/Artifacts_Result/Cortana/"_q;
        const QString database = QString::fromUtf8(host.database());
        const auto earlier = rows_by_profile(database);
        keep(host);
        for (int number = 0; number < 150; ++number) {
            host.add_recording("anna", QByteArray::number(number) + ".wav");
            host.add_recording("bernd", QByteArray::number(number) + ".wav");
        }
        const QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        host_answer answer{5, {}, {}};
        int limit = 0;
        for (; answer.code == 5 && limit < 64 * step; limit += step) {
            put_back(host);
            answer = host.extract(option, [limit] {
                const rlimit both{static_cast<rlim_t>(limit), static_cast<rlim_t>(limit)};
                ::setrlimit(RLIMIT_FSIZE, &both);
            });
            if (answer.code != 5) {
                break;
            }
            QVERIFY2(answer.error.contains(host.result()), answer.error.constData());
            const auto left = rows_by_profile(database);
            for (const QString& profile : earlier.keys()) {
                QVERIFY(left.value(profile).size() >= earlier.value(profile).size());
            }
            if (option == "--clear"_q) {
                QCOMPARE(left, earlier);
            }
            // What stands under its own name is whole.
            QVERIFY(!QFile::exists(database) || QFileInfo(database).size() > 0);
            QVERIFY(!QFile::exists(folder + "run.json"_q) ||
                    !QJsonDocument::fromJson(whole_file(folder + "run.json"_q)).isNull());
            for (const QString& name : QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
                QVERIFY2(!has_earlier || names.contains(name) || name.startsWith("run-"_q), qPrintable(name));
            }
        }
        QVERIFY2(answer.code == 0, answer.error.constData());
        QVERIFY(limit > 3 * step);
        QVERIFY(rows_by_profile(database).value("anna"_q).size() >= 150);
    }
};

QTEST_GUILESS_MAIN(test_full_disk)
#include "test_full_disk.moc"
