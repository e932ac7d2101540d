#include "ui/controls/BusyStrip.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

BusyStrip::BusyStrip(QWidget* window)
    : QWidget(window), m_bar(new QFrame(this)), m_what(new QLabel(UiText(text::kBusy))),
      m_seconds(new QLabel), m_cancel(MakeButton(text::kBusyCancel, "cancel"))
{
    m_bar->setFrameShape(QFrame::Box);
    m_bar->setAutoFillBackground(true);
    m_bar->setBackgroundRole(QPalette::Button);
    setAccessibleName(UiText(text::kBusy));
    m_what->setWordWrap(true);
    m_cancel->setFocusPolicy(Qt::NoFocus); // the focus stays where the user left it
    LayOut(new QHBoxLayout(m_bar), {2 * kGrid, kGrid, kGrid, kGrid}, -1,
           {{LayOut(new QVBoxLayout, {}, 0, {m_what, m_seconds}), 1}, m_cancel});
}

void BusyStrip::Update(int seconds)
{
    m_seconds->setText(ToQt(FormatText(text::kBusySeconds, seconds)));
    const QWidget* const window = parentWidget();
    const int height =
        std::min(std::max(m_bar->sizeHint().height(), m_bar->heightForWidth(window->width())),
                 window->height());
    setGeometry(window->rect());
    m_bar->setGeometry(0, window->height() - height, window->width(), height);
    raise();
    show();
}

void BusyStrip::ShowCancelling()
{
    m_what->setText(UiText(text::kBusyCancelling));
}

void BusyStrip::paintEvent(QPaintEvent* event)
{
    QColor veil = Theme::Current().stale;
    veil.setAlphaF(0.5F);
    QPainter(this).fillRect(event->rect(), veil);
}

} // namespace fieldcore
