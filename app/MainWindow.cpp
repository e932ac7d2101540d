#include "app/MainWindow.h"

#include "app/Overview.h"
#include "core/equipment/StatusRows.h"
#include "ui/controls/ButtonMenuDlg.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/UiText.h"

#include <QCloseEvent>
#include <QResizeEvent>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kWide = 900;
constexpr QSize kLeast(320, 320); // what has no room then scrolls

struct Entry
{
    int choice;
    const char* icon;
    int text;
};

// Twelve fill the page; what is seldom needed, or destroys, stands in the menu alone.
constexpr Entry kButtons[] = {
    {MainWindow::kConnect, "connect", text::kAppConnect},
    {MainWindow::kSkyPlot, "satellites", text::kAppSatellites},
    {MainWindow::kPlan, "plan", text::kAppPlan},
    {MainWindow::kStatus, "status", text::kAppStatusButton},
    {MainWindow::kFiles, "files", text::kAppFiles},
    {MainWindow::kAntenna, "antenna", text::kAppAntenna},
    {MainWindow::kTracking, "tracking", text::kAppTracking},
    {MainWindow::kSignals, "signal", text::kAppSignals},
    {MainWindow::kTilt, "calibrate", text::kAppTilt},
    {MainWindow::kBubble, "tilt", text::kBubbleTitle},
    {MainWindow::kPorts, "port", text::kComTitle},
    {MainWindow::kSettings, "settings", text::kAppSettings},
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
    for (const Entry& entry : kButtons) {
        m_home->AddButton(QString::fromLatin1(entry.icon), UiText(entry.text));
    }

    const int link = m_menu->AddPopup(UiText(text::kAppMenuLink));
    m_menu->AddItem(link, kConnect, UiText(text::kAppConnect));
    m_menu->AddItem(link, kDisconnect, UiText(text::kAppDisconnect));
    m_menu->AddItem(link, kPorts, UiText(text::kComTitle));
    m_menu->AddSeparator(link);
    m_menu->AddItem(link, kFrames, UiText(text::kAppFrames));
    m_menu->AddItem(link, kForceInit, UiText(text::kAppForceInit));
    const int view = m_menu->AddPopup(UiText(text::kAppMenuView));
    m_menu->AddItem(view, kThemeDaylight, UiText(text::kAppThemeDaylight));
    m_menu->AddItem(view, kThemeDark, UiText(text::kAppThemeDark));
    m_menu->AddItem(view, kThemeSystem, UiText(text::kAppThemeSystem));
    const int help = m_menu->AddPopup(UiText(text::kAppMenuHelp));
    m_menu->AddItem(help, kVersion, UiText(text::kVersionTitle));
    m_menu->AddItem(help, kAbout, UiText(text::kAppAbout));

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    // A wide window is arranged for its width, which must not keep it from becoming narrow again.
    column->setSizeConstraint(QLayout::SetNoConstraint);
    setMinimumSize(kLeast);
    column->addWidget(m_status);
    m_body->setSpacing(0);
    m_body->addWidget(m_home, 2);
    m_body->addWidget(m_overview, 1);
    column->addLayout(m_body, 1);
    constexpr int kBubbleRoom = 104; // of the small bubble, and some distance
    m_bubblePlace->setFixedHeight(kBubbleRoom);
    m_bubblePlace->hide();
    column->addWidget(m_bubblePlace);
    column->addWidget(m_menu);

    connect(m_home, &CButtonMenuDlg::Chosen, this,
            [this](int index) { Q_EMIT Chosen(kButtons[index].choice); });
    connect(m_menu, &CnMenuBar::ItemChosen, this, &MainWindow::Chosen);
    connect(m_menu, &CnMenuBar::CloseRequested, this, &QWidget::close);
}

void MainWindow::ShowState(const HomeState& state)
{
    m_status->Show(state);
    setWindowTitle(ToQt(
        FormatText(text::kAppWindowTitle, Text(text::kAppTitle), LinkText(state.receiver.link))));
    m_overview->Show(state);
    m_menu->EnableItem(kDisconnect, HasReceiver(state.receiver.link));
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

void MainWindow::CheckTheme(int choice)
{
    m_menu->CheckRadioItem(kThemeDaylight, kThemeSystem, choice);
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
