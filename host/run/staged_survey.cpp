// SPDX-License-Identifier: MIT
// The copies are as untrusted as the source: nothing of them is opened in this process.
#include "host/run/staged_survey.h"

#include "host/run/cancellation.h"
#include "host/run/worker_session.h"

#include <QFile>

#include <memory>

namespace {

class profile_survey {
public:
    profile_survey(const QByteArray& profile, const worker_request& staging, const extract_options& options)
        : outcome{profile, {}, {}}, session(request_for(profile, staging, options), options,
                                            [this](const worker_message& message) { take(message); }) {}

    void start(const std::function<void()>& gone) {
        session.start([this, gone] {
            outcome.loss = session.loss().reason;
            gone();
        });
    }
    const survey_outcome& result() const { return outcome; }

private:
    static worker_request request_for(const QByteArray& profile, const worker_request& staging,
                                      const extract_options& options) {
        worker_request survey;
        survey.source_root = staging.folder + QLatin1Char('/');
        survey.accounts = {{QFile::decodeName(profile), QString()}};
        survey.checked_tables = options.tables;
        survey.survey = true;
        survey.sandbox = staging.sandbox;
        return survey;
    }
    void take(const worker_message& message) {
        if (message.what == worker_message::checked) {
            outcome.findings = message.health;
        }
    }

    survey_outcome outcome;
    worker_session session;
};

void run_together(const std::vector<std::unique_ptr<profile_survey>>& surveys, int at_once) {
    QEventLoop loop;
    size_t next = 0;
    int running = 0;
    std::function<void()> start_more = [&] {
        for (; running < at_once && next < surveys.size() && !is_cancelled(); ++next) {
            ++running;
            surveys[next]->start([&] {
                --running;
                start_more();
            });
        }
        if (running == 0) {
            loop.quit();
        }
    };
    QTimer::singleShot(0, &loop, start_more);
    if (!surveys.empty()) {
        loop.exec();
    }
}

} // namespace

std::vector<survey_outcome> survey_profiles(const QVector<QByteArray>& profiles, const worker_request& staging,
                                            const extract_options& options) {
    std::vector<std::unique_ptr<profile_survey>> surveys;
    for (const QByteArray& profile : profiles) {
        surveys.push_back(std::make_unique<profile_survey>(profile, staging, options));
    }
    run_together(surveys, options.jobs);
    std::vector<survey_outcome> outcomes;
    outcomes.reserve(surveys.size());
    for (const auto& one : surveys) {
        outcomes.push_back(one->result());
    }
    return outcomes;
}
