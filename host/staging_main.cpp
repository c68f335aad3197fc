// SPDX-License-Identifier: MIT
// The program that cortana starts to copy what is wanted of an image, an archive or a folder of another layout.
#include "host/console.h"
#include "host/environment.h"
#include "host/exit_codes.h"
#include "host/run/cancellation.h"
#include "host/run/staging_worker.h"

#include <exception>

int main(int argc, char** argv) {
    try {
        prepare_environment();
        hold_cancel_signals();
        return run_worker(argc, argv, staging_task);
    } catch (const std::exception& fault) {
        say(QStringLiteral("internal fault: ") + QString::fromLocal8Bit(fault.what()));
        return exit_internal;
    }
}
