#include "ui/controls/BusyStrip.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

BusyStrip::BusyStrip(QWidget* window)
    : QFrame(window), m_what(new QLabel(UiText(text::kBusy))), m_seconds(new QLabel),
      m_cancel(new QPushButton(UiText(text::kBusyCancel)))
{
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setAccessibleName(UiText(text::kBusy));
    m_what->setWordWrap(true);
    m_cancel->setIcon(ThemeIcon(QStringLiteral("cancel")));
    m_cancel->setMinimumSize(15 * kGrid, 6 * kGrid);
    m_cancel->setFocusPolicy(Qt::NoFocus); // the focus stays where the user left it
    auto* const words = new QVBoxLayout;
    words->setSpacing(0);
    words->addWidget(m_what);
    words->addWidget(m_seconds);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(2 * kGrid, kGrid, kGrid, kGrid);
    layout->addLayout(words, 1);
    layout->addWidget(m_cancel);
}

void BusyStrip::Update(int seconds)
{
    m_seconds->setText(ToQt(FormatText(text::kBusySeconds, seconds)));
    const QWidget* const window = parentWidget();
    const int height =
        std::min(std::max(sizeHint().height(), heightForWidth(window->width())), window->height());
    setGeometry(0, window->height() - height, window->width(), height);
    raise();
    show();
}

void BusyStrip::ShowCancelling()
{
    m_what->setText(UiText(text::kBusyCancelling));
}

} // namespace fieldcore
