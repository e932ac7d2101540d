#pragma once

#include "core/host/Host.h"

namespace fieldcore {

/// Shows the host's wait cursor as long as it lives.
class WaitCursor
{
public:
    /// Shows the cursor. @param host  must outlive the object
    explicit WaitCursor(Host& host) : m_host(host) { m_host.ShowWaitCursor(true); }
    ~WaitCursor() { m_host.ShowWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    Host& m_host;
};

} // namespace fieldcore
