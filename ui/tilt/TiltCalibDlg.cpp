#include "ui/tilt/TiltCalibDlg.h"

#include "ui/controls/Icon.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QFontInfo>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

TiltCalibDlg::TiltCalibDlg(CCommand* command, QWidget* parent)
    : Dialog(parent), m_run(command), m_words(new QLabel), m_progress(new CTextProgressCtrl),
      m_cancel(new QPushButton(UiText(text::kButtonCancel)))
{
    constexpr int kGrid = TouchStyle::kGrid;
    setWindowTitle(UiText(text::kTiltCaption));
    QFont large = font();
    large.setBold(true);
    large.setPixelSize(QFontInfo(large).pixelSize() * 5 / 4);
    m_words->setFont(large);
    m_words->setWordWrap(true);
    m_progress->setAccessibleName(UiText(text::kTiltCaption));
    m_cancel->setIcon(ThemeIcon(QStringLiteral("cancel")));
    m_cancel->setMinimumSize(15 * kGrid, 6 * kGrid);
    m_cancel->setAutoDefault(false);
    QtHost::UseForCancel(m_cancel);
    connect(m_cancel, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * kGrid, 2 * kGrid, 2 * kGrid, 2 * kGrid);
    layout->setSpacing(2 * kGrid);
    layout->addStretch(1);
    layout->addWidget(m_words);
    layout->addWidget(m_progress);
    layout->addStretch(1);
    layout->addWidget(m_cancel, 0, Qt::AlignRight);
    setMinimumWidth(42 * kGrid);
    ShowRun();
}

TiltCalibDlg::~TiltCalibDlg()
{
    Destroy();
}

bool TiltCalibDlg::OnInitDialog()
{
    SetTimer(kRunTimer, 1); // when it is to be seen
    m_cancel->setFocus();
    return false;
}

void TiltCalibDlg::OnTimer(int id)
{
    if (id != kRunTimer || m_isTicking) {
        return;
    }
    m_isTicking = true;
    if (m_run.GetState() == CalibrationRun::State::Waiting) {
        SetTimer(kRunTimer, static_cast<int>(CalibrationRun::kInterval.count()));
        m_run.Start();
    } else {
        m_run.Tick();
    }
    m_isTicking = false;
    ShowRun();
    if (m_run.IsOver() && isVisible()) {
        Close(kOk);
    }
}

void TiltCalibDlg::ShowRun()
{
    const bool isCancelling = m_run.GetState() == CalibrationRun::State::Cancelling;
    m_words->setText(UiText(isCancelling ? text::kTiltCancelling : text::kTiltCalibrating));
    m_progress->SetPos(m_run.ProgressPercent());
    m_cancel->setEnabled(!isCancelling);
}

bool TiltCalibDlg::OnClose(int result)
{
    Q_UNUSED(result)
    m_run.Cancel();
    ShowRun();
    return m_run.IsOver();
}

void TiltCalibDlg::OnDestroy()
{
    m_run.Cancel(); // for whoever did not wait
}

} // namespace fieldcore
