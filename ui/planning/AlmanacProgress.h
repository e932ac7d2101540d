#pragma once

#include "core/platform/Clock.h"

namespace fieldcore {

class CCommand;
class CTextProgressCtrl;

/// How far the almanac has come: shown as long as this lives. The host's strip has the button that
/// ends it. User-interface thread only.
class AlmanacProgress
{
public:
    /// @param bar  both must outlive this
    AlmanacProgress(CCommand& command, CTextProgressCtrl& bar);
    ~AlmanacProgress();
    AlmanacProgress(const AlmanacProgress&) = delete;
    AlmanacProgress& operator=(const AlmanacProgress&) = delete;

    /// Shows the satellite that is asked for and how long the rest will take, and lets the host
    /// breathe.
    /// @param prn  1 to 32; 33 when all are there
    /// @return false if the user wants it to end
    bool Show(int prn);

private:
    CCommand& m_command;
    CTextProgressCtrl& m_bar;
    const Clock::Duration m_began;
};

} // namespace fieldcore
