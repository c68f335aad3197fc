// SPDX-License-Identifier: MIT
// Runs a measurement in a process of its own, so that its peak memory is its own.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct child_figures {
    bool succeeded = false;
    double seconds = 0;           // wall time from start to exit
    double peak_megabytes = 0;    // resident
    double processor_seconds = 0; // user and system time: what a busy machine changes least
};

// Runs program (looked up in PATH when it has no "/") with arguments; its output is thrown away.
child_figures run_child(const std::string& program, const std::vector<std::string>& arguments);
// Runs this benchmark itself again.
child_figures run_self(const std::vector<std::string>& arguments);
// Runs work in a fork of this process; its output stays. Work that does not return (a signal, an exit) has failed.
child_figures run_work(const std::function<void()>& work);
// The same with the seconds of work alone, without what prepare did in front of it.
child_figures run_measured(const std::function<void()>& prepare, const std::function<void()>& work);
// As run_work, for work without which the benchmark cannot go on: ends the program when it failed.
child_figures must_run(const std::function<void()>& work);
// Of so many runs the one that took least of the processor; a failed one ends them and is the answer.
child_figures best_of(int rounds, const std::function<child_figures()>& run);
