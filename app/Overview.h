#pragma once

#include "app/HomeState.h"

#include <QFrame>

class QLabel;

namespace fieldcore {

class CTextProgressCtrl;

/// How the receiver is, large: fills the window where the buttons leave room. Values that are not
/// fresh are grey. User-interface thread only.
class Overview : public QFrame
{
    Q_OBJECT

public:
    explicit Overview(QWidget* parent = nullptr);

    void Show(const HomeState& state);

private:
    QLabel* m_headline; // owned by the widget, as are the next
    QLabel* m_satellites;
    QLabel* m_pdop;
    CTextProgressCtrl* m_battery;
    QLabel* m_received;
};

} // namespace fieldcore
