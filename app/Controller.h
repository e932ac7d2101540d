#pragma once

#include "app/HomeState.h"
#include "app/Options.h"

#include "core/equipment/AntennaSettings.h"
#include "core/equipment/PortEdit.h"
#include "core/equipment/StatusPoll.h"
#include "core/link/Command.h"
#include "core/link/ConnectChoice.h"
#include "core/link/FrameHistory.h"
#include "core/link/ReceiverLink.h"
#include "core/link/RecvInfo.h"
#include "core/planning/SkyRecorder.h"
#include "core/platform/PortNames.h"
#include "core/settings/HostReg.h"
#include "core/settings/SettingsRoots.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/Theme.h"
#include "ui/equipment/ComPort.h"
#include "ui/link/ConnectDlg.h"
#include "ui/link/PortChooser.h"
#include "ui/planning/SurveyPlan.h"

#include <QObject>
#include <QTimer>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace fieldcore {

class FastClock;
namespace simulator {
class Simulator;
}

/// What the simulated receiver can play.
[[nodiscard]] std::vector<ScenarioChoice> Scenarios();

/// What the windows of the field controller work with: settings, the channel to the receiver, the
/// link that is kept, and the simulated receiver if one is meant. User-interface thread only.
class Controller : public QObject
{
    Q_OBJECT

public:
    /// @param options  taken over
    explicit Controller(const AppOptions& options);
    ~Controller() override;

    /// Puts what a new user needs into the program's folder, sample sites, antennas and a nominal
    /// almanac, reads the antenna, and chooses the theme of the settings. What is there stays.
    void Begin();

    /// Connects to the port of the settings or of the command line, without asking the user
    /// anything but what the receiver gives reason for.
    /// @return false if it is not connected; @p fault says why in words for the user, and stays
    /// empty if he has cancelled
    bool ConnectQuietly(std::wstring& fault) { return ConnectQuietly(Target(), fault); }
    /// Lets the user connect to the chosen port, with the questions and the steps on the screen. A
    /// simulated receiver has no cable that could be asked for.
    /// @return false if it is not connected; @p fault as above
    bool Connect(QWidget* parent, std::wstring& fault);
    void Disconnect();

    /// @param choice  stored in the settings, too: its rate as that of the controller's own line
    /// @return false if it could not be stored
    bool Choose(const ConnectChoice& choice);
    [[nodiscard]] const ConnectChoice& Choice() const { return m_choice; }

    /// The port of the receiver that the controller is plugged into; 1 before it said anything.
    [[nodiscard]] int ReceiverPort() const { return Info().GetCurrentPortID(); }
    /// Connects with the parameters of the line that @p edit wants, stored or not; goes back to
    /// those before if the receiver has stayed there.
    /// @return string-table number of what to tell the user, 0 if all is well
    int FollowLink(PortEdit& edit);

    /// Where the chosen port is reached. Starts the simulated receiver that is meant, unless it
    /// runs, and ends it where none is.
    /// @return as FindTarget(), with the port of the simulated receiver in place of its scenario
    [[nodiscard]] FoundTarget Target();

    // What the library's screens get besides the channel; the controller must outlive them.

    /// @param parent  of the window that connects; may be null
    [[nodiscard]] PlanSurroundings PlanWorld(QWidget* parent);
    [[nodiscard]] CComPort::Surroundings PortsWorld();
    /// The screen that connects to the chosen port, for every type of receiver.
    [[nodiscard]] std::function<std::unique_ptr<CConnect>(CCommand&)> MakesConnect(QWidget* parent)
    {
        return [this, parent](CCommand&) { return MakeConnect(parent, 0, Target()); };
    }

    [[nodiscard]] const AppOptions& Options() const { return m_options; }
    void UseTheme(Theme::Kind kind);

    /// Whether the user wants the controller's clock set by the receiver's time; never by a
    /// simulated one. Off at first.
    [[nodiscard]] bool MaySetClock() const { return m_maySetClock; }
    void SetMaySetClock(bool maySet);
    [[nodiscard]] const StatusPoll& Poll() const { return *m_poll; }
    /// What is needed to show how the receiver is.
    [[nodiscard]] StatusView View() const;

    [[nodiscard]] CCommand& Command() { return *m_command; }
    [[nodiscard]] ReceiverLink& Link() { return *m_link; }
    /// The settings that go with the chosen receiver: those of a simulated one stay apart.
    [[nodiscard]] const CReg& Reg() const { return m_reg; }
    [[nodiscard]] SettingsRoots& Roots() { return m_roots; }
    [[nodiscard]] QtHost& Host() { return *m_host; }
    /// The antenna of the role that the user chose last. Read it anew after changing the settings.
    [[nodiscard]] AntennaSettings& Antenna() { return *m_antenna; }
    /// Reads the antenna's settings for the status line. @param role  kept for the next start, too
    void UseAntenna(AntennaRole role);
    /// Reads the limits of the survey that is run. Anew after changing the settings.
    void ReadLimits();
    /// What has gone over the line.
    [[nodiscard]] FrameHistory& Frames() { return m_frames; }
    [[nodiscard]] const Clock& GetClock() const { return *m_clock; }
    [[nodiscard]] std::filesystem::path ProgramFolder() const
    {
        return m_roots.GetFolders().Program();
    }
    [[nodiscard]] const PortNames& Ports() const { return m_names; }

    [[nodiscard]] HomeState State() const;
    /// The receiver that is connected has a tilt sensor.
    [[nodiscard]] bool HasTilt() const { return Info().GetTilt() != 0; }

    /// What the user should know about the settings, once; empty: nothing.
    [[nodiscard]] QString TakeNotice();

Q_SIGNALS:
    /// The state may have changed: at least once a second.
    void Changed();

private:
    [[nodiscard]] CRecvInfo Info() const { return CRecvInfo(m_link->Heard().identity); }
    bool ConnectQuietly(const FoundTarget& found, std::wstring& fault);
    [[nodiscard]] LinkState TryQuietly(const FoundTarget& found, std::wstring& fault);
    /// @param reached  by an attempt to connect; what the link itself is counts for more
    void Tell(LinkState reached);
    [[nodiscard]] std::unique_ptr<ConnectDlg> MakeConnect(QWidget* parent, int reconnect,
                                                          const FoundTarget& found);
    /// @return 0, or the string-table number of the cause
    int StartSimulator(const std::string& scenario, std::string& error);
    /// Whether the chosen port is a simulated receiver's.
    [[nodiscard]] bool IsSimulatorChosen() const;
    void AskUser();
    void UseStore();
    void ReadAntenna();
    void ReadLinkRate();
    void LookAtReceiver();
    void PlanAhead();
    void AllowClock();

    const AppOptions m_options;
    std::unique_ptr<FastClock> m_fastClock; // null: time runs as it does
    const Clock* m_clock;
    SettingsRoots m_ownRoots; // the controller's own settings, whatever is connected
    HostReg m_ownReg;
    SettingsRoots m_roots; // of the receiver that is chosen, a simulated one apart
    HostReg m_reg;
    PortNames m_names;
    std::unique_ptr<QtHost> m_host;
    FrameHistory m_frames;
    std::unique_ptr<CCommand> m_command;
    std::unique_ptr<simulator::Simulator> m_simulator; // null: a real port
    std::string m_scenario;                            // that it plays
    std::unique_ptr<ReceiverLink> m_link;
    std::unique_ptr<AntennaSettings> m_antenna;
    QString m_antennaLine;
    double m_antennaHeightM = 0.0; // 0: not known
    ObservingLimits m_limits;
    QString m_nextWindow;
    std::optional<Clock::Duration> m_plannedAt;
    std::unique_ptr<StatusPoll> m_poll; // behind the link
    std::unique_ptr<SkyRecorder> m_sky; // behind the poll
    bool m_maySetClock = false;
    LinkState m_attempt = LinkState::NotConnected; // to connect: how far it is, or has come
    ConnectChoice m_choice;
    std::unique_ptr<BackgroundQuestion> m_rounds; // of link, poll and sky
    QTimer m_timer;                               // ages and countdowns move on
    QStringList m_notices;
};

} // namespace fieldcore
