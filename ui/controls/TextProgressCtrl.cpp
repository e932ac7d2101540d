#include "ui/controls/TextProgressCtrl.h"

#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

CTextProgressCtrl::CTextProgressCtrl(QWidget* parent) : QProgressBar(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setRange(0, 100);
    setValue(0);
}

void CTextProgressCtrl::SetRange(int first, int last)
{
    const int position = value();
    setRange(first, std::max(first, last));
    SetPos(position);
}

void CTextProgressCtrl::SetPos(int position)
{
    setValue(std::clamp(position, minimum(), maximum()));
}

void CTextProgressCtrl::SetText(const QString& text)
{
    if (m_text == text) {
        return;
    }
    m_text = text;
    setAccessibleDescription(text);
    updateGeometry();
    update();
}

double CTextProgressCtrl::Part() const
{
    const double range = static_cast<double>(maximum()) - minimum();
    return (static_cast<double>(value()) - minimum()) / std::max(1.0, range);
}

QString CTextProgressCtrl::text() const
{
    if (!m_text.isEmpty()) {
        return m_text;
    }
    return QString::number(std::lround(100.0 * Part())) + QStringLiteral(" %");
}

void CTextProgressCtrl::SetColour(const QColor& colour)
{
    if (m_colour == colour) {
        return;
    }
    m_colour = colour;
    update();
}

QSize CTextProgressCtrl::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 3 * kGrid,
            std::max(4 * kGrid, fontMetrics().height() + kGrid)};
}

void CTextProgressCtrl::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    const QRect inner = rect().adjusted(1, 1, -1, -1);
    QRect filled = inner;
    filled.setWidth(static_cast<int>(std::lround(inner.width() * Part())));
    QRect rest = inner;
    rest.setLeft(filled.left() + filled.width());

    painter.setPen(theme.second);
    painter.setBrush(theme.raised);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.fillRect(filled, m_colour.isValid() ? m_colour : theme.accent);
    // The same text twice, each half in the colour that its ground wants.
    painter.setClipRect(filled);
    painter.setPen(theme.ground);
    painter.drawText(inner, Qt::AlignCenter, text());
    painter.setClipRect(rest);
    painter.setPen(theme.text);
    painter.drawText(inner, Qt::AlignCenter, text());
}

} // namespace fieldcore
