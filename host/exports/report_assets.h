// SPDX-License-Identifier: MIT
// The texts of report.css and report.js, put into the program when it is built.
#pragma once

#include <string_view>

extern const std::string_view report_style;
extern const std::string_view report_script;
