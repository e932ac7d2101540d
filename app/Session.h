#pragma once

#include "app/Controller.h"

#include <QAction>
#include <QObject>

#include <memory>

namespace fieldcore {

class Dialog;
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

    [[nodiscard]] MainWindow& Window() { return *m_window; }

private:
    /// @param entry  as MainWindow::Chosen()
    void Open(int entry);
    void ShowFiles();
    void ChoosePort();
    void ChangeSettings();
    void ChangeAntenna();
    void ChangePorts();
    /// @param page  that the user is on
    /// @return whether it is connected
    bool Connect(QWidget* page);
    [[nodiscard]] QWidget* MakeHead(Dialog& page);
    void Use(const ConnectChoice& choice);
    void ConnectAtStart();
    /// Makes a connection that a page has made for itself that of the program.
    void TakeLinkOver();
    /// Offers a calibration soon, if the receiver has a sensor that needs it: once its options are
    /// known.
    void CheckTiltSoon();
    void CheckTiltWhenKnown();
    /// Asks how to end, and does it but for closing the window.
    bool MayEnd();
    /// @param isWanted  by the user, from wherever he is
    void SwitchBubble(bool isWanted);
    void StartBubble();
    void ForceInit();
    void ShowAbout();
    void ShowStatus();
    void ShowVersion(QWidget* parent);
    void UseTheme(Theme::Kind kind);

    Controller& m_controller;
    QAction m_bubble; // on every page
    bool m_isBubbleWanted = false;
    std::unique_ptr<MainWindow> m_window;
    bool m_isTiltOpen = false; // whether its receiver has a sensor is not known yet
};

} // namespace fieldcore
