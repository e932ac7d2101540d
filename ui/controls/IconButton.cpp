#include "ui/controls/IconButton.h"

#include "ui/controls/Icon.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr QSize kLeast(15 * kGrid, 12 * kGrid);
constexpr QSize kLeastLow(15 * kGrid, 11 * kGrid);
constexpr int kIcon = 6 * kGrid;
constexpr int kLowIcon = 5 * kGrid;
// A Japanese label has no blanks to break at.
constexpr int kLabelFlags =
    Qt::AlignHCenter | Qt::AlignTop | Qt::TextWrapAnywhere | Qt::TextShowMnemonic;

} // namespace

CIconButton::CIconButton(QWidget* parent) : CIconButton(QString(), QString(), parent) {}

CIconButton::CIconButton(const QString& icon, const QString& label, QWidget* parent)
    : QAbstractButton(parent)
{
    setText(label);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_Hover);
    SetIcon(icon);
    SetIconSize(kIcon);
}

void CIconButton::SetIcon(const QString& icon)
{
    setIcon(icon.isEmpty() ? QIcon() : ThemeIcon(icon));
    updateGeometry();
}

void CIconButton::SetIconSize(int size)
{
    setIconSize({size, size});
    updateGeometry();
}

void CIconButton::SetLow(bool isLow)
{
    if (std::exchange(m_isLow, isLow) != isLow) {
        SetIconSize(isLow ? kLowIcon : kIcon);
    }
}

int CIconButton::LabelHeight(int width) const
{
    return fontMetrics().boundingRect(QRect(0, 0, width, 1000), kLabelFlags, text()).height();
}

QSize CIconButton::sizeHint() const
{
    // Wide enough for five characters, whatever the font: longer labels break, but no Latin word.
    int width = std::max({kLeast.width(), iconSize().width() + 2 * kGrid,
                          fontMetrics().horizontalAdvance(QChar(0x3042)) * 5 + 2 * kGrid});
    for (const QString& word : text().split(QLatin1Char(' '))) {
        const bool isLatin = std::ranges::all_of(word, [](QChar c) { return c.unicode() < 0x250; });
        width = std::max(width, isLatin ? fontMetrics().horizontalAdvance(word) + 2 * kGrid : 0);
    }
    const int gap = m_isLow ? kGrid / 2 : kGrid;
    const int iconPart = icon().isNull() ? 0 : iconSize().height() + gap;
    const int height = 2 * gap + iconPart + LabelHeight(width - 2 * kGrid);
    return QSize(width, height).expandedTo(m_isLow ? kLeastLow : kLeast);
}

void CIconButton::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF edge = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    const bool pressed = isDown() || isChecked();
    painter.setPen(QPen(hasFocus() ? theme.accent : theme.raised.darker(theme.isDark ? 60 : 115),
                        hasFocus() ? 3.0 : 1.0));
    painter.setBrush(pressed ? theme.accent : theme.raised);
    painter.drawRoundedRect(edge, kGrid / 2.0, kGrid / 2.0);

    const int gap = m_isLow ? kGrid / 2 : kGrid;
    const QRect inner = rect().adjusted(kGrid, gap, -kGrid, -gap);
    const int iconPart = icon().isNull() ? 0 : iconSize().height() + gap;
    const int label = LabelHeight(inner.width());
    int top = inner.top() + (inner.height() - iconPart - label) / 2;
    if (!icon().isNull()) {
        const QIcon::Mode mode = !isEnabled() ? QIcon::Disabled
                                 : pressed    ? QIcon::Selected
                                              : QIcon::Normal;
        const QRect place(inner.center().x() - iconSize().width() / 2, top, iconSize().width(),
                          iconSize().height());
        icon().paint(&painter, place, Qt::AlignCenter, mode);
        top += iconPart;
    }
    painter.setPen(!isEnabled() ? theme.stale : pressed ? theme.ground : theme.text);
    painter.drawText(QRect(inner.left(), top, inner.width(), label), kLabelFlags, text());
}

} // namespace fieldcore
