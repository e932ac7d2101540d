#pragma once

#include "app/HomeState.h"

#include <QLabel>
#include <QWidget>

class QHBoxLayout;
class QPushButton;

namespace fieldcore {

/// The lines at the head of the window, or of a page: is the receiver there, has it a fix, and is
/// it well, what time it is, and how high the antenna is. Values that are not fresh are grey, and
/// the time they came stands in place of the time. What the survey's limits are broken by is told.
/// While the receiver tells no time it is that of the controller's clock, and says so. Where one
/// line does not hold it all, the time goes below; the lamp's word gives way to the kind of the
/// fix, and the name of the power source stands where there is room. A page has one line of what
/// stands below: that it is a simulator, else the broken limits, else the antenna. User-interface
/// thread only.
class StatusStrip : public QWidget
{
    Q_OBJECT

public:
    enum class Place
    {
        Window,
        Page, ///< slim
    };

    explicit StatusStrip(QWidget* parent = nullptr, Place place = Place::Window);
    /// A button connects while there is no receiver.
    void OfferConnection();

    void Show(const HomeState& state);

Q_SIGNALS:
    void ConnectionWanted();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void Arrange();
    [[nodiscard]] QString Name() const;
    [[nodiscard]] QString TimeWords() const;

    const Place m_place;
    HomeState m_state;
    QHBoxLayout* m_line;
    QHBoxLayout* m_below; // of the time, where the line has no room for it
    RoleLabel* m_lamp;    // owned by the widget, as are all labels
    RoleLabel* m_fix;
    QLabel* m_receiver;
    RoleLabel* m_pdop;
    RoleLabel* m_time;
    RoleLabel* m_battery;
    RoleLabel* m_broken; // limits of the survey
    QLabel* m_antenna;
    RoleLabel* m_ribbon;
    QPushButton* m_connect = nullptr; // null: nothing is offered
};

} // namespace fieldcore
