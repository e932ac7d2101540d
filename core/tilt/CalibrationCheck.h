#pragma once

#include "core/link/Command.h"

namespace fieldcore {

/// Looks once, some time after connecting, whether the tilt sensor must be calibrated. The thread
/// of the command channel.
class CalibrationCheck
{
public:
    /// @param command  may be null; must outlive the check
    void Arm(CCommand* command, bool isArmed);
    [[nodiscard]] bool IsArmed() const { return m_isArmed; }
    /// Another exchange is under way: the look has to wait.
    [[nodiscard]] bool MustWait() const;
    [[nodiscard]] CCommand* Command() const { return m_command; }

    /// Looks if it is armed, and disarms.
    /// @return whether the sensor is there and ready, and not calibrated
    [[nodiscard]] bool Look();

private:
    CCommand* m_command = nullptr;
    bool m_isArmed = false;
};

} // namespace fieldcore
