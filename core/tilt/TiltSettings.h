#pragma once

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "core/link/Questions.h"
#include "core/settings/HostReg.h"
#include "core/tilt/CalibrationStatus.h"

#include <chrono>
#include <optional>
#include <string>

namespace fieldcore {

/// What came of asking a tilt sensor.
enum class TiltState
{
    NotAsked,   ///< or given up
    NoReceiver, ///< no port is open
    Silent,     ///< nothing comes that can be read
    NotBuiltIn, ///< the receiver does not know the question: it has no sensor
    Absent,     ///< there is a reading, and it says that the sensor is not there
    Heard,      ///< there is a reading
};

/// Asks for a reading, and for the calibration record behind one that came. Both go into what is
/// known of the receiver: CCommand::Heard().
[[nodiscard]] TiltState AskTilt(CCommand& command, bool withRecord);

/// Whether a question that ended so is asked again at its usual pace.
[[nodiscard]] inline bool IsAnswered(TiltState state)
{
    return state != TiltState::Silent;
}

/// As one that is drawn: an older reading is not believed.
inline constexpr std::chrono::seconds kTiltStaleAge{2};
inline constexpr Rhythm kBubbleRhythm{std::chrono::milliseconds(200), std::chrono::seconds(8)};
inline constexpr Rhythm kTiltRhythm{std::chrono::seconds(1), std::chrono::seconds(8)};

/// The state of the tilt sensor's calibration and the settings of the bubble, from opening their
/// screen to closing it. Settings go to eBubbleConfig, are stored when they changed, and go to the
/// receiver where it keeps them too; whether it took them is not told, but whether they could be
/// stored is. What the sensor says stays in what is known of the receiver. The thread of the
/// command channel.
class TiltSettings
{
public:
    /// @param command  may be null; must outlive the object
    explicit TiltSettings(CCommand* command)
        : m_command(command), m_reg(EnvironmentOf(command).Roots())
    {}

    /// Takes over how long the receiver counts a calibration as valid.
    void Open();
    static void Open(const TiltCalibration& record);

    /// Asks for reading and record. While another exchange is under way nothing is asked, and
    /// nothing changes.
    /// @return false in that case
    bool Refresh();
    /// What came of asking elsewhere, in place of Refresh().
    void Take(TiltState state);
    /// Of the last Refresh().
    [[nodiscard]] TiltState State() const { return m_state; }
    [[nodiscard]] std::wstring Remain() const;
    [[nodiscard]] int StatusTextId() const;
    /// Why there is nothing to say of the calibration, a number of the string table; 0: there is.
    [[nodiscard]] int NoticeTextId() const;
    /// Whether a calibration can be tried.
    [[nodiscard]] bool HasSensor() const;
    /// Nothing if the last Refresh() brought none.
    [[nodiscard]] std::optional<TiltReading> Reading() const;
    [[nodiscard]] std::optional<TiltCalibration> Record() const;

    // What the user chooses or types. Places are those of the lists in CalibrationStatus.h;
    // others change nothing. Each answers 1 if the value changed.

    int ChooseSensitivity(int place);
    int ChooseSpeed(int place);
    /// A number that is not above 0 is ignored.
    int EnterDuration(const std::wstring& text);
    int EnterExpiry(const std::wstring& text);
    [[nodiscard]] static std::wstring DurationText();
    [[nodiscard]] static std::wstring ExpiryEditText();

    /// Asks the user to prepare, and once more if the receiver leans by more than two degrees.
    /// @return whether a calibration may begin
    [[nodiscard]] bool MayCalibrate(Host& host);

    /// How the last run of this program ended; the next one writes over it.
    [[nodiscard]] static LastCalibrationRun& LastRun();

private:
    void Store() const;

    CCommand* const m_command;
    const HostReg m_reg;
    TiltState m_state = TiltState::NotAsked;
};

} // namespace fieldcore
