// SPDX-License-Identifier: MIT
// bodyfile.txt: The Sleuth Kit's body format, version 3, as mactime sorts it.
#pragma once

#include "host/exports/timeline_writer.h"

class bodyfile_writer : public timeline_writer {
public:
    explicit bodyfile_writer(export_folder& folder);

protected:
    bool append_event(const timeline_event& event, std::string& to) override;
};
