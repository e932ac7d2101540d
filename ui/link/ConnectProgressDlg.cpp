#include "ui/link/ConnectProgressDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kIconSize = 3 * kGrid;
constexpr int kElapsedTimer = 1;
constexpr int kElapsedInterval = 200; // ms
constexpr double kLarge = 1.25;       // of the usual text

RoleLabel* Wrapping(const QString& text = {}, RoleLabel::Role role = &Theme::text)
{
    auto* const label = new RoleLabel(role, text);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

ConnectProgressDlg::ConnectProgressDlg(const QString& target, const Clock& clock, QWidget* parent)
    : Dialog(parent), m_clock(clock), m_heading(Wrapping(UiText(text::kConnectingTitle))),
      m_current(Wrapping()), m_progress(new QProgressBar), m_elapsed(new QLabel),
      m_hint(Wrapping(UiText(text::kConnectingHint), &Theme::second)), m_message(Wrapping()),
      m_detail(new QPlainTextEdit), m_scroll(MakeScroll(new QWidget)),
      m_cancel(MakeButton(text::kConnectStop, "cancel")),
      m_showDetail(MakeButton(text::kDetailShow)), m_search(MakeButton(text::kComSearch)),
      m_close(MakeButton(text::kButtonClose))
{
    // The caption stands in the dialog: a controller shows no title bars.
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setModal(true);
    setWindowTitle(UiText(text::kConnectingTitle));
    setAccessibleName(UiText(text::kConnectingTitle));
    Build(target);
    QtHost::UseForCancel(m_cancel);
    connect(m_cancel, &QPushButton::clicked, this,
            [this] { m_current->setText(UiText(text::kConnectStopping)); });
    m_showDetail->setCheckable(true);
    m_showDetail->setAutoDefault(false);
    connect(m_showDetail, &QPushButton::toggled, this, &ConnectProgressDlg::ShowDetail);
    m_search->setAutoDefault(false);
    connect(m_search, &QPushButton::clicked, this, &ConnectProgressDlg::Search);
    connect(m_close, &QPushButton::clicked, this, [this] { Close(kOk); });
}

ConnectProgressDlg::~ConnectProgressDlg()
{
    Destroy();
}

void ConnectProgressDlg::Build(const QString& target)
{
    m_heading->setFont(BoldFont(font(), kLarge));
    QLabel* const where = Wrapping(target, &Theme::second);
    m_current->setFont(BoldFont(font()));
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(UiText(text::kConnectingProgress));
    m_detail->setReadOnly(true);
    m_detail->setAccessibleName(UiText(text::kDetailName));
    m_detail->setTabChangesFocus(true);
    m_detail->setMinimumHeight(5 * fontMetrics().lineSpacing());

    auto* const steps = new QGridLayout;
    steps->setHorizontalSpacing(kGrid);
    steps->setVerticalSpacing(kGrid);
    steps->setColumnStretch(1, 1);
    for (int i = 0; i < kSteps; ++i) {
        Row& row = m_rows[static_cast<std::size_t>(i)];
        row = {new QLabel, Wrapping(UiText(text::kStepNameOpenPort + i)),
               new RoleLabel(&Theme::second)};
        row.icon->setFixedSize(kIconSize, kIconSize);
        steps->addWidget(row.icon, i, 0, Qt::AlignVCenter);
        steps->addWidget(row.name, i, 1);
        steps->addWidget(row.state, i, 2, Qt::AlignRight | Qt::AlignVCenter);
        ShowRow(row, RowState::Waiting);
    }
    LayOut(new QVBoxLayout(m_scroll->widget()), {}, 2 * kGrid,
           {m_message, {m_search, 0, Qt::AlignLeft}, steps, m_detail, BoxItem::Room()});
    QBoxLayout* const far = LayOut(new QHBoxLayout, {}, -1,
                                   {{m_hint, 1}, {m_elapsed, 0, Qt::AlignRight | Qt::AlignTop}});
    QBoxLayout* const buttons =
        LayOut(new QHBoxLayout, {}, kGrid, {m_showDetail, BoxItem::Room(), m_cancel, m_close});
    LayOut(new QVBoxLayout(this), {2 * kGrid, 2 * kGrid, 2 * kGrid, 2 * kGrid}, kGrid,
           {m_heading,
            where,
            BoxItem::Gap(kGrid),
            {m_scroll, 1},
            BoxItem::Gap(kGrid),
            m_current,
            m_progress,
            far,
            BoxItem::Gap(kGrid),
            buttons});
    for (QWidget* const later :
         std::initializer_list<QWidget*>{m_message, m_detail, m_showDetail, m_search, m_close}) {
        later->hide();
    }
}

bool ConnectProgressDlg::OnInitDialog()
{
    Place();
    m_cancel->setFocus();
    return false;
}

void ConnectProgressDlg::Begin()
{
    m_began = m_clock.Steady();
    ShowElapsed();
    show();
    SetTimer(kElapsedTimer, kElapsedInterval);
    // Opening a port takes its time without a breath; until then the dialog is to be seen.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void ConnectProgressDlg::OnStep(ConnectStep step, int done, int total)
{
    m_step = step;
    m_progress->setRange(0, total);
    m_progress->setValue(done);
    m_current->setText(ToQt(StepText(step)) + QStringLiteral("　") +
                       ToQt(FormatText(text::kConnectingCount, done, total)));
    m_rows[static_cast<std::size_t>(step)].visited = true;
    ShowRows(step, false);
    ShowElapsed();
}

/// The last two steps take turns, so neither is done before both are.
void ConnectProgressDlg::ShowRows(ConnectStep current, bool failed)
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        Row& row = m_rows[i];
        const auto step = static_cast<ConnectStep>(i);
        RowState state = RowState::Waiting;
        if (step == current) {
            state = failed ? RowState::Failed : RowState::Running;
        } else if (row.visited) {
            state = step < ConnectStep::ReadOptions || failed ? RowState::Done : RowState::Running;
        }
        ShowRow(row, state);
    }
}

void ConnectProgressDlg::ShowRow(Row& row, RowState state)
{
    struct Look
    {
        const char* icon;
        int word;
        RoleLabel::Role role;
    };
    constexpr Look kLooks[] = {{"", text::kStepWaiting, &Theme::second},
                               {"refresh", text::kStepRunning, &Theme::accent},
                               {"ok", text::kStepDone, &Theme::good},
                               {"cancel", text::kStepFailed, &Theme::bad}};
    const Look& look = kLooks[static_cast<std::size_t>(state)];
    const QColor& colour = Theme::Current().*look.role;
    row.icon->setPixmap(state == RowState::Waiting
                            ? QPixmap()
                            : DrawIcon(QString::fromLatin1(look.icon), kIconSize,
                                       devicePixelRatioF(), colour, colour));
    row.state->setText(UiText(look.word));
    row.state->SetRole(look.role);
    row.name->SetRole(state == RowState::Waiting ? &Theme::second : &Theme::text);
}

void ConnectProgressDlg::OnTimer(int id)
{
    if (id == kElapsedTimer) {
        ShowElapsed();
    }
}

void ConnectProgressDlg::ShowElapsed()
{
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::seconds>(m_clock.Steady() - m_began);
    m_elapsed->setText(
        ToQt(FormatText(text::kConnectingElapsed, static_cast<int>(elapsed.count()))));
}

void ConnectProgressDlg::ShowFailure(const QString& message, const QString& detail,
                                     std::function<QString()> search)
{
    m_searchRate = std::move(search);
    KillTimer(kElapsedTimer);
    m_failed = true;
    ShowRows(m_step, true);
    const QString caption = UiText(text::kConnectFailedCaption);
    setWindowTitle(caption);
    setAccessibleName(caption);
    setAccessibleDescription(message);
    m_heading->setText(caption);
    m_heading->SetRole(&Theme::bad);
    m_message->setText(message);
    m_detail->setPlainText(detail);
    for (QWidget* const over :
         std::initializer_list<QWidget*>{m_cancel, m_current, m_progress, m_hint, m_elapsed}) {
        over->hide();
    }
    m_message->show();
    m_showDetail->show();
    m_search->setVisible(m_searchRate != nullptr);
    m_close->show();
    m_close->setDefault(true);
    m_close->setFocus();
    m_scroll->setFocusPolicy(Qt::StrongFocus);
    Place();
    DoModal();
}

/// While a search runs it can be cancelled, and nothing else.
void ConnectProgressDlg::ShowSearching(bool on)
{
    for (QWidget* const shown : std::initializer_list<QWidget*>{m_cancel, m_current, m_progress}) {
        shown->setVisible(on);
    }
    for (QWidget* const hidden : std::initializer_list<QWidget*>{m_showDetail, m_search, m_close}) {
        hidden->setVisible(!on);
    }
    (on ? m_cancel : m_close)->setFocus();
    Place();
}

void ConnectProgressDlg::Search()
{
    if (!m_searchRate) {
        return;
    }
    m_showDetail->setChecked(false);
    ShowSearching(true);
    const QString result = m_searchRate();
    ShowSearching(false);
    m_message->setText(result);
    setAccessibleDescription(result);
    Place();
}

void ConnectProgressDlg::OnRate(std::uint32_t rate, int done, int total)
{
    m_progress->setRange(0, total);
    m_progress->setValue(done);
    m_current->setText(
        ToQt(FormatText(text::kComSearching, static_cast<long>(rate), done + 1, total)));
}

void ConnectProgressDlg::ShowDetail(bool on)
{
    m_detail->setVisible(on);
    Place();
    if (on) {
        QCoreApplication::sendPostedEvents(this, QEvent::LayoutRequest);
        m_scroll->ensureWidgetVisible(m_detail);
    }
}

/// As large as it has to be, in the middle of the window under it, and no larger than that.
void ConnectProgressDlg::Place()
{
    const QWidget* const under = parentWidget() != nullptr ? parentWidget()->window() : nullptr;
    const QSize room = (under != nullptr ? under->size() : screen()->availableSize()) -
                       QSize(2 * kGrid, 2 * kGrid);
    const int wanted = 30 * fontMetrics().horizontalAdvance(QChar(0x3042));
    const int width = std::max(std::min(wanted, room.width()), layout()->minimumSize().width());
    setFixedWidth(width);
    QWidget* const inner = m_scroll->widget();
    m_scroll->setMinimumHeight(0);
    inner->layout()->activate();
    layout()->activate();
    const int content = inner->layout()->totalHeightForWidth(width - 4 * kGrid);
    const int chrome = layout()->totalHeightForWidth(width) - m_scroll->sizeHint().height();
    const int fits = std::max(room.height() - chrome, 3 * fontMetrics().lineSpacing());
    m_scroll->setMinimumHeight(std::min(content, fits));
    resize(width, chrome + std::min(content, fits));
    if (under != nullptr) {
        move(under->mapToGlobal(under->rect().center()) - rect().center());
    }
}

void ConnectProgressDlg::changeEvent(QEvent* event)
{
    Dialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_rows.back().icon != nullptr) {
        ShowRows(m_step, m_failed); // their icons have colours, too
    }
}

void ConnectProgressDlg::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    PaintGround(*this, m_failed ? Theme::Current().bad : Theme::Current().accent);
}

} // namespace fieldcore
