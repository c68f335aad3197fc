// SPDX-License-Identifier: MIT
// One run of the plugin: one object from create_object to delete, its operations in the documented order.
#pragma once

#include "host/run/plugin_library.h"
#include "host/run/worker_protocol.h"

#include <QObject>

// Hears of a run's progress. Called on the thread that drives the plugin.
class plugin_listener : public QObject {
    Q_OBJECT

public Q_SLOTS:
    virtual void rows_written(qint64 rows) = 0; // so far, by the plugin's own count
    virtual void steps_done(int steps) = 0;     // selected tables done so far
};

// Runs the plugin over the request's accounts and tables, into the request's folder.
void run_plugin(const plugin_library& library, const worker_request& request, plugin_listener& listener);
