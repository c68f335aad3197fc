// SPDX-License-Identifier: MIT
// An empty class that belongs to every plugin of the host; nothing uses it.
#pragma once

class m_cortana {
public:
    m_cortana() {}
};
