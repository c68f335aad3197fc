// SPDX-License-Identifier: MIT
// The base walk over written hives: the bare class, and one that notes what the hook is offered.
#include "registry/registry.h"
#include "tests/registry/hive_fixture.h"
#include "tests/support/virtual_slot.h"

#include <QtTest>

namespace {

// Notes each offered value as name@timestamp of the walk.
class noting_walker : public registry {
public:
    void find_node_value_length(hive_h* hive, hive_value_h value, QString value_name) override {
        QVERIFY(current_record != nullptr);
        visited << value_name + QLatin1Char('@') + node_timestamp;
        texts << convert_data(hive, value);
    }
    // Walks below one key of a file with these bytes.
    void walk(const QByteArray& bytes, const QString& key_path = q("start")) {
        const hive_file file(bytes);
        QCOMPARE(start_registry_parse(file.path(), key_path, false), 0);
    }
    using registry::current_record;
    using registry::node_name;
    QStringList visited;
    QStringList texts;
};

constexpr qint64 ticks_before_1970 = 116444736000000000;

// A value named like its key, last written the given number of seconds after 1970 (-1: FILETIME 0).
hive_writer::key add(hive_writer& hive, const QString& path, qint64 seconds) {
    const auto key = hive.add_path(path);
    hive.set_values(key, {value_of(path.section(QLatin1Char('\\'), -1))});
    hive.set_time(key, seconds < 0 ? 0 : ticks_before_1970 + seconds * 10000000);
    return key;
}

QByteArray walked_hive() {
    hive_writer hive;
    for (const QString& key : // "namf" becomes "name"
         list_of("start@1|start\\zebra@-1|start\\Name@11|start\\namf@12|start\\tree@13|start\\tree\\two@14|"
                 "start\\tree\\one@15|start\\tree\\one\\a@16|start\\tree\\one\\B@17|start\\tree\\one\\a\\below a@18|"
                 "start\\tree\\one\\B\\below B@19|Gr\u00fc\u00dfe\\\u4f60\u00e9@20")) {
        add(hive, key.section(QLatin1Char('@'), 0, 0), key.section(QLatin1Char('@'), 1).toLongLong());
    }
    QByteArray bytes = hive.bytes();
    hive_damage::replace_bytes(bytes, "namf", "name");
    return bytes;
}

} // namespace

class test_registry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void walk_data() {
        QTest::addColumn<QString>("key_path");
        QTest::addColumn<bool>("only_this_key");
        QTest::addColumn<int>("records");
        QTest::addColumn<QStringList>("visited");
        const auto row = [](const char* name, const char* path, bool only, int records, const char* visited) {
            QTest::newRow(name) << q(path) << only << records << list_of(visited);
        };
        const char* const below_start =
            "Name@11|name@12|one@15|a@15|B@15|below B@15|below a@15|two@14|zebra@-11644473600";
        row("leading backslash", "\\start", false, 5, below_start);
        row("other case", "START", false, 5, below_start);
        row("leaves only", "start\\tree\\one\\a", false, 1, "below a@18");
        row("only this key", "start\\tree", true, 1, "tree@");
        row("missing second part", "start\\none\\one", false, 0, "");
        row("missing, only this key", "none", true, 0, "");
        row("no subkeys", "start\\zebra", false, 0, "");
        // Of the root's grandchildren on, "tree" and what is below it is visited too.
        row("root", "\\", false, 5,
            "\u00e4\u00bd\u00a0\u00c3\u00a9@20|Name@11|name@12|tree@13|one@13|two@13|a@13|B@13|below B@13|below a@13|"
            "zebra@-11644473600");
    }
    void walk() {
        QFETCH(QString, key_path);
        QFETCH(bool, only_this_key);
        QFETCH(int, records);
        const hive_file file(walked_hive());
        registry bare;
        QCOMPARE(bare.start_registry_parse(file.path(), key_path, only_this_key), 0);
        QCOMPARE(bare.record_list.size(), records);
        noting_walker walker;
        QCOMPARE(walker.start_registry_parse(file.path(), key_path, only_this_key), 0);
        QTEST(walker.visited, "visited");
        QVERIFY(walker.current_record == nullptr);
        QCOMPARE(walker.start_registry_parse(file.path(), key_path, only_this_key), 0);
        QCOMPARE(walker.record_list.size(), 2 * records); // the list is not emptied
    }

    void last_name_is_kept_as_utf8() {
        noting_walker walker;
        walker.walk(walked_hive(), q("Gr\u00fc\u00dfe"));
        QCOMPARE(walker.node_name, q("\u4f60\u00e9"));
    }

    void text_form_data() {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("text");
        QTest::newRow("UTF-16 ASCII") << utf16_text(q("weather")) << q("weather");
        QTest::newRow("bytes in the local encoding") << QByteArray("caf\xc3\xa9") << q("caf\u00e9");
        QTest::newRow("UTF-16 others are mangled") << utf16_text(q("\u6c34x")) << q("4lx");
        QTest::newRow("odd length") << QByteArray("a\0b", 3) << q("ab");
        QTest::newRow("zeros only") << QByteArray(4, '\0') << q("");
        QTest::newRow("no data") << QByteArray() << q("");
    }
    void text_form() {
        QFETCH(QByteArray, data);
        QFETCH(QString, text);
        hive_writer hive;
        hive.set_values(hive.add_path(q("start\\key")), {value_of(q("v"), data)});
        noting_walker walker;
        walker.walk(hive.bytes());
        QCOMPARE(walker.texts, QStringList{text});
        QVERIFY(!walker.texts.first().isNull());
    }

    void numbers() {
        QByteArray bytes = QByteArray::fromHex("8042358aac27d681");
        auto* data = reinterpret_cast<unsigned char*>(bytes.data());
        registry walker;
        QCOMPARE(walker.htoi(data, 0), 0x8a354280U);
        QCOMPARE(walker.htoll(data, 99), quint64(0x81d627ac8a354280));
        QCOMPARE(walker.epoc_time_conversion(QByteArray::fromHex("8042352aac27d601")), quint64(1589212345));
        // Missing bytes count as 0, and what is before 1970 wraps around.
        QCOMPARE(walker.epoc_time_conversion(QByteArray::fromHex("8042352a")), quint64(1833029933841));
    }

    void slot_order() {
        using text_member = QString (registry::*)(hive_h*, hive_value_h);
        using raw_member = QByteArray (registry::*)(hive_h*, hive_value_h, int);
        using type_member = hive_type (registry::*)(hive_h*, hive_value_h, QString);
        const QVector<int> entries{slot_of(&registry::start_registry_parse),
                                   slot_of(&registry::get_user_node_handle),
                                   slot_of(&registry::values_of_the_node),
                                   slot_of(&registry::run_only_multiple),
                                   slot_of(&registry::run_only_multiple_paths),
                                   slot_of(&registry::prepare_the_node_key_child),
                                   slot_of(&registry::htoi),
                                   slot_of(&registry::htoll),
                                   slot_of(&registry::epoc_time_conversion),
                                   slot_of<text_member>(&registry::convert_data),
                                   slot_of(&registry::run_only_multiple_recurse),
                                   slot_of(&registry::find_node_value_length),
                                   slot_of<raw_member>(&registry::convert_data),
                                   slot_of<type_member>(&registry::convert_data)};
        // The destructor takes the first two.
        QCOMPARE(entries, (QVector<int>{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    }

    void unreadable() {
        const hive_file file(QByteArray(20000, 'x'));
        const hive_file sound(walked_hive());
        registry walker;
        QCOMPARE(walker.start_registry_parse(sound.path(), QString(), false), -1);
        const hive_file large(walked_hive());
        QVERIFY(QFile::resize(large.path(), qint64{1} << 31)); // its node handles would not fit
        for (const QString& path :
             {QString(), file.path(), file.path() + q("x"), QFileInfo(file.path()).path(), large.path()}) {
            QCOMPARE(walker.start_registry_parse(path, q("start"), false), -1);
        }
    }

    // A key that is its own grandchild, and 40 levels of two keys each that share what is below them: 2^40 ways down.
    void loops_and_shared_lists_end() {
        hive_writer hive;
        const auto looped = add(hive, q("start\\tree\\loop"), 1);
        const auto inner = add(hive, q("start\\tree\\loop\\inner"), 2);
        QVector<QPair<hive_writer::key, hive_writer::key>> pairs{{looped, inner}};
        QString path = q("start\\tree\\shared");
        for (int level = 0; level < 40; ++level) {
            const auto second = add(hive, path + q("\\b"), 3);
            path += q("\\a");
            pairs.append({add(hive, path, 3), second});
        }
        QByteArray bytes = hive.bytes();
        for (const auto& pair : qAsConst(pairs)) {
            hive_damage::share_subkeys(bytes, pair.first, pair.second);
        }
        noting_walker walker;
        walker.walk(bytes);
        QVERIFY(walker.visited.size() > 10);
        QVERIFY(walker.visited.size() < bytes.size() / 12);
    }

    void keys_written_in_bulk_are_walked() {
        QStringList names;
        for (int number = 1000; number < 1120; ++number) {
            names << QString::number(number);
        }
        hive_writer hive;
        const auto start = hive.add_path(q("start"));
        const QVector<hive_writer::key> keys = hive.add_keys(start, names);
        for (int i = 0; i < names.size(); ++i) {
            hive.set_values(keys.at(i), {value_of(QString(), names.at(i).toUtf8())});
        }
        const hive_file file(hive.bytes());
        noting_walker walker;
        QCOMPARE(walker.start_registry_parse(file.path(), q("start"), false), 0);
        QCOMPARE(walker.texts, names);
        const hive_handle opened(hivex_open(QFile::encodeName(file.path()).constData(), 0));
        QCOMPARE(hivex_node_parent(opened.get(), keys.at(77)), start);
        QCOMPARE(registry().prepare_the_node_key_child(opened.get(), start, false).keys(), names); // without limits
    }

    void deep_hive_is_walked() {
        hive_writer hive;
        auto key = hive.add_path(q("start\\tree"));
        for (int level = 0; level < 10000; ++level) {
            key = hive.add_key(key, q("deeper"));
        }
        hive.set_values(key, {value_of(q("deepest"))});
        noting_walker walker;
        walker.walk(hive.bytes());
        QCOMPARE(walker.visited.size(), 1);
    }
};

QTEST_GUILESS_MAIN(test_registry)
#include "test_registry.moc"
