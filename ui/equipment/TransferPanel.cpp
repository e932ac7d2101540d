#include "ui/equipment/TransferPanel.h"

#include "core/equipment/FileTexts.h"
#include "core/resources/StringTable.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kSteps = 1000; // of a bar

int StepsOf(std::uint64_t part, std::uint64_t whole)
{
    // A file without content is there as soon as it has begun.
    const double share = whole > 0 ? static_cast<double>(part) / static_cast<double>(whole) : 1.0;
    return static_cast<int>(std::floor(std::min(share, 1.0) * kSteps));
}

QString TimeLeftText(const std::optional<std::chrono::seconds>& left)
{
    if (!left) {
        return UiText(text::kTransferMeasuring);
    }
    constexpr int kMinute = 60;
    constexpr int kHour = 60 * kMinute;
    const int seconds = static_cast<int>(left->count());
    if (seconds < kMinute) {
        return ToQt(FormatText(text::kTransferSeconds, seconds));
    }
    return ToQt(seconds < kHour
                    ? FormatText(text::kTransferMinutes, seconds / kMinute, seconds % kMinute)
                    : FormatText(text::kTransferHours, seconds / kHour, seconds % kHour / kMinute));
}

void ShowBar(CTextProgressCtrl& bar, int textId, std::uint64_t part, std::uint64_t whole)
{
    bar.SetPos(StepsOf(part, whole));
    bar.SetText(
        ToQt(FormatText(textId, ByteCountText(part).c_str(), ByteCountText(whole).c_str())));
}

} // namespace

TransferPanel::TransferPanel(QWidget* parent)
    : QFrame(parent), m_name(new QLabel), m_start(new QLabel), m_fileBar(new CTextProgressCtrl),
      m_totalBar(new CTextProgressCtrl), m_rate(new QLabel), m_left(new QLabel),
      m_cancel(MakeButton(text::kButtonCancel, "cancel"))
{
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setAccessibleName(UiText(text::kTransferTitle));
    m_fileBar->setAccessibleName(UiText(text::kTransferTitle));
    m_totalBar->setAccessibleName(UiText(text::kTransferTitle));
    m_fileBar->SetRange(0, kSteps);
    m_totalBar->SetRange(0, kSteps);
    m_cancel->setFocusPolicy(Qt::NoFocus); // Esc presses it, and the list keeps the focus
    QtHost::UseForCancel(m_cancel);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_isCancelled = true;
        m_left->setText(UiText(text::kTransferCancelling));
    });

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(12, kGrid, 12, kGrid);
    column->setSpacing(kGrid);
    column->addWidget(m_name);
    m_start->setWordWrap(true);
    column->addWidget(m_start);
    column->addWidget(m_fileBar);
    column->addWidget(m_totalBar);
    auto* const words = new QVBoxLayout;
    words->setSpacing(0);
    m_left->setFont(BoldFont(font()));
    words->addWidget(m_left);
    words->addWidget(m_rate);
    auto* const foot = new QHBoxLayout;
    foot->addLayout(words, 1);
    foot->addWidget(m_cancel);
    column->addLayout(foot);
}

void TransferPanel::Show(const TransferProgress& progress)
{
    const bool isDone = progress.fileBytes >= progress.fileSize;
    if (progress.file == m_file && !isDone && m_shown.isValid() && m_shown.elapsed() < kRepaintMs) {
        return;
    }
    m_file = progress.file;
    m_shown.start();
    m_name->setText(ToQt(
        FormatText(text::kTransferFile, progress.file, progress.files, progress.name.c_str())));
    const std::wstring start = TransferStartText(progress.start);
    m_start->setText(ToQt(start));
    m_start->setVisible(!start.empty());
    ShowBar(*m_fileBar, text::kTransferFileBytes, progress.fileBytes, progress.fileSize);
    ShowBar(*m_totalBar, text::kTransferTotalBytes, progress.totalBytes, progress.totalSize);
    m_rate->setText(ToQt(ByteRateText(progress.bytesPerSecond)));
    if (!m_isCancelled) {
        m_left->setText(TimeLeftText(progress.timeLeft));
    }
    show();
}

void TransferPanel::Reset()
{
    hide();
    m_file = 0;
    m_isCancelled = false;
    m_shown.invalidate();
}

} // namespace fieldcore
