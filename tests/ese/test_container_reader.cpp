// SPDX-License-Identifier: MIT
// The WebCache readers on real files: both kinds of table, odd values.
#include "ese/cache.h"
#include "ese/domstore.h"
#include "samples/webcache_schema.h"
#include "tests/ese/ese_files.h"

#include <QtTest>

#include <algorithm>
#include <iterator>

namespace {

const QString containers = QStringLiteral("Containers");
const QString container_1 = QStringLiteral("Container_1");
const QStringList two_names{QStringLiteral("ABCD1234"), QStringLiteral("EFGH5678")};

QStringList repeated(const QStringList& list, int copies) {
    QStringList all;
    for (int copy = 0; copy < copies; ++copy) {
        all += list;
    }
    return all;
}

} // namespace

class test_container_reader : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString file() const { return folder.path() + QStringLiteral("/WebCacheV01.dat"); }

    void write_containers(const std::vector<webcache_container>& rows) const {
        ese_writer writer(QFile::encodeName(file()).constData());
        write_webcache_containers(writer, rows);
        writer.close();
    }
    // Entries named "0", "1", ...
    void write_numbered(int count) const {
        std::vector<webcache_entry> rows;
        for (int number = 0; number < count; ++number) {
            rows.push_back({std::to_string(number), "https://münchen/🦊"});
        }
        ese_writer writer(QFile::encodeName(file()).constData());
        write_webcache_entries(writer, 1, rows);
        writer.close();
    }

private Q_SLOTS:
    void container_texts_data() {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("directory");
        const auto row = [](const char* what, const QByteArray& stored, const QByteArray& name,
                            const QByteArray& path) {
            QTest::newRow(what) << stored << QString::fromUtf8(name) << QString::fromUtf8(path);
        };
        row("both slashes, blanks", R"( C:/a\\b )", R"( C:/a\\b )", " C:/a//b ");
        row("letters beyond ASCII", R"(C:\Mü\)", R"(C:\Mü\)", "C:/M\u00c3\u00bc/");
        row("cut at NUL", QByteArray("C:\\a\0b", 6), R"(C:\a)", "C:/a");
        row("long value", QByteArray("C:\\").repeated(12000), R"(C:\)", QByteArray("C:/").repeated(12000));
    }

    void container_texts() {
        QFETCH(QByteArray, stored);
        // "Name" is no large column: it has no long values.
        const QByteArray name = stored.size() > 1000 ? stored.left(3) : stored;
        write_containers({{77, name.toStdString(), stored.toStdString(), ""}, {-1, nullptr, nullptr, nullptr}});
        cache reader;
        QCOMPARE(reader.start_parsing(file(), containers), 0);
        QCOMPARE(reader.list_container_data.size(), 2);
        const auto& filled = reader.list_container_data.at(0);
        QCOMPARE(filled.container_id, QStringLiteral("77"));
        QTEST(filled.name, "name");
        QTEST(filled.directory, "directory");
        const auto& null_texts = reader.list_container_data.at(1);
        QCOMPARE(null_texts.container_id, QStringLiteral("-1"));
        QVERIFY(null_texts.name.isEmpty() && !null_texts.name.isNull());
        QVERIFY(null_texts.directory.isEmpty() && !null_texts.directory.isNull());
    }

    void secure_directories_data() {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QStringList>("names");
        const QStringList one_name{two_names.at(0)};
        QTest::newRow("one") << QByteArray("ABCD1234") << one_name;
        QTest::newRow("two") << QByteArray("ABCD1234EFGH5678") << two_names;
        QTest::newRow("half a name more") << QByteArray("ABCD1234EFGH") << QStringList();
        QTest::newRow("none") << QByteArray() << QStringList();
        QTest::newRow("cut at NUL") << QByteArray("ABCD1234\0FGH5678", 16) << one_name;
        QTest::newRow("eight letters, nine bytes") << QByteArray("ABCD123\xc3\xa4") << QStringList();
        QTest::newRow("long value") << QByteArray("ABCD1234EFGH5678").repeated(2000) << repeated(two_names, 2000);
    }

    void secure_directories() {
        QFETCH(QByteArray, stored);
        write_containers({{1, "Content", "d", stored.toStdString()}});
        cache reader;
        reader.start_parsing(file(), containers);
        QCOMPARE(reader.list_container_data.size(), 1);
        QTEST(reader.list_container_data.at(0).secure_directories, "names");
    }

    void every_value_adds_the_names_again() {
        write_numbered(3);
        domstore reader;
        reader.start_parsing(file(), container_1, QStringLiteral("d"), two_names);
        QCOMPARE(reader.list_ano_data.size(), 3);
        for (const auto& record : qAsConst(reader.list_ano_data)) {
            QCOMPARE(record.container_secure_directories, repeated(two_names, 25));
            QCOMPARE(record.url, QStringLiteral("https://m\u00fcnchen/\U0001F98A"));
        }
        // Kept once for all of them.
        QVERIFY(reader.list_ano_data.at(0).container_secure_directories.isSharedWith(
            reader.list_ano_data.at(2).container_secure_directories));

        specific_table::struct_ano_data record;
        reader.current_ano_data = &record;
        for (int visit = 1; visit <= 2; ++visit) {
            reader.get_record_values(nullptr, nullptr, QStringLiteral("Other"), 0, 0, QStringLiteral("e"), two_names);
            QCOMPARE(record.container_secure_directories, repeated(two_names, visit));
            QCOMPARE(record.container_directory, QStringLiteral("e"));
        }
    }

    void lists_of_different_containers_stay_apart() {
        write_numbered(1);
        const QStringList other_names{QStringLiteral("ABCD1234"),
                                      QStringLiteral("other678")}; // same number, same first
        cache reader;
        for (const QStringList& names : {two_names, other_names, QStringList(), two_names}) {
            reader.start_parsing(file(), container_1, QStringLiteral("d"), names);
            QCOMPARE(reader.list_ano_data.last().container_secure_directories, repeated(names, 25));
        }
        QCOMPARE(reader.list_ano_data.size(), 4);
    }

    // A damaged file chooses both numbers.
    void copies_end_at_a_limit() {
        write_numbered(1);
        constexpr int limit = container_reader::most_repeated_names;
        constexpr int copies = 25;
        constexpr int all_copies_fit = 100000;
        for (const int count : {all_copies_fit, limit / 10, limit + 1}) {
            QStringList names;
            std::fill_n(std::back_inserter(names), count, two_names.first());
            cache reader;
            reader.start_parsing(file(), container_1, QStringLiteral("d"), names);
            QCOMPARE(reader.list_ano_data.value(0).container_secure_directories.size(),
                     count * qBound(1, limit / count, copies));
        }
    }

    void rows_without_values_have_no_names() {
        write_ese(file(), {{"Container_1", {}, {{}, {}}},
                           {"Container_2", {test_column("Letter", ese_type::unsigned_8)}, {{1}, {2}}}});
        cache reader;
        reader.start_parsing(file(), container_1, QStringLiteral("d"), two_names);
        reader.start_parsing(file(), QStringLiteral("Container_2"), QStringLiteral("d"), two_names);
        QCOMPARE(reader.list_ano_data.size(), 4);
        const int copies[] = {0, 0, 1, 1}; // one for each column
        for (int row = 0; row < 4; ++row) {
            QCOMPARE(reader.list_ano_data.at(row).container_secure_directories, repeated(two_names, copies[row]));
        }
    }
};

QTEST_APPLESS_MAIN(test_container_reader)
#include "test_container_reader.moc"
