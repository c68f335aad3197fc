// SPDX-License-Identifier: MIT
// A key that is not known is refused: one that was mistyped would change what is examined without a word.
#include "host/batch/manifest.h"

#include "contract/table_names.h"
#include "host/run/account_name.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>

namespace batch {
namespace {

constexpr int longest_line = 1 << 20; // bytes
constexpr int longest_path = 4095;    // bytes, as the system has it

bool is_one_of(QChar character, const char* others) {
    const ushort code = character.unicode();
    const bool letter = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z');
    return letter || (code >= '0' && code <= '9') || QLatin1String(others).contains(character);
}

bool is_digest(const QString& text) {
    constexpr int digits = 64;
    return text.size() == digits && std::all_of(text.begin(), text.end(), [](QChar digit) {
               return (digit >= QLatin1Char('0') && digit <= QLatin1Char('9')) ||
                      (digit >= QLatin1Char('a') && digit <= QLatin1Char('f'));
           });
}

bool is_path(const QString& text) {
    return text.startsWith(QLatin1Char('/')) && !text.contains(QChar(0)) && text.toUtf8().size() <= longest_path;
}

// Reads one object; the first thing that is wrong stays the problem.
class line_reader {
public:
    line_reader(const QJsonObject& read, QString& told) : object(read), problem(told) {}

    QString text(const char* key, bool needed, bool (*fits)(const QString&), const char* wanted) {
        const QJsonValue value = take(key, needed);
        const bool ok = value.isUndefined() || (value.isString() && fits(value.toString()));
        refuse_unless(ok, key, wanted);
        return ok ? value.toString() : QString();
    }

    int count(const char* key, bool needed) {
        const QJsonValue value = take(key, needed);
        const double number = value.toDouble(1);
        constexpr double most = 2147483647;
        const bool ok = value.isUndefined() ||
                        (value.isDouble() && number >= 1 && number <= most && number == static_cast<int>(number));
        refuse_unless(ok, key, "is not a whole number from 1");
        return ok && !value.isUndefined() ? static_cast<int>(number) : 0;
    }

    QStringList texts(const char* key, bool (*fits)(const QString&), const char* wanted) {
        const QJsonValue value = take(key, false);
        bool ok = value.isUndefined() || value.isArray();
        QStringList list;
        const QJsonArray items = value.toArray();
        for (const QJsonValue& item : items) {
            ok = ok && item.isString() && fits(item.toString()) && !list.contains(item.toString());
            list.append(item.toString());
        }
        refuse_unless(ok, key, wanted);
        return list;
    }

    void refuse_other_keys() {
        for (const QString& key : object.keys()) {
            if (!known.contains(key) && problem.isEmpty()) {
                problem = QStringLiteral("there is no key '%1'").arg(key);
            }
        }
    }

private:
    QJsonValue take(const char* key, bool needed) {
        known.append(QLatin1String(key));
        const QJsonValue value = object[QLatin1String(key)];
        refuse_unless(!needed || !value.isUndefined(), key, "is missing");
        return value;
    }

    void refuse_unless(bool fits, const char* key, const char* why) {
        if (!fits && problem.isEmpty()) {
            problem = QStringLiteral("%1 %2").arg(QLatin1String(key), QLatin1String(why));
        }
    }

    const QJsonObject& object;
    QString& problem;
    QStringList known;
};

bool is_type(const QString& text) {
    return text == QLatin1String("folder") || text == QLatin1String("image") || text == QLatin1String("archive");
}

bool is_table(const QString& text) {
    return result_table_names().contains(text);
}

bool is_account(const QString& text) {
    return account_of(text).has_value();
}

QStringList in_plugin_order(const QStringList& tables) {
    QStringList ordered;
    for (const QString& name : result_table_names()) {
        if (tables.contains(name)) {
            ordered.append(name);
        }
    }
    return ordered;
}

} // namespace

bool is_id(const QString& text) {
    constexpr int longest = 100;
    return !text.isEmpty() && text.size() <= longest && is_one_of(text[0], "_") &&
           std::all_of(text.begin(), text.end(), [](QChar one) { return is_one_of(one, "._-"); });
}

manifest_source source_of_line(const QByteArray& line, QString& problem) {
    problem.clear();
    QJsonParseError fault = {};
    const QJsonDocument document = QJsonDocument::fromJson(line.left(longest_line), &fault);
    if (!document.isObject() || line.size() > longest_line) {
        problem = document.isNull() ? QStringLiteral("it is no JSON: %1").arg(fault.errorString())
                                    : QStringLiteral("it is no JSON object");
        return {};
    }
    const QJsonObject object = document.object();
    line_reader read(object, problem);
    manifest_source source;
    source.id = read.text("id", true, is_id, "is not made of 1 to 100 of A-Z a-z 0-9 . _ - without . or - in front");
    source.path = read.text("path", true, is_path, "is not an absolute path");
    source.type = read.text("type", true, is_type, "is none of folder, image and archive");
    source.number = read.count("number", true);
    source.volume = read.count("volume", false);
    source.profiles = read.texts("profiles", is_account, "is not a list of names of profile folders, each there once");
    source.tables = in_plugin_order(read.texts("tables", is_table, "is not a list of result tables, each there once"));
    source.sha256 = read.text("sha256", false, is_digest, "is not 64 small hexadecimal digits");
    read.refuse_other_keys();
    return problem.isEmpty() ? source : manifest_source();
}

QByteArray line_of(const manifest_source& source) {
    QJsonObject object{{QStringLiteral("id"), source.id},
                       {QStringLiteral("path"), source.path},
                       {QStringLiteral("type"), source.type},
                       {QStringLiteral("number"), source.number},
                       {QStringLiteral("profiles"), QJsonArray::fromStringList(source.profiles)},
                       {QStringLiteral("tables"), QJsonArray::fromStringList(source.tables)}};
    if (source.volume > 0) {
        object.insert(QStringLiteral("volume"), source.volume);
    }
    if (!source.sha256.isEmpty()) {
        object.insert(QStringLiteral("sha256"), source.sha256);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

manifest read_manifest(const QByteArray& text) {
    constexpr int most_problems = 100;
    manifest read;
    QSet<QString> ids;
    QSet<int> numbers;
    int line_number = 0;
    for (int begin = 0, end = 0; begin < text.size() && read.problems.size() < most_problems; begin = end + 1) {
        end = text.indexOf('\n', begin);
        end = end < 0 ? text.size() : end;
        ++line_number;
        QString problem;
        const manifest_source source = source_of_line(text.mid(begin, end - begin), problem);
        if (problem.isEmpty() && ids.contains(source.id.toLower())) {
            problem = QStringLiteral("the id '%1' is there before").arg(source.id);
        } else if (problem.isEmpty() && numbers.contains(source.number)) {
            problem = QStringLiteral("the number %1 is there before").arg(source.number);
        }
        if (!problem.isEmpty()) {
            read.problems.append(QStringLiteral("line %1: %2").arg(line_number).arg(problem));
            continue;
        }
        ids.insert(source.id.toLower());
        numbers.insert(source.number);
        read.sources.append(source);
    }
    return read;
}

QByteArray line_at(const QByteArray& text, int index) {
    int begin = 0;
    for (int line = 1; begin < text.size(); ++line) {
        const int end = text.indexOf('\n', begin);
        if (line == index) {
            return text.mid(begin, end < 0 ? -1 : end - begin);
        }
        begin = end < 0 ? text.size() : end + 1;
    }
    return {};
}

QByteArray line_with_id(const QByteArray& text, const QString& id) {
    const QByteArray wanted = '"' + id.toUtf8() + '"';
    QString problem;
    for (int found = text.indexOf(wanted); found >= 0; found = text.indexOf(wanted, found + 1)) {
        const int begin = text.lastIndexOf('\n', found) + 1;
        const int end = text.indexOf('\n', found);
        const QByteArray line = text.mid(begin, end < 0 ? -1 : end - begin);
        if (QJsonDocument::fromJson(line.left(longest_line)).object()[QStringLiteral("id")].toString() == id) {
            return line;
        }
    }
    return {};
}

} // namespace batch
