// SPDX-License-Identifier: MIT
// What the rows were read from and what they were read with: the evidence files, and the run itself.
#pragma once

#include "host/exports/report_record.h"

#include <string>

std::string evidence_html(const report_record& record);
// Versions, arguments, machine, and the files that the run wrote.
std::string run_html(const report_record& record);
