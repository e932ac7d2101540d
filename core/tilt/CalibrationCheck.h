#pragma once

#include "core/link/Command.h"

namespace fieldcore {

/// Looks once, some time after connecting, whether the tilt sensor must be calibrated. The thread
/// of the command channel; the look itself that of its face.
class CalibrationCheck
{
public:
    /// @param command  may be null; must outlive the check
    void Arm(CCommand* command, bool isArmed);
    [[nodiscard]] bool IsArmed() const { return m_isArmed; }
    [[nodiscard]] CCommand* Command() const { return m_command; }

    /// Disarms. @return whether it was armed for a receiver: time for the look
    [[nodiscard]] bool Disarm();
    /// The look: one question.
    /// @return whether the sensor is there and ready, and not calibrated
    [[nodiscard]] static bool Look(CCommand& command);

private:
    CCommand* m_command = nullptr;
    bool m_isArmed = false;
};

} // namespace fieldcore
