#include "ui/tilt/TiltCalibDlg.h"

#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

TiltCalibDlg::TiltCalibDlg(CCommand* command, QWidget* parent)
    : Dialog(parent), m_command(command), m_words(new QLabel), m_progress(new CTextProgressCtrl),
      m_cancel(MakeButton(text::kButtonCancel, "cancel"))
{
    constexpr int kGrid = TouchStyle::kGrid;
    setWindowTitle(UiText(text::kTiltCaption));
    m_words->setFont(BoldFont(font(), 1.25));
    m_words->setWordWrap(true);
    m_progress->setAccessibleName(UiText(text::kTiltCaption));
    m_cancel->setAutoDefault(false);
    connect(m_cancel, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    LayOut(new QVBoxLayout(this), {2 * kGrid, 2 * kGrid, 2 * kGrid, 2 * kGrid}, 2 * kGrid,
           {BoxItem::Room(), m_words, m_progress, BoxItem::Room(), {m_cancel, 0, Qt::AlignRight}});
    setMinimumWidth(42 * kGrid);
    Take({});
}

TiltCalibDlg::~TiltCalibDlg()
{
    Destroy();
}

bool TiltCalibDlg::OnInitDialog()
{
    m_cancel->setFocus();
    if (m_command == nullptr) {
        return false;
    }
    m_question = std::make_unique<BackgroundQuestion>(
        *m_command, Rhythm{CalibrationRun::kInterval, CalibrationRun::kInterval},
        [this](CCommand& asking) {
            if (m_isUnwanted) {
                m_run.Cancel();
            }
            m_run.Tick(asking);
            return std::pair(true, m_run);
        },
        [this](const CalibrationRun& run) {
            if (isVisible()) {
                Take(run);
                if (run.IsOver()) {
                    done(kOk);
                }
            }
        });
    return false;
}

void TiltCalibDlg::Take(const CalibrationRun& run)
{
    m_told = run;
    if (m_isUnwanted) {
        m_told.Cancel(); // it may not have come to that yet
    }
    const bool isCancelling = m_told.GetState() == CalibrationRun::State::Cancelling;
    m_words->setText(UiText(isCancelling ? text::kTiltCancelling : text::kTiltCalibrating));
    m_progress->SetPos(m_told.ProgressPercent());
    m_cancel->setEnabled(!isCancelling);
}

bool TiltCalibDlg::OnClose(int result)
{
    Q_UNUSED(result)
    if (m_question && !m_isUnwanted.exchange(true)) {
        Take(m_told);
        m_question->Hurry();
        const Clock::Duration most = m_command->GetClock().RealTime(CalibrationRun::kCancelTime);
        SetTimer(kPatienceTimer, static_cast<int>(most / std::chrono::milliseconds(1)));
    }
    return !m_question || m_told.IsOver();
}

void TiltCalibDlg::OnTimer(int id)
{
    if (id == kPatienceTimer) {
        done(kCancelled);
    }
}

void TiltCalibDlg::OnDestroy()
{
    if (!m_question) {
        return;
    }
    m_question->Stop();
    m_run.Cancel(); // for whoever did not wait
    m_told = m_run;
    if (m_run.MustTell()) {
        m_command->Background().Once([](CCommand& asking) { asking.CancelTiltCalibration(); });
    }
}

} // namespace fieldcore
