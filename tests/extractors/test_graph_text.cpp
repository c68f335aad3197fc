// SPDX-License-Identifier: MIT
// The graph cutter against a slow cutter that does nothing clever, on random files, and the rules for single values.
#include "extractors/graph_text.h"
#include "tests/support/test_text.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

// Searches every marker anew from its cursor for every entity, copies every slice, splits every text.
class slow_cutter {
public:
    explicit slow_cutter(const QByteArray& content) : text(content) {}

    QVector<QStringList> entities() {
        QVector<QStringList> found;
        QByteArray value;
        while (take("originalName", "\r\n", value)) {
            QStringList entity{quoted(QString::fromUtf8(cut(value)))};
            for (const char* marker : {"dateCreated", "dateModified", "dateAccessed>"}) {
                take(marker, "Date", value);
                entity << date(quoted(QString::fromLatin1(cut(value))));
            }
            for (const char* marker : {"name", "entityId"}) {
                take(marker, "\r\n", value);
                entity << quoted(QString::fromLatin1(cut(value)));
            }
            take("sid", "\r\n", value);
            entity << search_id(QString::fromUtf8(cut(value)));
            take("phone", "\r\n", value);
            entity << quoted(QString::fromLatin1(cut(value)));
            take("Point", "\r\n", value);
            found << entity + point(QString::fromLatin1(cut(value)));
        }
        return found;
    }

private:
    QByteArray text;
    QHash<QByteArray, int> cursors;

    // Leaves value empty when the marker or its end is missing; true when the marker was found.
    bool take(const QByteArray& marker, const char* end_marker, QByteArray& value) {
        value.clear();
        int& cursor = cursors[marker];
        const int start = cursor < 0 ? -1 : text.indexOf(marker, cursor);
        if (start <= 0) {
            return false;
        }
        cursor = text.indexOf(end_marker, start);
        if (cursor > 0) {
            value = text.mid(start, cursor - start);
        }
        return true;
    }
    static QByteArray cut(const QByteArray& bytes) { return QByteArray(bytes.constData()); }
    static QString quoted(const QString& value) {
        const QStringList parts = value.split(QLatin1Char('"'));
        return parts.size() >= 3 ? parts.at(parts.size() - 2) : QString();
    }
    static QString date(const QString& value) {
        return !value.isNull() && value.trimmed().isEmpty() ? "0"_q : QString();
    }
    static QString search_id(QString value) {
        if (value.contains(QLatin1Char(':')) && value.size() >= 5) {
            value.remove(0, 4);
        }
        return value.split(QLatin1Char('"')).first();
    }
    static QStringList point(const QString& value) {
        QString inner = value.split(QLatin1Char('"')).first();
        if (inner.size() >= 7) {
            inner.remove(0, 6);
        }
        inner = inner.trimmed();
        inner.chop(1);
        const QStringList parts = inner.split(QLatin1Char(' '));
        return parts.size() >= 2 ? parts.mid(0, 2) : QStringList{QString(), QString()};
    }
};

QStringList texts_of(const graph_entity& e) {
    return {e.search_content, e.creation_time, e.modification_time, e.last_access_time, e.name, e.entity_id,
            e.search_id,      e.phone,         e.latitude,          e.longitude};
}

QVector<QStringList> cut_all(const QByteArray& content) {
    graph_text_cutter cutter(content);
    graph_entity entity;
    QVector<QStringList> found;
    while (cutter.next(entity)) {
        found << texts_of(entity);
    }
    return found;
}

// A file of marker words, ends, quotes and bytes that decoders stumble over.
QByteArray random_file(quint32 seed) {
    static const QByteArrayList pieces =
        QByteArray("originalName|dateCreated|dateModified|dateAccessed|>|name|entityId|sid|phone|Point|"
                   "Point(47.6 -122.3)\"|Date|Date|\r\n|\r\n|\r\n|\r|\n|\"|\"|\"|\"|:| | |\t|(|)|a|xyz|"
                   "2019-05-01T10:20:30.000Z|\xa0|\x85|\xff|\xc3|\xc3\xbc|\xe2\x82|\xe2\x82\xac|"
                   "\xf0\x9f\x98|\xf0\x9f\x98\x80|\xef\xbb\xbf")
            .split('|')
        << QByteArray(1, '\0');
    QRandomGenerator random(seed);
    const int usable = random.bounded(5, pieces.size() + 1); // with few pieces, some markers never occur
    QByteArray content;
    for (int i = random.bounded(300); i > 0; --i) {
        content += random.bounded(8) == 0 ? QByteArray("originalName") : pieces.at(random.bounded(usable));
    }
    return content;
}

} // namespace

class test_graph_text : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void same_as_the_slow_cutter() {
        int entities = 0;
        for (quint32 seed = 1; seed <= 3000; ++seed) {
            const QByteArray content = random_file(seed);
            const QVector<QStringList> found = cut_all(content);
            const QVector<QStringList> wanted = slow_cutter(content).entities();
            QVERIFY2(found == wanted, (QByteArray::number(seed) + ": " + content.toPercentEncoding()).constData());
            entities += found.size();
        }
        QVERIFY(entities > 3000); // the files are worth cutting
    }

    // wanted: "/" before each entity, then its texts that are not empty as "column=text|".
    void entities_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("wanted");
        const auto row = [](const char* name, const QByteArray& content, const char* wanted) {
            QTest::newRow(name) << content << QString::fromUtf8(wanted);
        };
        const QByteArray name_a = " originalName \"A\" ;\r\n";
        row("no entity", " entityId \"1\"\r\n", "");
        row("marker at byte 0 hides the later ones", "originalName \"A\"\r\noriginalName \"B\"\r\n", "");
        row("other marker at byte 0", "phone \"1\"\r\n" + name_a + "phone \"2\"\r\n", "/0=A|");
        row("UTF-8 name", " originalName \"M\xc3\xbcnchen\"\r\n", "/0=M\xc3\xbcnchen|");
        row("Latin-1 others", name_a + "entityId \"\xc3\xbc\"\r\nphone \"\xe9\"\r\n",
            "/0=A|5=\xc3\x83\xc2\xbc|7=\xc3\xa9|");
        row("two entities share what follows", name_a + "entityId \"1\"\r\nentityId \"2\"\r\n" + name_a,
            "/0=A|5=1|/0=A|5=2|");
        row("what stands before counts too", " phone \"1\"\r\n" + name_a + name_a, "/0=A|7=1|/0=A|");
        row("four quotes give the last pair's text", " originalName \"A\" \"B\" ;\r\n", "/0=B|");
        row("three quotes give what is between", " originalName \"A\" \" ;\r\n", "/0= |");
        row("cut at a zero byte", " originalName \"A\"" + QByteArray(1, '\0') + " \"B\"\r\n", "/0=A|");
        row("line feed alone is no line end", " originalName \"A\"\n\"B\"\r\n", "/0=B|");
        row("no line end ends the file", " entityId \"1\"\r\n originalName \"A\" originalName", "/5=1|");
        row("missing end exhausts its marker only", name_a + name_a + " phone \"1\" sid:x\" phone", "/0=A|/0=A|");
        row("point", name_a + "Point(47.6 -122.3)\"\r\n", "/0=A|8=47.6|9=-122.3|");
        row("point, blanks around", name_a + "Point( \t47.6 -122.3)\xa0\"\r\n", "/0=A|8=47.6|9=-122.3|");
        row("point, two blanks between", name_a + "Point(47.6  -122.3)\"\r\n", "/0=A|8=47.6|");
        row("point, one number", name_a + "Point(47.6)\"\r\n", "/0=A|");
        row("point, empty", name_a + "Point\r\n", "/0=A|");
        row("search id with colon", name_a + "sid:place.1\"x\r\n", "/0=A|6=place.1|");
        row("search id, colon behind the quote", name_a + "sid=p\" :\r\n", "/0=A|6=p|");
        row("search id without colon", name_a + "sid=p\"\r\n", "/0=A|6=sid=p|");
        row("search id of four characters", name_a + "sid:\r\n", "/0=A|6=sid:|");
        row("search id, quote dropped", name_a + "sid\":\"x\r\n", "/0=A|6=:|");
        row("search id, fifth character in UTF-8", name_a + "sid:\xc3\xbc\"\r\n", "/0=A|6=\xc3\xbc|");
        row("date", name_a + "dateCreated \"2019-05-01T10:20:30.000Z\"^^xsd:Date", "/0=A|");
        row("blank dates", name_a + "dateCreated \" \" Date dateModified \"\" Date dateAccessed> \"\t\" Date",
            "/0=A|1=0|2=0|3=0|");
        row("date accessed needs its bracket", name_a + "dateAccessed \" \" Date", "/0=A|");
        row("date ends at Date anywhere", name_a + "dateCreated \" \"\r\nphone \"1\"\r\n\"\" Date", "/0=A|1=0|7=1|");
        row("date without quotes", name_a + "dateCreated Date", "/0=A|");
        row("name", name_a + "name \"N\"\r\n", "/0=A|4=N|");
    }

    void entities() {
        QFETCH(QByteArray, content);
        QString found;
        for (const QStringList& entity : cut_all(content)) {
            found += QLatin1Char('/');
            for (int column = 0; column < entity.size(); ++column) {
                QVERIFY(!entity.at(column).isNull());
                if (!entity.at(column).isEmpty()) {
                    found += "%1=%2|"_q.arg(column).arg(entity.at(column));
                }
            }
        }
        QTEST(found, "wanted");
    }

    void single_values() {
        const QByteArray data = "0 \"one\" \"\xc3\xbc\" 2 \" \" 3";
        QCOMPARE(graph_original_name(data, 0, 12), QString::fromUtf8("\xc3\xbc"));
        QCOMPARE(graph_quoted_value(data, 0, 12), QString::fromUtf8("\xc3\x83\xc2\xbc"));
        QCOMPARE(graph_date(data, 0, 12), ""_q);
        QCOMPARE(graph_date(data, 12, data.size()), "0"_q);
        QCOMPARE(graph_quoted_value(data, 0, 6), ""_q); // the second quote is outside
        for (const QString& value :
             {graph_original_name(data, 0, 0), graph_original_name(data, -9, 6), graph_quoted_value(data, 12, 2),
              graph_quoted_value(data, 90, 99), graph_quoted_value(QByteArray(), 0, 5), graph_date(data, 5, -1)}) {
            QVERIFY(value.isEmpty() && !value.isNull());
        }
        QCOMPARE(graph_quoted_value(data, -5, 1000), " "_q);
    }

    void timestamps() {
        for (const char* time : {"2019-05-01T10:20:30.000Z", "2019-05-01 10:20:30"}) {
            QCOMPARE(graph_timestamp(QLatin1String(time)), ""_q);
        }
        for (const QString& blank : {" \t"_q, ""_q, QString()}) {
            QCOMPARE(graph_timestamp(blank), "0"_q);
        }
    }
};

QTEST_GUILESS_MAIN(test_graph_text)
#include "test_graph_text.moc"
