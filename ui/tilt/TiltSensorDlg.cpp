#include "ui/tilt/TiltSensorDlg.h"

#include "core/equipment/ReceiverFields.h"
#include "core/link/RecvInfo.h"
#include "core/tilt/BubbleConfig.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"
#include "ui/tilt/BubbleView.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>
#include <cstdint>

namespace fieldcore {

namespace {

QPointer<TiltSensorDlg> g_window;
QPointer<QWidget> g_anchor;
double g_antennaHeightM = 0.0;
std::optional<QRect> g_place; // of the window's inside
std::function<void(TiltSensorDlg::Event)> g_observer;

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kLargeEdge = 3 * kVialWidth;

void Tell(TiltSensorDlg::Event event)
{
    if (g_observer) {
        g_observer(event);
    }
}

/// Where a finger does something in a window, on the screen.
std::vector<QRect> ControlsOf(const QWidget& window)
{
    std::vector<QRect> controls;
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const bool takesFingers = qobject_cast<const QAbstractButton*>(control) != nullptr ||
                                  qobject_cast<const QComboBox*>(control) != nullptr ||
                                  qobject_cast<const QLineEdit*>(control) != nullptr ||
                                  qobject_cast<const QAbstractSpinBox*>(control) != nullptr ||
                                  qobject_cast<const QAbstractSlider*>(control) != nullptr;
        const QRect seen = control->visibleRegion().boundingRect();
        if (takesFingers && !seen.isEmpty()) {
            controls.emplace_back(control->mapToGlobal(seen.topLeft()), seen.size());
        }
    }
    return controls;
}

/// The place in a window that is nearest to @p wanted, row by row, and covers none of its controls;
/// @p wanted where there is none.
QRect FreePlace(const QWidget& window, const QRect& wanted)
{
    const std::vector<QRect> controls = ControlsOf(window);
    const auto isFree = [&controls](const QRect& place) {
        return std::none_of(controls.begin(), controls.end(),
                            [&place](const QRect& control) { return control.intersects(place); });
    };
    if (isFree(wanted)) {
        return wanted;
    }
    const QRect inside(window.mapToGlobal(QPoint()), window.size());
    QRect place = wanted;
    for (int bottom = inside.bottom(); bottom - wanted.height() >= inside.top(); bottom -= kGrid) {
        for (int right = inside.right(); right - wanted.width() >= inside.left(); right -= kGrid) {
            place.moveBottomRight({right, bottom});
            if (isFree(place)) {
                return place;
            }
        }
    }
    return wanted;
}

} // namespace

int TiltSensorDlg::StartUp(CCommand* command, QWidget* parent, QWidget* anchor)
{
    if (g_window.isNull()) {
        g_anchor = anchor;
        g_window = new TiltSensorDlg(command, parent);
    } else if (anchor != nullptr && !g_window->isVisible()) {
        g_anchor = anchor;
        g_window->setGeometry(FreePlace(*anchor, g_window->geometry()));
    }
    g_window->TellSensor(command, true);
    g_window->show();
    Tell(Event::Shown);
    return 1;
}

int TiltSensorDlg::ShutDown()
{
    if (g_window.isNull()) {
        return 0;
    }
    delete g_window.data();
    Tell(Event::Gone);
    return 1;
}

void TiltSensorDlg::WindowHide(int showCommand)
{
    if (!g_window.isNull()) {
        g_window->setVisible(showCommand != 0);
        Tell(showCommand != 0 ? Event::Shown : Event::Gone);
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

void TiltSensorDlg::SetObserver(std::function<void(Event)> observer)
{
    g_observer = std::move(observer);
}

TiltSensorDlg::TiltSensorDlg(CCommand* command, QWidget* parent)
    : Dialog(parent), m_command(command), m_view(new BubbleView), m_numbers(new QLabel),
      m_smaller(new QPushButton(UiText(text::kBubbleSmaller)))
{
    setWindowFlags(Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                   Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(UiText(text::kBubbleTitle));
    LayOut(new QVBoxLayout(this), {}, 0, {{m_view, 1}, m_numbers, m_smaller})
        ->setSizeConstraint(QLayout::SetNoConstraint); // what is hidden takes no room at once
    setMinimumSize(kVialWidth, kVialWidth);
    m_view->setToolTip(UiText(text::kBubbleLarger));
    m_numbers->setFont(BoldFont(font(), 1.5));
    m_numbers->setAlignment(Qt::AlignCenter);
    m_numbers->setMargin(kGrid);
    m_numbers->setAccessibleName(UiText(text::kTiltAngle));
    m_smaller->setMinimumHeight(6 * kGrid);
    m_smaller->setAutoDefault(false);
    connect(m_smaller, &QPushButton::clicked, this, [this] { SetLarge(false); });
    m_numbers->hide();
    m_smaller->hide();
    ShowBubble();
}

TiltSensorDlg::~TiltSensorDlg()
{
    Destroy();
}

bool TiltSensorDlg::OnInitDialog()
{
    QRect place(0, 0, kVialWidth, kVialWidth);
    if (!g_anchor.isNull()) {
        // Its own frame nobody knows before it is there: that of the window beneath.
        const QWidget* const under = g_anchor->window();
        const QPoint frame = under->frameGeometry().bottomRight() - under->geometry().bottomRight();
        place.moveBottomRight(g_anchor->mapToGlobal(g_anchor->rect().bottomRight()) - frame);
    }
    place = g_place.value_or(place);
    setGeometry(g_anchor.isNull() ? place : FreePlace(*g_anchor, place));
    return false; // the focus stays where it is
}

void TiltSensorDlg::showEvent(QShowEvent* event)
{
    Dialog::showEvent(event);
    // Readings grow old.
    SetTimer(kPollTimer, static_cast<int>(kBubbleRhythm.interval / std::chrono::milliseconds(1)));
    if (m_command != nullptr && !m_question) {
        m_question = std::make_unique<BackgroundQuestion>(
            *m_command, kBubbleRhythm,
            [](CCommand& command) {
                const TiltState state = AskTilt(command, false);
                return std::pair(IsAnswered(state), state);
            },
            [this](TiltState state) {
                m_state = state != TiltState::NotAsked ? state : m_state;
                ShowBubble();
            });
    }
}

void TiltSensorDlg::hideEvent(QHideEvent* event)
{
    if (!m_isComing) {
        m_question.reset();
        KillTimer(kPollTimer);
    }
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
    using Source = BubbleView::Source;
    const Receiver known = m_command != nullptr ? m_command->Heard() : Receiver();
    StatusView view;
    view.antennaHeightM = g_antennaHeightM;
    BubblePicture picture;
    Source source = Source::NotReceived;
    if (m_command != nullptr && m_command->IsPortOpen() != 0 && known.tilt) {
        view.now = m_command->GetClock().Steady();
        // What cannot be drawn leaves what was.
        picture = IsUsable(known.tilt->value)
                      ? PictureOf(known.tilt->value,
                                  {eBubbleConfig::GetBubbleSensitivity(),
                                   eBubbleConfig::GetBubbleDuration(), g_antennaHeightM})
                      : m_view->Picture();
        source = view.now - known.tilt->at > kTiltStaleAge ? Source::NotReceived
                 : known.tilt->value.sensorPresent         ? Source::Reading
                                                           : Source::NoSensor;
    } else if (known.tilt) {
        picture = m_view->Picture();
    }
    if (m_state == TiltState::NotBuiltIn) {
        source = Source::NoSensor;
    }
    m_view->Show(picture, source);
    const auto words = [&](const char* key) {
        return ToQt(source == Source::Reading ? FieldText(FieldOf(key), known, view)
                                              : Text(text::kStatusUnknown));
    };
    const QString tilt = words("tiltDeg");
    const QString offset = words("tiltOffsetMm");
    const QString numbers = tilt + QStringLiteral("   ") + offset;
    m_numbers->setText(numbers);
    setAccessibleDescription(ToQt(
        FormatText(text::kBubbleSummary, m_view->accessibleDescription().toStdWString().c_str(),
                   tilt.toStdWString().c_str(), offset.toStdWString().c_str())));
    setWindowTitle(source == Source::Reading ? numbers : UiText(text::kBubbleTitle));
}

void TiltSensorDlg::SetLarge(bool isLarge)
{
    if (isLarge == IsLarge()) {
        return;
    }
    const QRect before = geometry();
    m_numbers->setVisible(isLarge);
    m_smaller->setVisible(isLarge);
    m_view->setToolTip(isLarge ? QString() : UiText(text::kBubbleLarger));
    if (!isLarge) {
        const QRect place = *m_small;
        m_small.reset();
        setGeometry(place);
        return;
    }
    m_small = before;
    const int below = m_numbers->sizeHint().height() + m_smaller->sizeHint().height();
    QRect place(QPoint(), QSize(kLargeEdge, kLargeEdge + below));
    place.moveBottomRight(m_small->bottomRight());
    const QRect room = g_anchor.isNull() ? screen()->availableGeometry()
                                         : QRect(g_anchor->mapToGlobal(QPoint()), g_anchor->size());
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
    setGeometry(place);
}

void TiltSensorDlg::mousePressEvent(QMouseEvent* event)
{
    m_pressedAt = event->globalPosition().toPoint() - pos();
    m_isDragged = false;
}

void TiltSensorDlg::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint to = event->globalPosition().toPoint() - m_pressedAt;
    m_isDragged =
        m_isDragged || (to - pos()).manhattanLength() >= QApplication::startDragDistance();
    if (m_isDragged) {
        move(to);
    }
}

void TiltSensorDlg::mouseReleaseEvent(QMouseEvent* event)
{
    Q_UNUSED(event)
    if (!std::exchange(m_isDragged, false)) {
        SetLarge(!IsLarge());
    }
}

void TiltSensorDlg::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return) {
        SetLarge(!IsLarge());
    } else {
        Dialog::keyPressEvent(event);
    }
}

/// A page that takes all input is above what is not its own.
bool TiltSensorDlg::event(QEvent* event)
{
    if (event->type() == QEvent::WindowBlocked) {
        QMetaObject::invokeMethod(this, &TiltSensorDlg::ComeForward, Qt::QueuedConnection);
    }
    return Dialog::event(event);
}

void TiltSensorDlg::ComeForward()
{
    const QWidget* const page = QApplication::activeModalWidget();
    QWindow* const above = page != nullptr ? page->windowHandle() : nullptr;
    if (above == nullptr || !isVisible() || windowHandle()->transientParent() == above) {
        return;
    }
    m_isComing = true;
    const QRect place = geometry();
    hide(); // who is blocked is looked at when a window is shown
    windowHandle()->setTransientParent(above);
    setGeometry(place);
    show();
    m_isComing = false;
}

bool TiltSensorDlg::OnClose(int result)
{
    Q_UNUSED(result)
    TellSensor(m_command, false);
    hide();
    Tell(Event::Closed);
    return false; // it is hidden, not over
}

void TiltSensorDlg::OnDestroy()
{
    TellSensor(m_command, false);
    g_place = m_small.value_or(geometry());
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
