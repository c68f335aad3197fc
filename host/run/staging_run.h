// SPDX-License-Identifier: MIT
// Has the wanted parts of a source staged by a worker of its own, which stays for questions about other files of it.
#pragma once

#include "host/health/health_report.h"
#include "host/run/extract_options.h"
#include "host/run/staged_list.h"
#include "host/run/worker_session.h"

#include <QByteArray>
#include <QVector>

struct staging_outcome {
    bool as_given = false;        // the source can be read as it stands; nothing was staged
    QVector<staged_file> files;   // copies, folders, and when questions are ended empty ones for files that rows name
    QVector<QByteArray> profiles; // names of the staged profile folders, in byte order
    health_report findings;       // by the paths of the view
    sandbox_state sandbox;
    int refused = 0; // an exit code when there is nothing to go on with
    QString reason;
};

// True when the plugin may read the folder as it stands, as far as names and sizes tell.
bool is_plain_folder(const QByteArray& source, const extract_options& options);

// Needs the application object.
class staged_source {
public:
    // folder: ends in "/"; what an earlier run left there is removed. options outlives this object.
    staged_source(const QByteArray& source, const QString& folder, const extract_options& options);
    ~staged_source();
    staged_source(const staged_source&) = delete;
    staged_source& operator=(const staged_source&) = delete;

    // Copies the wanted parts and gives the copies their times; call it first, and once. Of a worker that is lost, what
    // it had copied whole stays, and all else is told as a problem.
    void stage();
    const staging_outcome& outcome() const { return result; }

    // Makes an empty file or folder among the copies for each path below the Windows root that exists in the source,
    // where none stands. True: that is under way, and settled is called when it is done, from the event loop of the
    // caller; nothing else may be asked before. False: it is settled already.
    bool make_named(const QVector<QByteArray>& paths, const std::function<void()>& settled);
    // True when some were made.
    bool holds_named() const { return named_begin < staged.files().size(); }

    // Has the worker end and gives what was made for questions its times. Returns why it could not; empty: all is done.
    QString end_questions();

private:
    void take(const worker_message& message);
    void take_loss(const worker_loss& loss);
    void lose_names();
    void list_profiles();
    void survey_hives();
    QString give_times();
    // In place of a copy's path that of its source.
    void add_findings(const health_report& findings);

    worker_request request;
    const extract_options& options;
    staging_outcome result;
    staged_list staged;
    int named_begin = 0;  // in the list: those before it were staged unasked
    QString told_of_loss; // why nothing can be asked; empty: it can, or nobody was told yet that it cannot
    worker_session copying;
};

// Removes a folder with all that is in it, names that are not UTF-8 too; follows no links.
void remove_staged(const QString& folder);
