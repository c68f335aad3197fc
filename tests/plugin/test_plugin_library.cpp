// SPDX-License-Identifier: MIT
// The built library seen from outside: its one symbol, the order of its slots, its meta-object.
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/virtual_slot.h"

#include <QProcess>
#include <QtTest>

#include <dlfcn.h>

namespace {

struct behind_qframe : QFrame {
    virtual void first_of_its_own() {}
};

QStringList symbol_lines(const QStringList& options) {
    QProcess nm;
    nm.start("nm"_q, options + QStringList({"--defined-only"_q, QStringLiteral(PLUGIN_LIBRARY)}));
    if (!nm.waitForFinished() || nm.exitCode() != 0) {
        qFatal("nm does not run");
    }
    return QString::fromLatin1(nm.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

class test_plugin_library : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exports_one_symbol() {
        const QStringList lines = symbol_lines({"-D"_q});
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().endsWith(" T create_object"_q), qPrintable(lines.first()));
    }

    // Reads the loaded object's virtual table and finds out by address which function stands in which slot.
    void slot_order() {
        const char* const wanted[] = {
            "pub_set_engine_type(int)",
            "pub_get_artifact_name()",
            "pub_set_essentials()",
            "pub_set_source_count(int)",
            "pub_set_ios_uid_backup_pointer(ios_uid_backup_parser*)",
            "pub_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info)",
            "pub_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info)",
            "pub_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info)",
            "pub_set_essential_for_vantor_desk_extraction(QStringList, QStringList)",
            "pub_set_result_directory(QString)",
            "pub_create_db_tables()",
            "pub_set_clear_db(bool)",
            "pub_cancel_extraction()",
            "pub_find_source_file()",
            "pub_set_extended_attributes_list(QStringList)",
            "pub_extract_artifacts()",
            "pub_generate_chat_html_pages()",
            "pub_remove_temporary_asthetics()",
        };
        QHash<quintptr, QString> function_at;
        for (const QString& line : symbol_lines({"-C"_q})) {
            function_at.insert(static_cast<quintptr>(line.section(QLatin1Char(' '), 0, 0).toULongLong(nullptr, 16)),
                               line.section(QLatin1Char(' '), 2));
        }
        const loaded_plugin plugin;
        quintptr* const table = *reinterpret_cast<quintptr**>(plugin.get());
        Dl_info where = {};
        const int first = slot_of(&behind_qframe::first_of_its_own);
        QVERIFY(::dladdr(reinterpret_cast<void*>(table[first]), &where) != 0);
        const auto base = reinterpret_cast<quintptr>(where.dli_fbase);
        int slot = first;
        for (const char* name : wanted) {
            QCOMPARE(function_at.value(table[slot++] - base), "cortana::"_q + QLatin1String(name));
        }
        QCOMPARE(slot_of(&host_interface::pub_set_engine_type), first);
        QCOMPARE(slot_of(&host_interface::pub_remove_temporary_asthetics), slot - 1);
    }

    void meta_object() {
        const loaded_plugin plugin;
        const QMetaObject* meta = plugin->metaObject();
        QCOMPARE(meta->className(), "cortana");
        QStringList own;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            own << QString::fromLatin1(meta->method(i).methodSignature());
        }
        QCOMPARE(own,
                 QStringList({"signal_extracted_records_of_plugin_overall(qlonglong)"_q,
                              "signal_tab_processed_of_plugin_overall(int)"_q, "slot_m_process_finished(int)"_q,
                              "slot_extracted_records_of_plugin(qlonglong)"_q, "slot_total_tabs_processed(int)"_q}));
    }

    void frame_form() {
        const loaded_plugin plugin;
        QCOMPARE(plugin->objectName(), "cortana"_q);
        QCOMPARE(plugin->windowTitle(), "Frame"_q);
        QCOMPARE(plugin->size(), QSize(400, 300));
        QCOMPARE(int(plugin->frameShape()), int(QFrame::StyledPanel));
        QCOMPARE(int(plugin->frameShadow()), int(QFrame::Raised));
        QStringList children;
        for (const QObject* child : plugin->children()) {
            children << QString::fromLatin1(child->metaObject()->className());
        }
        QCOMPARE(children.mid(0, 3), QStringList({"cortana_macos"_q, "cortana_ios_uid"_q, "cortana_winos"_q}));
        QCOMPARE(children.size(), 4); // and the helper object
    }
};

QTEST_MAIN(test_plugin_library)
#include "test_plugin_library.moc"
