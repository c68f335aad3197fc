// SPDX-License-Identifier: MIT
// timesketch.jsonl: JSON lines as Timesketch imports them, an event each.
#pragma once

#include "host/exports/timeline_writer.h"

class timesketch_writer : public timeline_writer {
public:
    explicit timesketch_writer(export_folder& folder);

protected:
    bool append_event(const timeline_event& event, std::string& to) override;

private:
    std::string row_fields; // the same in all events of a row
};
