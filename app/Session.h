#pragma once

#include "app/Controller.h"
#include "ui/equipment/ComPort.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/link/PortChooserDlg.h"
#include "ui/planning/SkyPlotDlg.h"
#include "ui/planning/SurveyPlan.h"

#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace fieldcore {

class MainWindow;

/// A session of the field controller: its window, and the dialogs that the user opens from it.
/// User-interface thread only.
class Session : public QObject
{
    Q_OBJECT

public:
    /// @param controller  must outlive the session; Begin() has been called
    explicit Session(Controller& controller);
    ~Session() override;

    /// Shows the window and connects.
    void Begin();

    /// Writes a picture of every screen, in both sizes and colours, and ends the program's work.
    /// @param folder  is made if it is not there
    /// @return an exit code: 0; 8 if the folder or a picture cannot be written
    int WriteScreenshots(const QString& folder);

private:
    struct Screen
    {
        QString name; ///< of its pictures
        std::function<std::unique_ptr<QWidget>()> make;
    };
    /// Every screen but the window itself, as it is when it has just been opened.
    std::vector<Screen> Screens();
    void Open(int choice);
    [[nodiscard]] PlanSurroundings PlanWorld();
    [[nodiscard]] CSkyPlot::Surroundings SkyWorld() const;
    [[nodiscard]] CRecvFileMan::Surroundings FilesWorld();
    void ShowFiles();
    /// What the simulated receiver can play.
    [[nodiscard]] static std::vector<ScenarioChoice> Scenarios();
    void ChoosePort();
    void ChangeSettings();
    void ChangeAntenna();
    [[nodiscard]] std::unique_ptr<QWidget> AntennaScreen(int way, double heightM);
    void ChangePorts();
    [[nodiscard]] CComPort::Surroundings PortsWorld();
    void Connect();
    void ConnectAtStart();
    /// Offers a calibration soon, if the receiver has a sensor that needs it.
    void CheckTiltSoon();
    /// Asks how to end, and does it but for closing the window.
    bool MayEnd();
    void ForceInit();
    void ShowAbout();
    void ShowStatus();
    void ShowVersion(QWidget* parent);
    void WarnOfBattery(const QString& words);
    /// The status page, the version list and the battery's warning for pictures.
    void AddStatusScreens(std::vector<Screen>& screens);
    void ShowChosenTheme();

    Controller& m_controller;
    std::unique_ptr<MainWindow> m_window;
};

} // namespace fieldcore
