#include "ui/tilt/TiltStatusChk.h"

#include "core/host/MesBox.h"
#include "core/resources/StringTable.h"
#include "ui/tilt/TiltSensorDlg.h"
#include "ui/tilt/TiltStatusDlg.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace fieldcore {

namespace {

CalibrationCheck g_check;

} // namespace

void TiltStatusChk::SetCheckCalib(CCommand* command, bool isArmed)
{
    g_check.Arm(command, isArmed);
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
            if (g_check.MustWait()) {
                return; // it comes again
            }
            timer->stop();
            TimerCheckProc(window);
        });
    }
    timer->start(delayMs);
}

void TiltStatusChk::TimerCheckProc(QWidget* window)
{
    CCommand* const command = g_check.Command();
    if (!g_check.Look()) {
        return;
    }
    constexpr BoxStyle kQuestion{BoxButtons::OkCancel, BoxIcon::Question, BoxAnswer::Ok};
    const QPointer<QWidget> under(window);
    if (CMesBox(command->GetHost()).Show(text::kTiltCheck, text::kTiltCaption, kQuestion) ==
        BoxAnswer::Ok) {
        TiltSensorDlg::ShutDown();
        TiltStatusDlg(command, under).DoModal();
    }
}

} // namespace fieldcore
