// SPDX-License-Identifier: MIT
// The frame of a step and its log lines.
#include "extractors/step_run.h"

#include "common/plugin_static_function.h"

step_run::step_run(const step_context& step, const step_texts& texts_of_step, insert_session& open_session)
    : context(step), texts(texts_of_step), session(open_session), statement(QLatin1String(texts_of_step.statement)) {}

void step_run::log(const QString& message) const {
    plugin_static_function::app_debug(message, QLatin1String(texts.function));
}

void step_run::insert(const QVector<QVariant>& values) {
    if (session.insert(statement, values)) {
        context.count_inserted();
    } else {
        log_insert_failure();
    }
}

void step_run::log_insert_failure() const {
    const insert_failure_lines& lines = texts.insert_failed;
    log(QLatin1String(lines.message) + (lines.names_database ? session.database_name() : QString()));
    log(QLatin1String(lines.error_prefix) + session.error_text());
    log(QLatin1String(lines.query_prefix) + session.executed_query());
}

void run_step(const step_context& context, const step_texts& texts, const std::function<void(step_run&)>& body) {
    const QString function = QLatin1String(texts.function);
    plugin_static_function::app_debug(QLatin1String(texts.started), function);
    bool was_cancelled = false;
    {
        insert_session session(context.destination_db_path, function);
        if (!session.is_open()) {
            plugin_static_function::app_debug(QLatin1String(texts.opening_failed) + context.destination_db_path,
                                              function);
            plugin_static_function::app_debug(session.error_text(), function);
            return;
        }
        step_run run(context, texts, session);
        body(run);
        was_cancelled = run.has_seen_cancel();
        if (!session.commit()) {
            run.log_insert_failure(); // the rows are lost: the log must say so
        }
    }
    if (!was_cancelled) {
        plugin_static_function::app_debug(QLatin1String(texts.ended), function);
    }
}
