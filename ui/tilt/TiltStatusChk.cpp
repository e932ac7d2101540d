#include "ui/tilt/TiltStatusChk.h"

#include "core/host/MesBox.h"
#include "core/resources/StringTable.h"
#include "core/tilt/Bubble.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/tilt/TiltSensorDlg.h"
#include "ui/tilt/TiltStatusDlg.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace fieldcore {

namespace {

CCommand* g_armed = nullptr;                // whose sensor is to be looked at
std::unique_ptr<BackgroundQuestion> g_look; // while it is under way

void Offer(CCommand* command, QWidget* window)
{
    constexpr BoxStyle kQuestion{BoxButtons::OkCancel, BoxIcon::Question, BoxAnswer::Ok};
    if (CMesBox(command->GetHost()).Show(text::kTiltCheck, text::kTiltCaption, kQuestion) ==
        BoxAnswer::Ok) {
        TiltSensorDlg::ShutDown();
        TiltStatusDlg(command, window).DoModal();
    }
}

} // namespace

void TiltStatusChk::SetCheckCalib(CCommand* command, bool isArmed)
{
    g_look.reset();
    g_armed = isArmed ? command : nullptr;
}

void TiltStatusChk::SttCheckCalib(QWidget* window, int timerId, int delayMs)
{
    if (window == nullptr) {
        return;
    }
    const QString name = QStringLiteral("fieldcoreTiltCheck%1").arg(timerId);
    auto* timer = window->findChild<QTimer*>(name, Qt::FindDirectChildrenOnly);
    if (timer == nullptr) {
        timer = new QTimer(window);
        timer->setObjectName(name);
        QObject::connect(timer, &QTimer::timeout, timer, [timer, window] {
            timer->stop();
            TimerCheckProc(window);
        });
    }
    timer->start(delayMs);
}

void TiltStatusChk::TimerCheckProc(QWidget* window)
{
    CCommand* const command = std::exchange(g_armed, nullptr);
    if (command == nullptr) {
        return;
    }
    constexpr std::chrono::hours kOnce{1};
    g_look = std::make_unique<BackgroundQuestion>(
        *command, Rhythm{kOnce, kOnce},
        [](CCommand& asking) {
            TiltReading reading;
            const bool isRead = asking.RequestTiltReading(reading) == 1;
            return std::pair(true, isRead && NeedsCalibration(reading));
        },
        [command, under = QPointer<QWidget>(window)](bool isNeeded) {
            g_look.release()->deleteLater(); // it is on the stack
            if (isNeeded) {
                Offer(command, under);
            }
        });
}

} // namespace fieldcore
