#include "ui/planning/SessionDlg.h"

#include "core/host/Host.h"
#include "core/host/MesBox.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/CurtainEditor.h"
#include "ui/planning/PlanExport.h"
#include "ui/planning/SessionSheet.h"
#include "ui/planning/SiteChoice.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

QPushButton* AddButton(QHBoxLayout& row, int textId)
{
    QPushButton* const button = MakeRowButton(textId);
    row.addWidget(button);
    return button;
}

QLabel* Bold(const QString& text)
{
    auto* const label = new QLabel(text);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* Wrapped(QLabel* label)
{
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

SessionDlg::SessionDlg(PlanSession& session, const PlanSurroundings& surroundings, QWidget* parent)
    : Dialog(parent, Extent::Whole), m_session(session), m_surroundings(surroundings),
      m_pages(new QStackedWidget), m_siteList(new SiteChoice(session)),
      m_heading(Wrapped(new RoleLabel(&Theme::second))), m_together(Bold({})),
      m_rows(new QScrollArea)
{
    setWindowTitle(UiText(text::kSessionTitle));
    setAccessibleName(windowTitle());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, kGrid, 12, kGrid);
    layout->addWidget(m_pages);
    m_pages->addWidget(BuildChoice());
    m_pages->addWidget(BuildRows());
}

QWidget* SessionDlg::BuildChoice()
{
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Bold(UiText(text::kSessionNeedsTwo)));
    layout->addWidget(m_siteList, 1);
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    connect(AddButton(*row, text::kButtonCancel), &QPushButton::clicked, this,
            [this] { Close(kCancelled); });
    QPushButton* const show = AddButton(*row, text::kSessionShow);
    show->setDefault(true);
    connect(show, &QPushButton::clicked, this, &SessionDlg::ShowRows);
    layout->addLayout(row);
    return page;
}

QWidget* SessionDlg::BuildRows()
{
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kGrid);
    layout->addWidget(m_together);
    layout->addWidget(m_heading);
    m_rows->setWidgetResizable(true);
    m_rows->setFrameShape(QFrame::NoFrame);
    m_rows->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(m_rows, 1);
    auto* const row = new QHBoxLayout;
    row->setSpacing(kGrid);
    row->addStretch(1);
    connect(AddButton(*row, text::kSessionSites), &QPushButton::clicked, this,
            [this] { m_pages->setCurrentIndex(0); });
    connect(AddButton(*row, text::kSessionPdf), &QPushButton::clicked, this, &SessionDlg::Export);
    connect(AddButton(*row, text::kButtonClose), &QPushButton::clicked, this,
            [this] { Close(kOk); });
    layout->addLayout(row);
    return page;
}

void SessionDlg::ShowRows()
{
    m_sites = SkiesOfSites(m_session, m_siteList->Chosen());
    SearchChoice choice = m_session.Settings().search;
    choice.sites = m_siteList->Chosen();
    m_session.SetSearch(choice);
    if (m_sites.size() < 2) {
        CMesBox(m_session.GetEnvironment().GetHost())
            .Warn(text::kSessionNeedsTwo, text::kSessionTitle);
        return;
    }
    {
        const WaitCursor wait(m_session.GetEnvironment().GetHost());
        const PlanPeriod& period = m_session.Plan().Computed();
        m_search.emplace(
            SearchOf(m_session.Plan(), std::span<const SiteSky>(m_sites),
                     {period.date, 1, period.startHour, period.hours, period.Interval()}));
        while (m_search->Step()) {
        }
    }
    const SiteSummary together = SummaryOf(*m_search, m_search->Together(), m_session.Limits());
    m_together->setText(UiText(text::kSessionTogether) + QLatin1Char('\n') +
                        (together.windows.empty()
                             ? UiText(text::kSessionNone)
                             : session_sheet::WindowsText(*m_search, together)) +
                        QLatin1Char('\n') + session_sheet::ValuesText(together));
    m_heading->setText(session_sheet::Heading(m_session).join(QLatin1Char('\n')));
    auto* const rows = new QWidget;
    auto* const layout = new QVBoxLayout(rows);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kGrid / 2);
    for (std::size_t k = 0; k < m_sites.size(); ++k) {
        const SiteSky& site = m_sites[k];
        const SiteSummary summary = SummaryOf(*m_search, k, m_session.Limits());
        auto* const head = new QHBoxLayout;
        head->addWidget(Bold(ToQt(site.name)), 1);
        QPushButton* const curtain = AddButton(*head, text::kPlanCurtain);
        curtain->setMinimumHeight(TouchStyle::kTarget);
        curtain->setAccessibleDescription(ToQt(site.name));
        connect(curtain, &QPushButton::clicked, this, [this, site] {
            CurtainEditor editor(m_session, m_surroundings, this, site);
            if (editor.DoModal() == kOk) {
                // Later: the button that was pressed goes with its row.
                QMetaObject::invokeMethod(this, &SessionDlg::ShowRows, Qt::QueuedConnection);
            }
        });
        layout->addLayout(head);
        layout->addWidget(
            Wrapped(new QLabel(session_sheet::ValuesText(summary) + QStringLiteral("  ") +
                               session_sheet::WindowsText(*m_search, summary))));
        layout->addWidget(
            Wrapped(new RoleLabel(&Theme::second, session_sheet::SkyText(m_session, site))));
        if (site.error) {
            const std::wstring error = FromUtf8(site.error->message);
            layout->addWidget(Wrapped(new RoleLabel(
                &Theme::attention,
                ToQt(FormatText(text::kSearchCurtainBad, site.name.c_str(), error.c_str())))));
        }
        layout->addSpacing(kGrid);
    }
    layout->addStretch(1);
    m_rows->setWidget(rows);
    m_pages->setCurrentIndex(1);
}

void SessionDlg::Export()
{
    PlanDrawing drawing;
    drawing.plan = &m_session.Plan();
    const std::wstring day = PlanDateText(drawing).remove(QLatin1Char('/')).toStdWString();
    const QString title = UiText(text::kSessionSheet) + QLatin1Char(' ') + PlanDateText(drawing);
    m_surroundings.SaveAndTell(this, m_session.GetEnvironment(), text::kSessionPdf,
                               ToQt(FormatText(text::kSessionFile, day.c_str())),
                               QStringLiteral(".pdf"), [&](const std::filesystem::path& file) {
                                   return ExportPages(
                                       file, title, session_sheet::PageCount(m_sites.size()),
                                       [this](QPainter& painter, int page) {
                                           session_sheet::Paint(painter, m_session, m_sites,
                                                                *m_search, page);
                                       });
                               });
}

} // namespace fieldcore
