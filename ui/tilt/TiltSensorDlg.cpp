#include "ui/tilt/TiltSensorDlg.h"

#include "core/link/RecvInfo.h"
#include "core/tilt/BubbleConfig.h"
#include "ui/controls/UiText.h"
#include "ui/tilt/BubbleView.h"

#include <QPointer>
#include <QRect>
#include <QVBoxLayout>
#include <QWindow>

#include <cstdint>
#include <optional>

namespace fieldcore {

namespace {

QPointer<TiltSensorDlg> g_window;
QPointer<QWidget> g_anchor;
double g_antennaHeightM = 0.0;
std::optional<QRect> g_place; // of the window's inside

} // namespace

int TiltSensorDlg::StartUp(CCommand* command, QWidget* parent, QWidget* anchor)
{
    if (g_window.isNull()) {
        g_anchor = anchor;
        g_window = new TiltSensorDlg(command, parent);
    }
    g_window->TellSensor(command, true);
    g_window->show();
    return 1;
}

int TiltSensorDlg::ShutDown()
{
    if (g_window.isNull()) {
        return 0;
    }
    delete g_window.data();
    return 1;
}

void TiltSensorDlg::WindowHide(int showCommand)
{
    if (!g_window.isNull()) {
        g_window->setVisible(showCommand != 0);
    }
}

void TiltSensorDlg::SetAntH(double heightM)
{
    g_antennaHeightM = heightM;
}

int TiltSensorDlg::IsActive()
{
    return !g_window.isNull() && g_window->isActiveWindow() ? 1 : 0;
}

int TiltSensorDlg::IsShow()
{
    return !g_window.isNull() && g_window->internalWinId() != 0 ? 1 : 0;
}

TiltSensorDlg* TiltSensorDlg::Instance()
{
    return g_window;
}

void TiltSensorDlg::ForgetPlace()
{
    g_place.reset();
}

TiltSensorDlg::TiltSensorDlg(CCommand* command, QWidget* parent)
    : Dialog(parent), m_command(command), m_view(new BubbleView)
{
    setWindowFlags(Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                   Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(UiText(text::kBubbleTitle));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_view);
}

TiltSensorDlg::~TiltSensorDlg()
{
    Destroy();
}

bool TiltSensorDlg::OnInitDialog()
{
    QRect place(0, 0, kVialWidth, kVialWidth);
    if (g_place) {
        place = *g_place;
    } else if (!g_anchor.isNull()) {
        const QMargins frame =
            windowHandle() != nullptr ? windowHandle()->frameMargins() : QMargins();
        place.moveBottomRight(g_anchor->mapToGlobal(g_anchor->rect().bottomRight()) -
                              QPoint(frame.right(), frame.bottom()));
    }
    setGeometry(place);
    return false; // the focus stays where it is
}

void TiltSensorDlg::showEvent(QShowEvent* event)
{
    Dialog::showEvent(event);
    SetTimer(kPollTimer, static_cast<int>(BubblePoll::kInterval.count())); // readings grow old
    if (m_command != nullptr && !m_question) {
        m_question = std::make_unique<BackgroundQuestion>(
            *m_command, Rhythm{BubblePoll::kInterval, BubblePoll::kLongestPause},
            [](CCommand& command) {
                const TiltHeard heard = AskTilt(command, false);
                return std::pair(heard.isAnswered, heard);
            },
            [this](const TiltHeard& heard) {
                m_poll.Take(heard, {eBubbleConfig::GetBubbleSensitivity(),
                                    eBubbleConfig::GetBubbleDuration(), g_antennaHeightM});
                ShowBubble();
            });
    }
}

void TiltSensorDlg::hideEvent(QHideEvent* event)
{
    m_question.reset();
    KillTimer(kPollTimer);
    Dialog::hideEvent(event);
}

void TiltSensorDlg::OnTimer(int id)
{
    if (id == kPollTimer) {
        ShowBubble();
    }
}

void TiltSensorDlg::ShowBubble()
{
    m_view->Show(m_poll.Picture(),
                 m_command == nullptr || m_poll.IsStale(m_command->GetClock().Steady()));
}

bool TiltSensorDlg::OnClose(int result)
{
    Q_UNUSED(result)
    TellSensor(m_command, false);
    hide();
    return false; // it is hidden, not over
}

void TiltSensorDlg::OnDestroy()
{
    TellSensor(m_command, false);
    g_place = geometry();
}

void TiltSensorDlg::TellSensor(CCommand* command, bool isStart)
{
    if (command == nullptr) {
        return;
    }
    command->Background().Once([port = m_port, isStart](CCommand& asking) {
        if (isStart || *port < 0) {
            CRecvInfo info;
            const bool isRead = asking.IsPortOpen() != 0 && info.GetOptionData(asking) == 1;
            *port = isRead ? info.GetCurrentPortID() : -1;
        }
        if (*port >= 0) {
            const auto known = static_cast<std::uint8_t>(*port);
            isStart ? asking.StartTiltSensor(known) : asking.StopTiltSensor(known);
        }
    });
}

} // namespace fieldcore
