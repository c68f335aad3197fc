// SPDX-License-Identifier: MIT
// The table of options against itself: what it says is what the program takes.
#include "host/commands/help_text.h"
#include "host/commands/option_table.h"
#include "host/commands/option_values.h"
#include "host/commands/options.h"

#include <QThread>
#include <QtTest>

namespace {

// A value that the kind cannot refuse.
QString sample_value(const option_entry& option) {
    const QStringList known = known_values(option);
    const bool is_number = option.kind == value_kind::count || option.kind == value_kind::number;
    return !known.isEmpty()                       ? known.last()
           : is_number                            ? QStringLiteral("7")
           : option.kind == value_kind::size      ? QStringLiteral("7G")
           : option.kind == value_kind::time_zone ? QStringLiteral("Asia/Kolkata")
                                                  : QStringLiteral("x");
}

QStringList with_value(const option_entry& option) {
    const QString name = QStringLiteral("--") + option.long_name();
    return option.kind == value_kind::none ? QStringList{name} : QStringList{name, sample_value(option)};
}

// The shortest line that the command takes.
QStringList shortest(const command_entry& command) {
    QStringList words = command.words();
    for (int i = 0; i < command.fewest_arguments(); ++i) {
        words.append(QStringLiteral("x"));
    }
    for (const option_entry& option : option_table()) {
        if (option.use == value_use::required && option.is_taken_by(command)) {
            words += with_value(option);
        }
    }
    return words;
}

command_line read(const QStringList& words) {
    return read_command_line(QStringList(QStringLiteral("cortana")) + words);
}

} // namespace

class test_option_table : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_command_is_read_data() {
        QTest::addColumn<int>("index");
        for (int i = 0; i < command_table().size(); ++i) {
            QTest::newRow(command_table()[i].name) << i;
        }
    }
    void every_command_is_read() {
        QFETCH(int, index);
        const command_entry& command = command_table()[index];
        const QStringList words = shortest(command);
        const command_line line = read(words);
        QVERIFY2(line.what != command::refused && line.what != command::help, qPrintable(line.text));
        for (const option_entry& option : option_table()) {
            if (option.is_taken_by(command) && !option.is_general() && option.use != value_use::required) {
                const command_line with = read(words + with_value(option));
                QVERIFY2(with.what == line.what, qPrintable(option.long_name() + QLatin1Char(' ') + with.text));
            }
        }
        const int most = command.most_arguments();
        if (most < 10) {
            const QStringList too_many = words + QVector<QString>(most + 1, QStringLiteral("x")).toList();
            QCOMPARE(read(too_many).text, QString::fromUtf8(command.taken));
        }
    }

    void as_many_workers_as_cores() {
        QCOMPARE(read({QStringLiteral("check"), QStringLiteral("x")}).extract.jobs, QThread::idealThreadCount());
    }

    void every_option_has_its_commands() {
        QStringList known{QStringLiteral("*")};
        for (const command_entry& command : command_table()) {
            known.append(QString::fromUtf8(command.name));
        }
        QStringList pairs;
        for (const option_entry& option : option_table()) {
            for (const QString& taker : QString::fromUtf8(option.commands).split(QLatin1Char(','))) {
                QVERIFY2(known.contains(taker), qPrintable(option.long_name() + QLatin1Char(' ') + taker));
                for (const QString& name : option.all_names()) {
                    pairs.append(taker + QLatin1Char(' ') + name);
                }
            }
            const QString standard = QString::fromUtf8(option.standard);
            QVERIFY2(standard.isEmpty() || refused_value(option, standard).isEmpty(), qPrintable(option.long_name()));
            QCOMPARE(option.kind == value_kind::none, *option.value == '\0');
        }
        QCOMPARE(pairs.removeDuplicates(), 0);
    }
};

QTEST_GUILESS_MAIN(test_option_table)
#include "test_option_table.moc"
