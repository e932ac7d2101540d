#include "app/MainWindow.h"

#include "app/Overview.h"
#include "core/equipment/StatusRows.h"
#include "ui/controls/ButtonMenuDlg.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QCloseEvent>
#include <QResizeEvent>
#include <QVBoxLayout>

#include <initializer_list>

namespace fieldcore {

namespace {

constexpr int kWide = 900;
constexpr QSize kLeast(320, 320); // what has no room then scrolls

struct Button
{
    const char* icon;
    int text;
};

// Twelve fill the page; what is seldom needed, or destroys, stands in the menu alone.
constexpr Button kButtons[] = {
    {"connect", text::kAppConnect},   {"satellites", text::kAppSatellites},
    {"plan", text::kAppPlan},         {"status", text::kAppStatusButton},
    {"files", text::kAppFiles},       {"antenna", text::kAppAntenna},
    {"tracking", text::kAppTracking}, {"signal", text::kAppSignals},
    {"calibrate", text::kAppTilt},    {"tilt", text::kBubbleTitle},
    {"port", text::kComTitle},        {"settings", text::kAppSettings},
};

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QWidget(parent), m_status(new StatusStrip),
      m_home(new CButtonMenuDlg(UiText(text::kAppTitle))), m_overview(new Overview),
      m_bubblePlace(new QWidget), m_body(new QBoxLayout(QBoxLayout::TopToBottom)),
      m_menu(new CnMenuBar(1))
{
    setWindowTitle(UiText(text::kAppTitle));
    m_home->Embed();
    for (const Button& button : kButtons) {
        m_home->AddButton(QString::fromLatin1(button.icon), UiText(button.text));
    }

    const auto addPopup = [this](int textId, std::initializer_list<int> entries) {
        const int popup = m_menu->AddPopup(UiText(textId));
        for (const int entry : entries) {
            entry == 0 ? m_menu->AddSeparator(popup) : m_menu->AddItem(popup, entry, UiText(entry));
        }
    };
    addPopup(text::kAppMenuLink, {text::kAppConnect, text::kAppDisconnect, text::kComTitle, 0,
                                  text::kAppFrames, text::kAppForceInit});
    addPopup(text::kAppMenuView,
             {text::kAppThemeDaylight, text::kAppThemeDark, text::kAppThemeSystem});
    addPopup(text::kAppMenuHelp, {text::kVersionTitle, text::kAppAbout});

    setMinimumSize(kLeast);
    constexpr int kBubbleRoom = 104; // of the small bubble, and some distance
    m_bubblePlace->setFixedHeight(kBubbleRoom);
    m_bubblePlace->hide();
    LayOut(m_body, {}, 0, {{m_home, 2}, {m_overview, 1}});
    // A wide window is arranged for its width, which must not keep it from becoming narrow again.
    LayOut(new QVBoxLayout(this), {}, 0, {m_status, {m_body, 1}, m_bubblePlace, m_menu})
        ->setSizeConstraint(QLayout::SetNoConstraint);

    connect(m_home, &CButtonMenuDlg::Chosen, this,
            [this](int index) { Q_EMIT Chosen(kButtons[index].text); });
    connect(m_menu, &CnMenuBar::ItemChosen, this, &MainWindow::Chosen);
    connect(m_menu, &CnMenuBar::CloseRequested, this, &QWidget::close);
}

void MainWindow::ShowState(const HomeState& state)
{
    m_status->Show(state);
    setWindowTitle(ToQt(
        FormatText(text::kAppWindowTitle, Text(text::kAppTitle), LinkText(state.receiver.link))));
    m_overview->Show(state);
    m_menu->EnableItem(text::kAppDisconnect, HasReceiver(state.receiver.link));
}

void MainWindow::ShowBubble(bool isShown)
{
    m_hasBubble = isShown;
    Arrange();
    layout()->activate();
}

QWidget* MainWindow::BubbleAnchor() const
{
    return width() > kWide ? static_cast<QWidget*>(m_overview) : m_bubblePlace;
}

void MainWindow::CheckTheme(Theme::Kind kind)
{
    m_menu->CheckRadioItem(text::kAppThemeDaylight, text::kAppThemeSystem,
                           text::kAppThemeDaylight + static_cast<int>(kind));
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!m_mayClose || m_mayClose());
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Arrange();
}

bool MainWindow::event(QEvent* event)
{
    const bool isDone = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) {
        Arrange(); // the lines at the head have become more, or fewer
    }
    return isDone;
}

void MainWindow::Arrange()
{
    const bool isWide = width() > kWide;
    const auto heightOf = [this](const QWidget* part) {
        return part->hasHeightForWidth() ? part->heightForWidth(width())
                                         : part->sizeHint().height();
    };
    m_bubblePlace->setVisible(m_hasBubble && !isWide);
    const int bubble = m_hasBubble && !isWide ? m_bubblePlace->height() : 0;
    const int room = height() - heightOf(m_status) - heightOf(m_menu) - bubble;
    const int over = room - m_home->Arrange(room, isWide).height();
    m_overview->SetWide(isWide);
    m_body->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_body->setStretch(0, isWide ? 0 : 1);
    m_body->setStretch(1, isWide ? 1 : 0);
    m_overview->setVisible(isWide || over >= heightOf(m_overview));
}

} // namespace fieldcore
