#include "ui/controls/GraphicsBase.h"

#include "ui/controls/Theme.h"

#include <QEvent>
#include <QPainter>

namespace fieldcore {

CGraphicsBase::CGraphicsBase(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CGraphicsBase::SetBackground(const QColor& colour)
{
    m_background = colour;
    Invalidate();
}

void CGraphicsBase::Invalidate()
{
    m_isStale = true;
    update();
}

void CGraphicsBase::DrawOver(QPainter& painter, const QSizeF& size)
{
    Q_UNUSED(painter)
    Q_UNUSED(size)
}

void CGraphicsBase::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const QSize pixels = size() * devicePixelRatioF();
    if (m_isStale || m_buffer.size() != pixels) {
        m_buffer = QPixmap(pixels);
        m_buffer.setDevicePixelRatio(devicePixelRatioF());
        m_buffer.fill(m_background.isValid() ? m_background : Theme::Current().ground);
        QPainter painter(&m_buffer);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setFont(font());
        Draw(painter, size());
        m_isStale = false;
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_buffer);
    painter.setRenderHint(QPainter::Antialiasing);
    DrawOver(painter, size());
}

void CGraphicsBase::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        Invalidate();
    }
}

} // namespace fieldcore
