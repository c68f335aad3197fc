// SPDX-License-Identifier: MIT
// How the program tells its caller what happened. A run that a signal cancelled gives 128 + the signal's number.
#pragma once

enum exit_code : int {
    exit_complete = 0,
    exit_internal = 1,      // the plugin cannot be loaded, a worker not be started, or a fault of the program itself
    exit_usage = 2,         // the command line asks for something that cannot be meant
    exit_failures = 3,      // finished, but the debug log holds failures or evidence could not be read
    exit_nothing_found = 4, // the source holds nothing that the plugin reads
    exit_output = 5,        // the result database, the debug log or standard output cannot be written
};
