#pragma once

#include "core/planning/LiveSky.h"

#include <QVector>
#include <QWidget>

#include <optional>

class QButtonGroup;
class QGridLayout;
class QPushButton;

namespace fieldcore {

/// The choice of a system: buttons for all and for each, with the number of its satellites. In as
/// many rows as the width asks for. User-interface thread only.
class ConstellationBar : public QWidget
{
    Q_OBJECT

public:
    explicit ConstellationBar(QWidget* parent = nullptr);

    /// @param index  0: all; else the number of the system, from 1
    void Choose(std::uint32_t index);
    [[nodiscard]] std::uint32_t Index() const;
    [[nodiscard]] std::optional<Constellation> Chosen() const;
    /// Writes the numbers of satellites in view; "--" without a reading. The button of unknown
    /// satellites is only there while there are such, or it is the one that is chosen.
    void Show(const LiveSky& sky);
    /// The button of a system; of all without one.
    [[nodiscard]] QPushButton* Button(std::optional<Constellation> constellation) const;

    /// Of one column: the bar makes its rows of whatever width it gets.
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user has chosen another one.
    void Changed();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void LayOut();

    QGridLayout* m_grid; // owned by the widget, as is all that follows
    QButtonGroup* m_group;
    QVector<QPushButton*> m_buttons; // all, then by Constellation
    int m_columns = 0;
    int m_widest = 0;  // of the buttons, logical pixels
    int m_laidOut = 0; // buttons
};

} // namespace fieldcore
