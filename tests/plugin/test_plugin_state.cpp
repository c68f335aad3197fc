// SPDX-License-Identifier: MIT
// The plugin's own object, seen from within: a cancel and its reset arrive at every part that works by itself.
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "plugin/cortana.h"
#include "plugin/cortana_ios_uid.h"
#include "plugin/cortana_macos.h"
#include "tests/support/test_text.h"

#include <QtTest>

namespace {

// Tells of a front that extracts nothing whether it is cancelled.
struct front_state : empty_front {
    static bool cancelled(const empty_front& front) { return front.*(&front_state::bool_cancel_extraction); }
};

} // namespace

class test_plugin_state : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cancel_and_reset_arrive() {
        cortana plugin;
        auto* const helper = plugin.findChild<plugin_helper_functions*>();
        const auto cancelled_fronts = [&plugin] {
            return QVector<bool>{front_state::cancelled(*plugin.findChild<cortana_macos*>()),
                                 front_state::cancelled(*plugin.findChild<cortana_ios_uid*>())};
        };
        for (int run = 0; run < 2; ++run) {
            plugin.pub_set_essentials();
            QVERIFY(!plugin_static_function::bool_cancel_extraction);
            QVERIFY(helper->check_is_image_by_extn("a.jpg"_q));
            QCOMPARE(cancelled_fronts(), QVector<bool>({false, false}));
            plugin.pub_cancel_extraction();
            QVERIFY(plugin_static_function::bool_cancel_extraction);
            QVERIFY(!helper->check_is_image_by_extn("a.jpg"_q)); // it gives up at its first look
            QCOMPARE(cancelled_fronts(), QVector<bool>({true, true}));
        }
    }
};

QTEST_MAIN(test_plugin_state)
#include "test_plugin_state.moc"
