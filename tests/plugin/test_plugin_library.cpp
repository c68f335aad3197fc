// SPDX-License-Identifier: MIT
// The built library seen from outside: its one symbol, the order of its slots, its meta-object.
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/virtual_slot.h"

#include <QProcess>
#include <QtTest>

class test_plugin_library : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exports_one_symbol() {
        QProcess nm;
        nm.start("nm"_q, {"-D"_q, "--defined-only"_q, QStringLiteral(PLUGIN_LIBRARY)});
        QVERIFY(nm.waitForFinished() && nm.exitCode() == 0);
        const QByteArray symbols = nm.readAllStandardOutput();
        QCOMPARE(symbols.count('\n'), 1);
        QVERIFY2(symbols.endsWith(" T create_object\n"), symbols.constData());
    }

    // The plugin object overrides these, so its virtual table has the same order.
    void slot_order() {
        using host = host_interface;
        struct behind_qframe : QFrame {
            virtual void first_of_its_own() {}
        };
        int slot = slot_of(&behind_qframe::first_of_its_own);
        for (const int found :
             {slot_of(&host::pub_set_engine_type), slot_of(&host::pub_get_artifact_name),
              slot_of(&host::pub_set_essentials), slot_of(&host::pub_set_source_count),
              slot_of(&host::pub_set_ios_uid_backup_pointer), slot_of(&host::pub_set_desktop_info),
              slot_of(&host::pub_set_general_info), slot_of(&host::pub_set_source_info),
              slot_of(&host::pub_set_essential_for_vantor_desk_extraction), slot_of(&host::pub_set_result_directory),
              slot_of(&host::pub_create_db_tables), slot_of(&host::pub_set_clear_db),
              slot_of(&host::pub_cancel_extraction), slot_of(&host::pub_find_source_file),
              slot_of(&host::pub_set_extended_attributes_list), slot_of(&host::pub_extract_artifacts),
              slot_of(&host::pub_generate_chat_html_pages), slot_of(&host::pub_remove_temporary_asthetics)}) {
            QCOMPARE(found, slot++);
        }
    }

    void object_as_hosts_find_it() {
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
        QCOMPARE(plugin->objectName(), "cortana"_q);
        QCOMPARE(plugin->windowTitle(), "Frame"_q);
        QCOMPARE(plugin->size(), QSize(400, 300));
        QCOMPARE(int(plugin->frameShape()), int(QFrame::StyledPanel));
        QCOMPARE(int(plugin->frameShadow()), int(QFrame::Raised));
        QStringList children;
        for (const QObject* child : plugin->children()) {
            children << QString::fromLatin1(child->metaObject()->className());
        }
        QCOMPARE(children,
                 QStringList({"cortana_macos"_q, "cortana_ios_uid"_q, "cortana_winos"_q, "plugin_helper_functions"_q}));
    }
};

QTEST_MAIN(test_plugin_library)
#include "test_plugin_library.moc"
