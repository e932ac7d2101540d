#pragma once

#include "app/HomeState.h"

#include <QFrame>

class QLabel;

namespace fieldcore {

class CTextProgressCtrl;
class LiveSkyView;

/// How the receiver is, large: fills the window where the buttons leave room. In a wide one the sky
/// over it and the next good time of the plan stand there, too. Values that are not fresh are grey.
/// User-interface thread only.
class Overview : public QFrame
{
    Q_OBJECT

public:
    explicit Overview(QWidget* parent = nullptr);

    void Show(const HomeState& state);
    /// Whether there is room for the sky and the plan.
    void SetWide(bool isWide);

private:
    void ShowSky(const Receiver& receiver, Clock::Duration now);

    QLabel* m_headline; // owned by the widget, as are the next
    RoleLabel* m_satellites;
    RoleLabel* m_pdop;
    CTextProgressCtrl* m_battery;
    RoleLabel* m_received;
    QLabel* m_nextHeading;
    QLabel* m_next;
    LiveSkyView* m_sky;
};

} // namespace fieldcore
