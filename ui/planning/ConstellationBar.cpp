#include "ui/planning/ConstellationBar.h"

#include "core/resources/StringTable.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/LiveSkyStyle.h"

#include <QButtonGroup>
#include <QEvent>
#include <QGridLayout>
#include <QPushButton>

#include <algorithm>

namespace fieldcore {

namespace {

int IndexOf(std::optional<Constellation> constellation)
{
    return constellation ? static_cast<int>(*constellation) + 1 : 0;
}

std::optional<Constellation> ConstellationAt(int index)
{
    return index >= 1 && index <= kConstellations
               ? std::optional(static_cast<Constellation>(index - 1))
               : std::nullopt;
}

} // namespace

ConstellationBar::ConstellationBar(QWidget* parent)
    : QWidget(parent), m_grid(new QGridLayout(this)), m_group(new QButtonGroup(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(TouchStyle::kGrid);
    for (int index = 0; index <= kConstellations; ++index) {
        auto* const button = new ChoiceButton(this);
        m_group->addButton(button, index);
        m_buttons.append(button);
    }
    m_buttons.front()->setChecked(true);
    connect(m_group, &QButtonGroup::idClicked, this, &ConstellationBar::Changed);
    Show(LiveSky());
}

void ConstellationBar::Choose(std::uint32_t index)
{
    m_buttons[static_cast<int>(index)]->setChecked(true);
}

std::uint32_t ConstellationBar::Index() const
{
    return static_cast<std::uint32_t>(m_group->checkedId());
}

std::optional<Constellation> ConstellationBar::Chosen() const
{
    return ConstellationAt(m_group->checkedId());
}

QPushButton* ConstellationBar::Button(std::optional<Constellation> constellation) const
{
    return m_buttons[IndexOf(constellation)];
}

void ConstellationBar::Show(const LiveSky& sky)
{
    for (int index = 0; index <= kConstellations; ++index) {
        const std::optional<Constellation> constellation = ConstellationAt(index);
        const QString name =
            constellation ? ConstellationText(*constellation) : UiText(text::kSkyAll);
        const std::wstring wide = name.toStdWString();
        const int count = sky.Count(constellation).inView;
        QPushButton* const button = m_buttons[index];
        button->setText(ToQt(sky.HasReading() ? FormatText(text::kSkyButton, wide.c_str(), count)
                                              : FormatText(text::kSkyButtonUnknown, wide.c_str())));
        button->setAccessibleName(button->text());
        button->setVisible(constellation != Constellation::Unknown || count > 0 ||
                           button->isChecked());
    }
    LayOut();
}

QSize ConstellationBar::minimumSizeHint() const
{
    return {m_widest, QWidget::minimumSizeHint().height()};
}

void ConstellationBar::LayOut()
{
    QVector<QPushButton*> shown;
    m_widest = 0;
    int total = -TouchStyle::kGrid;
    for (QPushButton* const button : std::as_const(m_buttons)) {
        if (!button->isHidden()) {
            shown.append(button);
            const int wish = button->minimumSizeHint().width();
            m_widest = std::max(m_widest, wish);
            total += wish + TouchStyle::kGrid;
        }
    }
    const int count = static_cast<int>(shown.size());
    const int fitting = std::max((width() + TouchStyle::kGrid) / (m_widest + TouchStyle::kGrid), 1);
    int columns = count;
    if (total > width() && fitting < count) {
        const int rows = (count + fitting - 1) / fitting;
        columns = (count + rows - 1) / rows;
    }
    if (columns == m_columns && count == m_laidOut) {
        return;
    }
    m_columns = columns;
    m_laidOut = count;
    for (int i = 0; i < count; ++i) {
        m_grid->addWidget(shown[i], i / columns, i % columns);
    }
}

void ConstellationBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    LayOut();
}

void ConstellationBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        LayOut();
    }
}

} // namespace fieldcore
