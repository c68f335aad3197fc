// SPDX-License-Identifier: MIT
// Runs an extraction with one worker process a profile, so many at once as asked, and takes what finished profiles
// wrote into the result database and the debug log, in the profiles' order. Touches no evidence itself.
#pragma once

#include "host/run/extract_options.h"
#include "host/run/progress.h"
#include "host/run/result_merge.h"
#include "host/run/staging_run.h"
#include "host/run/summary.h"
#include "host/run/worker_process.h"

#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

class supervisor : public QObject {
    Q_OBJECT

public:
    // groups: the accounts of each run of the plugin, in order. source_root ends in "/". library: absolute. When result
    // names no output folder, the evidence is looked over and no more. copies: what stands below source_root was staged
    // by it; null: the source is read as it is. All but groups outlive this object.
    supervisor(const extract_options& asked, const QString& source_root, const QString& library,
               const QList<QList<system_account>>& groups, run_summary& result, staged_source* copies = nullptr);
    ~supervisor() override;

    // Returns when the last worker is gone and all that can be taken is taken. Needs the application object.
    void run();

private:
    struct profile; // one group and what came of it

    bool only_checks() const;
    bool may_start() const;
    void remove_workers_folder() const;
    bool make_folder_for(profile& one);
    void start_more();
    worker_request request_for(const profile& one) const;
    void start_worker(profile& one);
    void take_message(profile& one, const worker_message& message);
    void take_evidence(profile& one, const evidence_record& record);
    void take_end(profile& one, const worker_loss& loss);
    void take_loss(profile& one, const worker_loss& loss);
    void take_findings(profile& one);
    void take_rows_of(profile& one);
    void look_for_named_files();
    void go_on_with_rows();
    void collect_named_files(profile& one);
    void merge_finished();
    void merge_in_order();
    bool put_cleared_in_place(const QString& links, QString& error) const;
    void replace_database();
    void merge(profile& one);
    void add_links_of(const profile& one, const merge_outcome& outcome);
    merge_outcome merge_all_that_can_be_read(profile& one, bool clear);
    void look_round(); // at the workers' limits, and for a cancel
    void tell_progress(const profile& one);

    const extract_options& options;
    QString root;
    QString library;
    run_summary& summary;
    staged_source* staged;
    std::optional<source_facts> facts; // of a staged source
    std::vector<std::unique_ptr<profile>> profiles;
    run_progress progress;
    QString merge_target; // the database that rows go into
    QEventLoop loop;
    QTimer clock;
    int running = 0;
    bool is_looking = false; // for files that rows of a profile name
    bool cancel_passed_on = false;
    bool has_cleared = false;
};
