// SPDX-License-Identifier: MIT
// The base walk over written hives: the bare class, and one that notes what the hook is offered.
#include "registry/registry.h"
#include "tests/registry/hive_fixture.h"

#include <QProcess>
#include <QtTest>

#include <cstring>

namespace {

// Notes each offered value as name@timestamp of the walk, and the names of listed keys.
class noting_walker : public registry {
public:
    void find_node_value_length(hive_h* hive, hive_value_h value, QString value_name) override {
        QVERIFY(current_record != nullptr);
        visited << value_name + QLatin1Char('@') + node_timestamp;
        texts << convert_data(hive, value);
    }
    QMap<QString, int> prepare_the_node_key_child(hive_h* hive, hive_node_h node, bool visit_values) override {
        const QMap<QString, int> children = registry::prepare_the_node_key_child(hive, node, visit_values);
        listed += children.keys();
        return children;
    }
    using registry::current_record;
    using registry::node_name;
    QStringList visited;
    QStringList texts;
    QStringList listed;
};

constexpr qint64 ticks_before_1970 = 116444736000000000;
const QString base_call = QStringLiteral("--call-base-convert-data");

// A value named like its key, last written the given number of seconds after 1970 (-1: FILETIME 0).
hive_writer::key add(hive_writer& hive, const QString& path, qint64 seconds) {
    const auto key = hive.add_path(path);
    hive.set_values(key, {value_of(path.section(QLatin1Char('\\'), -1))});
    hive.set_time(key, seconds < 0 ? 0 : ticks_before_1970 + seconds * 10000000);
    return key;
}

QByteArray walked_hive() {
    hive_writer hive;
    add(hive, QStringLiteral("start"), 1);
    add(hive, QStringLiteral("start\\zebra"), -1);
    add(hive, QStringLiteral("start\\Name"), 11);
    add(hive, QStringLiteral("start\\namf"), 12); // becomes "name"
    add(hive, QStringLiteral("start\\tree"), 13);
    add(hive, QStringLiteral("start\\tree\\two"), 14);
    add(hive, QStringLiteral("start\\tree\\one"), 15);
    add(hive, QStringLiteral("start\\tree\\one\\a"), 16);
    add(hive, QStringLiteral("start\\tree\\one\\B"), 17);
    add(hive, QStringLiteral("start\\tree\\one\\a\\below a"), 18);
    add(hive, QStringLiteral("start\\tree\\one\\B\\below B"), 19);
    add(hive, QStringLiteral("Gr\u00fc\u00dfe\\\u4f60\u00e9"), 20);
    QByteArray bytes = hive.bytes();
    hive_damage::replace_bytes(bytes, "namf", "name");
    return bytes;
}

} // namespace

class test_registry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void walk_data();
    void walk();
    void names_have_two_readings();
    void steps_on_an_open_hive();
    void text_form_data();
    void text_form();
    void numbers_data();
    void numbers();
    void slot_order_data();
    void slot_order();
    void base_raw_form_stops_debug_builds();
    void evidence_is_not_touched();
    void unreadable_data();
    void unreadable();
    void loops_and_shared_lists_end();
    void deep_hive_is_walked();
};

void test_registry::walk_data() {
    QTest::addColumn<QString>("key_path");
    QTest::addColumn<bool>("only_this_key");
    QTest::addColumn<int>("records");
    QTest::addColumn<QStringList>("visited");
    const QStringList below_start = {
        QStringLiteral("Name@11"),    QStringLiteral("name@12"), QStringLiteral("one@15"),
        QStringLiteral("a@15"),       QStringLiteral("B@15"),    QStringLiteral("below B@15"),
        QStringLiteral("below a@15"), QStringLiteral("two@14"),  QStringLiteral("zebra@-11644473600")};
    QTest::newRow("a key") << QStringLiteral("start") << false << 5 << below_start;
    QTest::newRow("leading backslash") << QStringLiteral("\\start") << false << 5 << below_start;
    QTest::newRow("other case") << QStringLiteral("START") << false << 5 << below_start;
    QTest::newRow("leaves only") << QStringLiteral("start\\tree\\one\\a") << false << 1
                                 << QStringList{QStringLiteral("below a@18")};
    QTest::newRow("only this key") << QStringLiteral("start\\tree") << true << 1
                                   << QStringList{QStringLiteral("tree@")};
    QTest::newRow("missing last part") << QStringLiteral("start\\none") << false << 0 << QStringList();
    QTest::newRow("missing second part") << QStringLiteral("start\\none\\one") << false << 0 << QStringList();
    QTest::newRow("missing, only this key") << QStringLiteral("none") << true << 0 << QStringList();
    QTest::newRow("no subkeys") << QStringLiteral("start\\zebra") << false << 0 << QStringList();
    // Of the root's grandchildren on, "tree" and what is below it is visited too.
    QTest::newRow("root") << QStringLiteral("\\") << false << 5
                          << QStringList{QStringLiteral("\u00e4\u00bd\u00a0\u00c3\u00a9@20"),
                                         QStringLiteral("Name@11"),
                                         QStringLiteral("name@12"),
                                         QStringLiteral("tree@13"),
                                         QStringLiteral("one@13"),
                                         QStringLiteral("two@13"),
                                         QStringLiteral("a@13"),
                                         QStringLiteral("B@13"),
                                         QStringLiteral("below B@13"),
                                         QStringLiteral("below a@13"),
                                         QStringLiteral("zebra@-11644473600")};
}

void test_registry::walk() {
    QFETCH(QString, key_path);
    QFETCH(bool, only_this_key);
    QFETCH(int, records);
    QFETCH(QStringList, visited);
    const hive_file file(walked_hive());
    registry bare;
    QCOMPARE(bare.start_registry_parse(file.path(), key_path, only_this_key), 0);
    QCOMPARE(bare.record_list.size(), records);
    noting_walker walker;
    QCOMPARE(walker.start_registry_parse(file.path(), key_path, only_this_key), 0);
    QCOMPARE(walker.visited, visited);
    QVERIFY(walker.current_record == nullptr);
    QCOMPARE(walker.start_registry_parse(file.path(), key_path, only_this_key), 0);
    QCOMPARE(walker.record_list.size(), 2 * records); // the list is not emptied
}

void test_registry::names_have_two_readings() {
    const hive_file file(walked_hive());
    noting_walker walker;
    QCOMPARE(walker.start_registry_parse(file.path(), QStringLiteral("Gr\u00fc\u00dfe"), false), 0);
    QCOMPARE(walker.listed, QStringList{QStringLiteral("\u00e4\u00bd\u00a0\u00c3\u00a9")}); // UTF-8 bytes as Latin-1
    QCOMPARE(walker.node_name, QStringLiteral("\u4f60\u00e9"));
    QCOMPARE(walker.visited, QStringList{QStringLiteral("\u00e4\u00bd\u00a0\u00c3\u00a9@20")});
}

void test_registry::steps_on_an_open_hive() {
    const hive_file file(walked_hive());
    const hive_handle hive(hivex_open(QFile::encodeName(file.path()).constData(), 0));
    const hive_node_h root = hivex_root(hive.get());
    noting_walker walker;
    QCOMPARE(walker.get_user_node_handle(hive.get(), QStringLiteral("\\"), root), root);
    QCOMPARE(walker.get_user_node_handle(hive.get(), QStringLiteral("none\\start"), root), hive_node_h(0));
    const hive_node_h tree = walker.get_user_node_handle(hive.get(), QStringLiteral("start\\tree"), root);
    const QMap<QString, int> children = walker.prepare_the_node_key_child(hive.get(), tree, false);
    QCOMPARE(children.keys(), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    QCOMPARE(walker.get_user_node_handle(hive.get(), QStringLiteral("ONE"), tree), hive_node_h(children.first()));
    QVERIFY(walker.run_only_multiple(hive.get(), children.first()));
    QVERIFY(!walker.run_only_multiple(hive.get(), children.last()));
    QCOMPARE(walker.record_list.size(), 2); // "a" and "B" below "one"
}

void test_registry::text_form_data() {
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("text");
    QTest::newRow("UTF-16 ASCII") << utf16_text(QStringLiteral("weather")) << QStringLiteral("weather");
    QTest::newRow("bytes in the local encoding") << QByteArray("caf\xc3\xa9") << QStringLiteral("caf\u00e9");
    QTest::newRow("UTF-16 others are mangled") << utf16_text(QStringLiteral("\u6c34x")) << QStringLiteral("4lx");
    QTest::newRow("odd length") << QByteArray("a\0b", 3) << QStringLiteral("ab");
    QTest::newRow("zeros only") << QByteArray(4, '\0') << QStringLiteral("");
    QTest::newRow("no data") << QByteArray() << QStringLiteral("");
}

void test_registry::text_form() {
    QFETCH(QByteArray, data);
    QFETCH(QString, text);
    hive_writer hive;
    hive.set_values(hive.add_path(QStringLiteral("start\\key")), {value_of(QStringLiteral("v"), data)});
    const hive_file file(hive.bytes());
    noting_walker walker;
    QCOMPARE(walker.start_registry_parse(file.path(), QStringLiteral("start"), false), 0);
    QCOMPARE(walker.texts, QStringList{text});
    QVERIFY(!walker.texts.first().isNull());
}

void test_registry::numbers_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("four");
    QTest::addColumn<quint64>("eight");
    QTest::addColumn<quint64>("epoch");
    QTest::newRow("zero is before 1970") << QByteArray(8, '\0') << 0U << quint64(0) << quint64(1833029933770);
    QTest::newRow("2020") << QByteArray::fromHex("8042352aac27d601") << 0x2a354280U << quint64(0x01d627ac2a354280)
                          << quint64(1589212345);
    QTest::newRow("all bits") << QByteArray(8, '\xff') << 0xffffffffU << quint64(-1)
                              << (quint64(-1) - quint64(ticks_before_1970)) / 10000000;
}

void test_registry::numbers() {
    QFETCH(QByteArray, bytes);
    registry walker;
    auto* data = reinterpret_cast<unsigned char*>(bytes.data());
    QTEST(walker.htoi(data, 0), "four");
    QTEST(walker.htoll(data, 99), "eight");
    QTEST(walker.epoc_time_conversion(bytes), "epoch");
    QCOMPARE(walker.epoc_time_conversion(bytes.left(4)),
             walker.epoc_time_conversion(bytes.left(4) + QByteArray(4, '\0')));
}

// A pointer to a virtual member holds the distance of its entry in the table (Itanium ABI); the destructor takes the
// first two entries.
template <class Member>
static int entry_of(Member member) {
    ptrdiff_t distance = 0;
    std::memcpy(&distance, &member, sizeof(distance));
    return static_cast<int>((distance & ~ptrdiff_t(1)) / static_cast<ptrdiff_t>(sizeof(void*)));
}

void test_registry::slot_order_data() {
    QTest::addColumn<int>("entry");
    QTest::addColumn<int>("wanted");
    using text_member = QString (registry::*)(hive_h*, hive_value_h);
    using raw_member = QByteArray (registry::*)(hive_h*, hive_value_h, int);
    using type_member = hive_type (registry::*)(hive_h*, hive_value_h, QString);
    int next = 2;
    QTest::newRow("start_registry_parse") << entry_of(&registry::start_registry_parse) << next++;
    QTest::newRow("get_user_node_handle") << entry_of(&registry::get_user_node_handle) << next++;
    QTest::newRow("values_of_the_node") << entry_of(&registry::values_of_the_node) << next++;
    QTest::newRow("run_only_multiple") << entry_of(&registry::run_only_multiple) << next++;
    QTest::newRow("run_only_multiple_paths") << entry_of(&registry::run_only_multiple_paths) << next++;
    QTest::newRow("prepare_the_node_key_child") << entry_of(&registry::prepare_the_node_key_child) << next++;
    QTest::newRow("htoi") << entry_of(&registry::htoi) << next++;
    QTest::newRow("htoll") << entry_of(&registry::htoll) << next++;
    QTest::newRow("epoc_time_conversion") << entry_of(&registry::epoc_time_conversion) << next++;
    QTest::newRow("convert_data, text") << entry_of<text_member>(&registry::convert_data) << next++;
    QTest::newRow("run_only_multiple_recurse") << entry_of(&registry::run_only_multiple_recurse) << next++;
    QTest::newRow("find_node_value_length") << entry_of(&registry::find_node_value_length) << next++;
    QTest::newRow("convert_data, raw") << entry_of<raw_member>(&registry::convert_data) << next++;
    QTest::newRow("convert_data, type") << entry_of<type_member>(&registry::convert_data) << next++;
}

void test_registry::slot_order() {
    QFETCH(int, entry);
    QTEST(entry, "wanted");
}

void test_registry::base_raw_form_stops_debug_builds() {
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {base_call});
    QVERIFY(child.waitForFinished());
    const QByteArray output = child.readAllStandardError();
#ifdef QT_NO_DEBUG
    QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0, output.constData());
#else
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QVERIFY2(output.contains("registry::convert_data(hive_h*, hive_value_h, int)"), output.constData());
#endif
}

void test_registry::evidence_is_not_touched() {
    const QByteArray bytes = walked_hive();
    const hive_file file(bytes);
    QVERIFY(QFile::setPermissions(file.path(), QFile::ReadOwner));
    const QDateTime written = QFileInfo(file.path()).lastModified();
    registry walker;
    QCOMPARE(walker.start_registry_parse(file.path(), QStringLiteral("\\"), false), 0);
    QFile after(file.path());
    QVERIFY(after.open(QIODevice::ReadOnly));
    QCOMPARE(after.readAll(), bytes);
    QCOMPARE(QFileInfo(file.path()).lastModified(), written);
}

void test_registry::unreadable_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");
    const QByteArray sound = walked_hive();
    QByteArray dirty = sound;
    hive_damage::make_dirty(dirty);
    QByteArray spoilt = sound;
    hive_damage::spoil_block(spoilt);
    QTest::newRow("zero length") << QByteArray() << -1;
    QTest::newRow("cut off in the header") << sound.left(1000) << -1;
    QTest::newRow("cut off in a page") << sound.left(sound.size() - 2000) << -1;
    QTest::newRow("bad block") << spoilt << -1;
    QTest::newRow("no hive") << QByteArray(20000, 'x') << -1;
    QTest::newRow("not written out completely") << dirty << 0; // read as far as it goes
}

void test_registry::unreadable() {
    QFETCH(QByteArray, bytes);
    const hive_file file(bytes);
    registry walker;
    QTEST(walker.start_registry_parse(file.path(), QStringLiteral("start"), false), "result");
    QCOMPARE(walker.start_registry_parse(file.path(), QString(), false), -1);
    QCOMPARE(walker.start_registry_parse(QString(), QStringLiteral("start"), false), -1);
    QCOMPARE(walker.start_registry_parse(file.path() + QStringLiteral("x"), QStringLiteral("start"), false), -1);
    QCOMPARE(walker.start_registry_parse(QFileInfo(file.path()).path(), QStringLiteral("start"), false), -1);
}

// A key that is its own grandchild, and 40 levels of two keys each that share what is below them: 2^40 ways down.
void test_registry::loops_and_shared_lists_end() {
    hive_writer hive;
    const auto looped = add(hive, QStringLiteral("start\\tree\\loop"), 1);
    const auto inner = add(hive, QStringLiteral("start\\tree\\loop\\inner"), 2);
    QVector<QPair<hive_writer::key, hive_writer::key>> pairs;
    QString path = QStringLiteral("start\\tree\\shared");
    for (int level = 0; level < 40; ++level) {
        const auto second = add(hive, path + QStringLiteral("\\b"), 3);
        path += QStringLiteral("\\a");
        pairs.append({add(hive, path, 3), second});
    }
    QByteArray bytes = hive.bytes();
    hive_damage::share_subkeys(bytes, looped, inner);
    for (const auto& pair : qAsConst(pairs)) {
        hive_damage::share_subkeys(bytes, pair.first, pair.second);
    }
    const hive_file file(bytes);
    noting_walker walker;
    QCOMPARE(walker.start_registry_parse(file.path(), QStringLiteral("start"), false), 0);
    QVERIFY(walker.visited.size() > 10);
    QVERIFY(walker.visited.size() < bytes.size() / 12);
}

void test_registry::deep_hive_is_walked() {
    constexpr int levels = 10000;
    hive_writer hive;
    auto key = hive.add_path(QStringLiteral("start\\tree"));
    for (int level = 0; level < levels; ++level) {
        key = hive.add_key(key, QStringLiteral("deeper"));
    }
    hive.set_values(key, {value_of(QStringLiteral("deepest"))});
    const hive_file file(hive.bytes());
    noting_walker walker;
    QCOMPARE(walker.start_registry_parse(file.path(), QStringLiteral("start"), false), 0);
    QCOMPARE(walker.visited.size(), 1);
}

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(base_call)) {
        return registry().convert_data(nullptr, 0, 1).isEmpty() ? 0 : 1;
    }
    test_registry test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_registry.moc"
