// SPDX-License-Identifier: MIT
// The computed pairs against the walk over growing lists that they stand for.
#include "extractors/reminder_pairing.h"
#include "tests/support/test_text.h"

#include <QtTest>

#include <random>

namespace {

struct database {
    QStringList keys;
    int reminder_rows;
    QVector<reminder_pairing::trigger_row> trigger_rows;
};

using pairs = QVector<QPair<int, int>>;

// The literal walk: both lists are really made, for each file, for each key known by then.
pairs literal_walk(const QVector<database>& files) {
    struct list_row {
        QString lookup_key;
        QString id;
        int trigger;
    };
    pairs written;
    QStringList keys;
    QVector<list_row> trigger_list;
    QVector<int> reminder_list;
    int first_reminder = 0;
    int first_trigger = 0;
    for (const database& file : files) {
        keys += file.keys;
        for (const QString& key : qAsConst(keys)) {
            for (int row = 0; row < file.reminder_rows; ++row) {
                reminder_list.append(first_reminder + row);
            }
            for (int row = 0; row < file.trigger_rows.size(); ++row) {
                const reminder_pairing::trigger_row& trigger = file.trigger_rows[row];
                trigger_list.append({trigger.stamped ? key : QString(), trigger.id, first_trigger + row});
            }
        }
        for (int position = 0; position < trigger_list.size(); ++position) {
            if (trigger_list[position].lookup_key == trigger_list[position].id) {
                written.append({trigger_list[position].trigger, reminder_list.value(position, -1)});
            }
        }
        first_reminder += file.reminder_rows;
        first_trigger += file.trigger_rows.size();
    }
    return written;
}

QVector<database> random_files(unsigned seed, int files, int different_ids, bool with_unstamped) {
    std::mt19937 random(seed);
    const auto up_to = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit + 1)); };
    const auto id = [&] {
        const int number = up_to(different_ids);
        return number == 0 ? QString() : QString::number(number);
    };
    QVector<database> made;
    for (int file = 0; file < files; ++file) {
        database one{{}, up_to(6), {}};
        for (int left = up_to(6); left > 0; --left) {
            one.keys.append(id());
        }
        for (int left = up_to(6); left > 0; --left) {
            const bool stamped = !with_unstamped || up_to(1) == 0;
            one.trigger_rows.append({stamped ? id() : QString(), stamped});
        }
        made.append(one);
    }
    return made;
}

} // namespace

class test_reminder_pairing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void equals_the_literal_walk() {
        for (unsigned seed = 0; seed < 1200; ++seed) {
            const int different_ids = 2 + static_cast<int>(seed % 5);
            const QVector<database> made =
                random_files(seed, 1 + static_cast<int>(seed % 3), different_ids, seed % 4 == 0);
            pairs written;
            reminder_pairing pairing;
            const auto write = [&](int trigger, int reminder) { written.append({trigger, reminder}); };
            for (const database& file : made) {
                pairing.add_file(file.keys, file.reminder_rows, file.trigger_rows);
                QVERIFY(pairing.for_each_pair([] { return true; }, write));
            }
            QVERIFY2(written == literal_walk(made), qPrintable("seed %1"_q.arg(seed)));
        }
    }

    void stops_when_told_data() {
        QTest::addColumn<QString>("ids"); // of the trigger rows; the keys are a, b
        QTest::addColumn<int>("stop_after");
        QTest::addColumn<bool>("finished");
        QTest::newRow("before the first pair") << "ab"_q << 0 << false;
        QTest::newRow("between the pairs") << "ab"_q << 1 << false;
        QTest::newRow("nothing is left") << "ab"_q << 2 << true;
        QTest::newRow("rows are left that pair with nothing") << "ba"_q << 2 << false;
    }

    void stops_when_told() {
        QFETCH(QString, ids);
        QFETCH(int, stop_after);
        reminder_pairing pairing;
        pairing.add_file(QStringList({"a"_q, "b"_q}), 2, {{ids.left(1), true}, {ids.mid(1), true}});
        int seen = 0;
        QTEST(pairing.for_each_pair([&] { return seen < stop_after; }, [&](int, int) { ++seen; }), "finished");
        QCOMPARE(seen, stop_after);
    }

    // The lists of the literal walk would have 4 * 10^10 positions.
    void large_tables_need_no_copies() {
        constexpr int count = 200000;
        QStringList keys;
        QVector<reminder_pairing::trigger_row> rows;
        for (int number = 0; number < count; ++number) {
            keys.append(QString::number(number));
            rows.append({keys.last(), true});
        }
        reminder_pairing pairing;
        pairing.add_file(keys, count, rows);
        int next = 0;
        QVERIFY(pairing.for_each_pair([] { return true; },
                                      [&](int trigger, int reminder) { next += trigger == next && reminder == next; }));
        QCOMPARE(next, count);
    }
};

QTEST_APPLESS_MAIN(test_reminder_pairing)
#include "test_reminder_pairing.moc"
