#pragma once

#include "core/settings/HostReg.h"

#include <string>

namespace fieldcore {

/// How the electronic bubble behaves. The values live as long as the program; three of them are
/// kept in the settings. The thread that uses the library.
///
/// A setter brings what it is given into its range and answers 1 if the value changed, 0 if it was
/// equal. What is no number, and an endless sensitivity, changes nothing.
class eBubbleConfig
{
public:
    /// Tilt that moves the bubble by 2 mm, arc minutes; 40 at first, any number.
    [[nodiscard]] static double GetBubbleSensitivity() { return s_sensitivity; }
    static int SetBubbleSensitivity(double arcMinutes);

    /// Speed of the sensor's output: 0 fast, 1 medium (at first), 2 slow.
    [[nodiscard]] static int GetBubbleViscosity() { return s_viscosity; }
    static int SetBubbleViscosity(int viscosity);

    /// How far the antenna may stand beside the point, m: 0.001 to 1, 0.02 at first.
    [[nodiscard]] static double GetBubbleDuration() { return s_durationM; }
    static int SetBubbleDuration(double toleranceM);

    /// How long a calibration is valid, hours: 1 to 30000, 720 at first. Not kept: the receiver
    /// has it.
    [[nodiscard]] static int GetBubbleExpiry() { return s_expiryH; }
    static int SetBubbleExpiry(int hours);

    /// Reads the three that are kept and sets them. A missing one has its first value; a text that
    /// is no number counts as 0.
    /// @param reg  one that starts at the library's own key
    static void LoadBubbleData(const CReg& reg = HostReg());
    /// Stores all three, or none: the sensitivity in whole arc minutes, the tolerance in whole mm.
    /// @return 1, or 0 if they could not be stored
    static int SaveBubbleData(const CReg& reg = HostReg());

    /// The key that the settings stand in.
    [[nodiscard]] static std::wstring GetKeyPrm();

private:
    static double s_sensitivity;
    static int s_viscosity;
    static double s_durationM;
    static int s_expiryH;
};

} // namespace fieldcore
