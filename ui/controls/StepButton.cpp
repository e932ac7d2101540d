#include "ui/controls/StepButton.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kRepeatDelayMs = 400;
constexpr int kRepeatIntervalMs = 100;

} // namespace

StepButton::StepButton(bool isPlus, QWidget* parent) : QToolButton(parent)
{
    setIcon(ThemeIcon(isPlus ? QStringLiteral("add") : QStringLiteral("remove")));
    setIconSize({3 * kGrid, 3 * kGrid});
    setMinimumSize(7 * kGrid, 6 * kGrid);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::MinimumExpanding);
    setFocusPolicy(Qt::NoFocus);
    setAutoRepeat(true);
    setAutoRepeatDelay(kRepeatDelayMs);
    setAutoRepeatInterval(kRepeatIntervalMs);
    setAccessibleName(UiText(isPlus ? text::kIncrease : text::kDecrease));
}

} // namespace fieldcore
