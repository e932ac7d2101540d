#include "ui/controls/BarButton.h"

#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/Widgets.h"

#include <QFontMetrics>
#include <QKeySequence>
#include <QPainter>
#include <QShortcut>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

BarButton::BarButton(const QString& text, Qt::Key key, QWidget* parent)
    : QAbstractButton(parent), m_keyName(QKeySequence(key).toString(QKeySequence::NativeText))
{
    setText(text.trimmed());
    setAccessibleName(text.simplified());
    setAccessibleDescription(m_keyName);
    setFocusPolicy(Qt::TabFocus); // a touch leaves the focus where the user works
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    auto* const shortcut = new QShortcut(key, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, [this] { click(); });
}

QSize BarButton::sizeHint() const
{
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width() + 2 * kGrid;
    const int height = fontMetrics().height() + QFontMetrics(SmallFont(font())).height() + kGrid;
    return {width, std::max(6 * kGrid, height)};
}

void BarButton::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    const bool pressed = isDown() || isChecked();
    painter.fillRect(rect(), pressed ? theme.accent : theme.raised);
    if (parentWidget() == nullptr || geometry().right() < parentWidget()->rect().right()) {
        // To its neighbour; the last one has none.
        painter.setPen(theme.stale);
        painter.drawLine(rect().topRight() + QPoint(0, kGrid),
                         rect().bottomRight() - QPoint(0, kGrid));
    }
    if (hasFocus()) {
        painter.setPen(QPen(theme.accent, 3.0));
        painter.drawRect(rect().adjusted(1, 1, -2, -2));
    }
    const QFontMetrics small(SmallFont(font()));
    const int high = fontMetrics().height();
    const int top = (height() - high - small.height()) / 2;
    painter.setPen(!isEnabled() ? theme.stale : pressed ? theme.ground : theme.text);
    painter.drawText(QRect(0, top, width(), high), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    painter.setFont(SmallFont(font()));
    painter.setPen(!isEnabled() ? theme.stale : pressed ? theme.ground : theme.second);
    painter.drawText(QRect(0, top + high, width(), small.height()), Qt::AlignCenter, m_keyName);
}

} // namespace fieldcore
