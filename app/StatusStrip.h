#pragma once

#include "app/HomeState.h"

#include <QLabel>
#include <QWidget>

#include <string_view>

class QHBoxLayout;

namespace fieldcore {

/// The lines at the head of the window: is the receiver there, and is it well, what time it is, and
/// how high the antenna is. Values that are not fresh are grey, and the time they came stands in
/// place of the time. What the survey's limits are broken by is told. While the receiver tells no
/// time it is that of the controller's clock, and says so. Where one line does not hold it all, the
/// time goes below; the name of the power source stands where there is room. User-interface thread
/// only.
class StatusStrip : public QWidget
{
    Q_OBJECT

public:
    explicit StatusStrip(QWidget* parent = nullptr);

    void Show(const HomeState& state);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Colour();
    void Arrange();
    [[nodiscard]] QString Name() const;
    [[nodiscard]] QString TimeWords() const;
    [[nodiscard]] QString Words(std::string_view key) const;

    HomeState m_state;
    QHBoxLayout* m_line;
    QHBoxLayout* m_below; // of the time, where the line has no room for it
    QLabel* m_lamp;       // owned by the widget, as are all labels
    QLabel* m_receiver;
    QLabel* m_pdop;
    QLabel* m_time;
    QLabel* m_battery;
    QLabel* m_broken; // limits of the survey
    QLabel* m_antenna;
    QLabel* m_ribbon;
};

} // namespace fieldcore
