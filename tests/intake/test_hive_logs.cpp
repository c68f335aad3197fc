// SPDX-License-Identifier: MIT
// Hives in five states, each with one key more, and the logs that lead from one to another: what hivex reads of the
// outcome, and that damage never leads to a state that the hive did not have.
#include "host/intake/hive_base_block.h"
#include "host/intake/hive_logs.h"
#include "host/intake/marvin_hash.h"
#include "samples/hive_log_writer.h"
#include "tests/registry/hive_fixture.h"

#include <QtTest>

using namespace hive_log;

namespace {

constexpr int at_time = 12;
constexpr int at_bins_size = 40;
constexpr int first_bin = 4096;
constexpr int log_sector = 512; // behind it stand the entries, or "DIRT"
constexpr quint32 number_of_state_0 = 10;

QVector<QByteArray> written_states(const char* key) {
    hive_writer hive;
    QVector<QByteArray> states;
    for (int state = 0; state < 5; ++state) {
        const QByteArray data(state == 3 ? 20000 : 100, static_cast<char>('a' + state)); // state 3 needs more bins
        hive.set_values(hive.add_path(q(key).arg(state)), {value_of(q("value"), data)});
        states.append(with_sequences(with_number(hive.bytes(), at_time, 1), number_of_state_0, number_of_state_0));
    }
    return states;
}

const QByteArray& state(int number) {
    static const QVector<QByteArray> states = written_states("key %1");
    return states.at(number);
}

QByteArray unfinished(int number, quint32 secondary = number_of_state_0) {
    return with_sequences(state(number), secondary + 1, secondary);
}

QByteArray entry(int to) {
    return log_entry(state(to - 1), state(to), number_of_state_0 + static_cast<quint32>(to));
}

// A log of the new format that leads through the states first to last.
QByteArray entries(int first, int last) {
    QByteArray log = log_header(state(first - 1), with_entries, number_of_state_0 + static_cast<quint32>(first));
    for (int to = first; to <= last; ++to) {
        log.append(entry(to));
    }
    return log;
}

QByteArray dirty(int to, quint32 type = first_dirty) {
    return dirty_log(state(0), state(to), type, number_of_state_0 + static_cast<quint32>(to));
}

QByteArray with_flipped_byte(QByteArray file, int offset) {
    file[offset] = static_cast<char>(~file.at(offset));
    return file;
}

// The log of entries 1 to 3 with a number of its second entry changed, the hashes right.
QByteArray with_second_entry(int offset, quint32 number) {
    const int at = entries(1, 1).size() + offset;
    return sealed(with_number(entries(1, 3), at, number));
}

QStringList keys_read_by_hivex(const QByteArray& hive) {
    const hive_file file(hive);
    const hive_handle opened(hivex_open(QFile::encodeName(file.path()).constData(), 0));
    QStringList keys;
    if (opened != nullptr) {
        const hive_nodes children(hivex_node_children(opened.get(), hivex_root(opened.get())));
        for (int i = 0; children != nullptr && children[static_cast<size_t>(i)] != 0; ++i) {
            keys << q(hive_text(hivex_node_name(opened.get(), children[static_cast<size_t>(i)])).get());
        }
    }
    return keys;
}

} // namespace

class test_hive_logs : public QObject {
    Q_OBJECT

private:
    // applied: the logs used, in order, and a "!" if the replay stopped early. to: the state reached, -1 for the
    // bytes as given.
    static void row(const char* name, const QByteArray& hive, const QByteArray& log1, const QByteArray& log2, int to,
                    const char* applied) {
        QTest::newRow(name) << hive << log1 << log2 << to << q(applied);
    }

    static void rows_of_the_old_format() {
        const QByteArray hive = unfinished(0);
        const QByteArray no_sum = with_flipped_byte(hive, 508);
        const QByteArray bin_time = state(0).mid(first_bin + 20, 8);
        const QByteArray timed = sealed(dirty(1).replace(at_time, 8, bin_time));
        const int pages = log_sector * 2;
        row("old", hive, dirty(1), {}, 1, ".LOG1");
        row("old, bins grow", hive, dirty(4), {}, 4, ".LOG1");
        row("old, second only", hive, {}, dirty(2, second_dirty), 2, ".LOG2");
        row("old, second newer", hive, dirty(1), dirty(2, second_dirty), 2, ".LOG2");
        row("old, first newer", hive, dirty(2), dirty(1, second_dirty), 2, ".LOG1");
        row("old, first torn", hive, with_number(dirty(2), log_sector, 0), dirty(1), 1, ".LOG2");
        row("old, unfinished log", hive, with_sequences(dirty(1), 11, 10), {}, -1, "");
        row("old, other time", hive, sealed(with_number(dirty(1), at_time, 2)), {}, -1, "");
        row("old, damaged base block of the log", hive, with_flipped_byte(dirty(1), 508), {}, -1, "");
        row("old, cut", hive, dirty(1).chopped(1), {}, -1, "");
        row("old, cut in the map", hive, dirty(1).left(log_sector + 4), {}, -1, "");
        row("old, absurd bins", hive, sealed(with_number(dirty(1), at_bins_size, 0x10000000)), {}, -1, "");
        row("old, bins without pages", hive, sealed(with_number(dirty(1), at_bins_size, 0x40000)), {}, -1, "");
        row("old, bad first bin", unfinished(0), with_number(dirty(4), pages, 0), {}, -1, "!");
        row("old, no base block", QByteArray(first_bin, '\0') + hive.mid(first_bin), timed, {}, 1, ".LOG1");
        row("old, bad base block, other time", no_sum, dirty(1), {}, -1, "");
        row("old, finished hive", state(0), dirty(1), {}, -1, "");
    }

    static void rows_of_the_new_format() {
        const QByteArray hive = unfinished(0);
        const QByteArray no_sum = with_flipped_byte(hive, 508);
        const int second = entries(1, 1).size();
        row("new", hive, entries(1, 1), {}, 1, ".LOG1");
        row("new, bins grow", hive, entries(1, 4), {}, 4, ".LOG1");
        row("new, second log only", hive, {}, entries(1, 2), 2, ".LOG2");
        row("new, first then second", hive, entries(1, 2), entries(3, 4), 4, ".LOG1 .LOG2");
        row("new, second then first", hive, entries(3, 4), entries(1, 2), 4, ".LOG2 .LOG1");
        row("new, logs overlap", hive, entries(1, 3), entries(2, 4), 4, ".LOG1 .LOG2");
        row("new, hive has the first log", unfinished(2, 13), entries(1, 2), entries(3, 4), 4, ".LOG2");
        row("new, hive has some entries", unfinished(2, 13), entries(1, 4), {}, 4, ".LOG1");
        row("new, hive has all entries", unfinished(2, 13), entries(1, 2), {}, -1, "");
        row("new, gap between logs", hive, entries(1, 1), entries(3, 4), 1, ".LOG1!");
        row("new, earlier log lost", hive, {}, entries(3, 4), -1, "!");
        row("new, earlier log begins damaged", hive, with_flipped_byte(entries(1, 1), 600), entries(2, 3), -1, "!");
        row("new, damage that the hive is past", unfinished(2, 13), with_flipped_byte(entries(1, 1), 600),
            entries(3, 4), 4, ".LOG2");
        row("new, hive begun long ago", with_sequences(state(2), 14, 10), entries(3, 4), {}, 4, ".LOG1");
        row("new, gap", hive, entries(1, 1) + entry(3), {}, 1, ".LOG1!");
        row("new, number twice", hive, entries(1, 1) + entry(1) + entry(2), {}, 1, ".LOG1");
        row("new, older entries behind", hive, entries(2, 2).left(log_sector) + entry(1) + entry(2), {}, -1, "");
        row("new, stale entry behind", hive, entries(1, 1) + log_entry(state(4), state(0), 4), {}, 1, ".LOG1");
        row("new, zeros behind", hive, entries(1, 1) + QByteArray(4096, '\0'), {}, 1, ".LOG1");
        row("new, wrong first hash", hive, with_flipped_byte(entries(1, 1), log_sector + 24), {}, -1, "!");
        row("new, wrong second hash", hive, with_flipped_byte(entries(1, 1), log_sector + 39), {}, -1, "!");
        row("new, wrong flags", hive, with_flipped_byte(entries(1, 3), second + 8), {}, 1, ".LOG1!");
        row("new, wrong page", hive, with_flipped_byte(entries(1, 3), second + 700), {}, 1, ".LOG1!");
        row("new, wrong end", hive, with_flipped_byte(entries(1, 3), entries(1, 2).size() - 1), {}, 1, ".LOG1!");
        row("new, entry too large", hive, with_second_entry(4, 0xfffffe00), {}, 1, ".LOG1!");
        row("new, entry without size", hive, with_second_entry(4, 0), {}, 1, ".LOG1!");
        row("new, no bins", hive, with_second_entry(16, 0), {}, 1, ".LOG1!");
        row("new, bins of any size", hive, with_second_entry(16, 0x2001), {}, 1, ".LOG1!");
        row("new, bins of 2 GiB", hive, with_second_entry(16, 0x7ffef000), {}, 1, ".LOG1!");
        row("new, bins of 4 GiB", hive, with_second_entry(16, 0xfffff000), {}, 1, ".LOG1!");
        row("new, too many pages", hive, with_second_entry(20, 0xffffffff), {}, 1, ".LOG1!");
        row("new, page outside the bins", hive, with_second_entry(40, 0x10000), {}, 1, ".LOG1!");
        row("new, page before the bins", hive, with_second_entry(40, 0xfffff000), {}, 1, ".LOG1!");
        row("new, page beyond the entry", hive, with_second_entry(44, 0x2000), {}, 1, ".LOG1!");
        row("new, bins shrink", hive, entries(1, 4) + log_entry(state(4), state(1), 15), {}, 1, ".LOG1");
        row("new, cut", hive, entries(1, 2).chopped(1), {}, 1, ".LOG1!");
        row("new, cut in the head", hive, entries(1, 1) + entry(2).left(39), {}, 1, ".LOG1!");
        row("new, damaged base block of the log", hive, with_flipped_byte(entries(1, 1), 508), {}, -1, "");
        row("new, no sectors", hive, sealed(with_number(entries(1, 1), 44, 0)), {}, -1, "");
        row("new, bad base block", with_flipped_byte(unfinished(0, 90), 508), entries(1, 2), {}, 2, ".LOG1");
        row("new, no base block", QByteArray(first_bin, '\0') + hive.mid(first_bin), {}, entries(1, 4), 4, ".LOG2");
        row("new, bad base block, later log", with_flipped_byte(unfinished(2), 508), entries(1, 2), entries(3, 4), 4,
            ".LOG2");
        row("new, finished hive", state(0), entries(1, 4), {}, -1, "");
    }

    static void rows_of_odd_logs() {
        const QByteArray hive = unfinished(0);
        const QVector<QByteArray> other = written_states("another hive's key %1");
        const QByteArray smashed = state(1).left(first_bin) + QByteArray(first_bin, '\0') + state(1).mid(2 * first_bin);
        const auto log_to = [](const QByteArray& after) {
            return log_header(state(0), with_entries, 11) + log_entry(state(0), after, 11);
        };
        row("no logs", hive, {}, {}, -1, "");
        row("empty logs", hive, "", "", -1, "");
        row("hives as logs", hive, state(1), state(2), -1, "");
        row("old and new", hive, dirty(2), entries(1, 3), 3, ".LOG2");
        row("new of no use, old", hive, dirty(2), entries(3, 4), 2, ".LOG1!");
        row("another hive's, new", hive,
            log_header(other.at(0), with_entries, 90) + log_entry(other.at(0), other.at(1), 90), {}, -1, "!");
        row("another hive's, old", hive, sealed(with_number(dirty_log(other.at(0), other.at(1), 1, 11), at_time, 3)),
            {}, -1, "");
        row("bin gets lost", hive, log_to(smashed), {}, -1, "");
        row("root key gets lost", hive, log_to(with_number(state(1), first_bin + 36, 0)), {}, -1, "");
        row("a cell gets lost", hive, log_to(with_number(state(1), first_bin + 32, 7)), {}, -1, "");
        row("damaged page is in the log", unfinished(0).replace(first_bin, 4, "HBIN"), entries(1, 4), {}, 4, ".LOG1");
        row("cut hive", hive.left(first_bin - 1), entries(1, 4), {}, -1, "");
        row("no hive", {}, entries(1, 4), dirty(4), -1, "");
    }

private Q_SLOTS:
    void replay_data() {
        QTest::addColumn<QByteArray>("hive");
        QTest::addColumn<QByteArray>("log1");
        QTest::addColumn<QByteArray>("log2");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("applied");
        rows_of_the_old_format();
        rows_of_the_new_format();
        rows_of_odd_logs();
    }
    void replay() {
        QFETCH(QByteArray, hive);
        QFETCH(QByteArray, log1);
        QFETCH(QByteArray, log2);
        QFETCH(int, to);
        const QByteArray given(hive.constData(), hive.size());
        const hive_replay replay = apply_hive_logs(hive, log1, log2);
        QCOMPARE(hive, given);
        QTEST(replay.logs.join(QLatin1Char(' ')) + (replay.stopped_early ? q("!") : QString()), "applied");
        QCOMPARE(replay.is_unfinished, hive != state(0));
        const hive_base_block before = base_block_of(hive);
        QCOMPARE(replay.base_block_recovered, to >= 0 && !before.is_sound);
        if (to < 0) {
            QCOMPARE(replay.hive, hive);
            QCOMPARE(replay.entries + replay.pages, 0);
            return;
        }
        const hive_base_block after = base_block_of(replay.hive);
        QVERIFY(after.is_finished() && after.type == hive_file_type::hive);
        QVERIFY(after.primary > number_of_state_0);
        QCOMPARE(replay.hive.mid(first_bin, static_cast<int>(after.bins_size)), state(to).mid(first_bin));
        QStringList keys;
        for (int number = 0; number <= to; ++number) {
            keys << q("key %1").arg(number);
        }
        QCOMPARE(keys_read_by_hivex(replay.hive), keys);
        QVERIFY(replay.entries > 0 && replay.pages > 0);
    }

    // Without the logs hivex reads the state before them and says nothing.
    void unfinished_hive_reads_as_before() { QCOMPARE(keys_read_by_hivex(unfinished(0)), list_of("key 0")); }

    void pages_before_a_damaged_bin_are_kept() {
        const QByteArray before = unfinished(2);
        const int second_bin = before.indexOf("hbin", first_bin + 1);
        const QByteArray half = QByteArray(before).replace("CMI-CreateHive", "CMI-createhive");
        const QByteArray whole = with_number(half, second_bin + 12, 1); // a field of no meaning
        for (const auto& [offset, wrong] : {std::pair(0, 0x800U), {4, 0x800U}, {8, 0x800U}, {8, 0x100000U}}) {
            QByteArray log = dirty_log(before, whole, first_dirty, 12);
            const int bin = log.lastIndexOf("hbin");
            QVERIFY(apply_hive_logs(before, log, {}).hive.endsWith(whole.mid(first_bin)));
            log = with_number(log, bin + offset, wrong);
            const hive_replay replay = apply_hive_logs(before, log, {});
            QVERIFY(replay.is_applied() && replay.stopped_early);
            QCOMPARE(replay.hive.mid(first_bin), half.mid(first_bin));
        }
    }

    // What cannot become worse is brought up to date all the same; what cannot be opened must come out whole.
    void inconsistent_before_and_after() {
        QByteArray before = unfinished(0);
        hive_damage::spoil_block(before);
        const QByteArray after = QByteArray(before).replace("CMI-CreateHive", "CMI-createhive");
        const QByteArray log = log_header(before, with_entries, 11) + log_entry(before, after, 11);
        QCOMPARE(apply_hive_logs(before, log, {}).hive.mid(first_bin), after.mid(first_bin));
        const QByteArray no_sum = with_flipped_byte(before, 508);
        QCOMPARE(apply_hive_logs(no_sum, log, {}).hive, no_sum);
    }

    // A new bin with one free cell, of which the log holds the first page only.
    void room_without_pages_is_zero() {
        const QByteArray before = with_sequences(empty_hive(), 11, 10) + QByteArray(0x1000, '\0');
        QByteArray after = with_number(before, at_bins_size, 0x2000).replace(0x2000, 4, "hbin");
        after = with_number(with_number(with_number(after, 0x2004, 0x1000), 0x2008, 0x1000), 0x2020, 0x0fe0);
        const QByteArray log = log_header(before, with_entries, 11) + log_entry(before, after, 11);
        const hive_replay replay = apply_hive_logs(before.left(0x2000), log, {});
        QCOMPARE(replay.pages, qint64{1});
        QCOMPARE(replay.hive.mid(first_bin), after.mid(first_bin));
    }

    void newer_entries_data() {
        QTest::addColumn<QByteArray>("hive");
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<int>("newer");
        const auto row = [](const char* name, const QByteArray& hive, const QByteArray& log, int newer) {
            QTest::newRow(name) << hive << log << newer;
        };
        row("all", unfinished(0), entries(1, 4), 4);
        row("some", unfinished(2, 13), entries(1, 4), 2);
        row("none", unfinished(2, 13), entries(1, 2), 0);
        row("finished hive", state(0), entries(1, 4), 0);
        row("bad base block", with_flipped_byte(unfinished(0), 508), entries(2, 4), 3);
        row("damage", unfinished(0), entries(1, 4).chopped(1), 3);
        row("old", unfinished(0), dirty(1), 1);
        row("old, other time", unfinished(0), sealed(with_number(dirty(1), at_time, 2)), 0);
        row("old, finished hive", state(0), dirty(1), 0);
        row("no log", unfinished(0), {}, 0);
        row("no hive", {}, dirty(1), 0);
    }
    void newer_entries() {
        QFETCH(QByteArray, hive);
        QFETCH(QByteArray, log);
        QTEST(entries_newer_than_hive(hive, log), "newer");
        QTEST(entries_newer_than_hive(hive.left(first_bin + 32), log), "newer");
    }

    // A word of no meaning is set so that the sum of all is 0 or all ones.
    void sums_that_are_never_written() {
        const quint32 sum = hive_number<quint32>(state(0), 508);
        for (const quint32 wanted : {0U, 0xffffffffU}) {
            const quint32 word = hive_number<quint32>(state(0), 256) ^ sum ^ wanted;
            QVERIFY(base_block_of(sealed(with_number(state(0), 256, word))).is_sound);
            QVERIFY(!base_block_of(with_number(with_number(state(0), 256, word), 508, wanted)).is_sound);
        }
    }

    // Values published for this hash, with another seed.
    void known_hashes() {
        const QByteArray longest = QByteArray::fromHex("ab427ea8d10fc7");
        const auto hash = [](const QByteArray& bytes) {
            return marvin_hash::of(bytes.constData(), bytes.size(), 0x004fb61a001bdbcc);
        };
        QCOMPARE(hash({}), quint64{0x30ed35c100cd3c7d});
        QCOMPARE(hash(QByteArray::fromHex("af")), quint64{0x48e73fc77d75ddc1});
        QCOMPARE(hash(QByteArray::fromHex("8642dc59")), quint64{0x7008f2e87e9cf556});
        QCOMPARE(hash(longest), quint64{0xe11847e4f0678c41});
    }
};

QTEST_GUILESS_MAIN(test_hive_logs)
#include "test_hive_logs.moc"
