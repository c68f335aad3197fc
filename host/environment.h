// SPDX-License-Identifier: MIT
// What the process needs around it before Qt starts: a platform that asks for no display, a locale whose file names
// are UTF-8, and writes that fail instead of ending the process.
#pragma once

// Call first of all, before any Qt object exists.
void prepare_environment();

// Call when the application object exists: makes Qt take file names as UTF-8 where the system has no such locale.
void settle_file_name_encoding();
