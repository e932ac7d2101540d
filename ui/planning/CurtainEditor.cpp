#include "ui/planning/CurtainEditor.h"

#include "core/host/MesBox.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/PlanSession.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/NToolBar.h"
#include "ui/controls/UiText.h"
#include "ui/planning/CurtainView.h"
#include "ui/planning/PlanExport.h"
#include "ui/planning/TextErrorText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace fieldcore {

namespace {

double Hours(std::chrono::seconds time)
{
    return std::chrono::duration<double, std::ratio<3600>>(time).count();
}

/// What there is to say of a record without a proposal.
std::wstring NoneYet(std::chrono::seconds observed)
{
    return observed < kLeastObserved ? FormatText(text::kSkylineNoneYet, Hours(observed),
                                                  static_cast<int>(kLeastObserved.count()))
                                     : FormatText(text::kSkylineNothingKnown, Hours(observed));
}

} // namespace

CurtainEditor::CurtainEditor(PlanSession& session, const PlanSurroundings& surroundings,
                             QWidget* parent, std::optional<SiteSky> site)
    : Dialog(parent, Extent::Whole), m_session(session), m_surroundings(surroundings),
      m_site(std::move(site)), m_tools(new CnToolBar), m_view(new CurtainView(m_edit)),
      m_reading(new QLabel)
{
    setWindowTitle(UiText(text::kPlanCurtain) +
                   (m_site ? QLatin1Char(' ') + ToQt(m_site->name) : QString()));
    setAccessibleName(windowTitle());
    m_tools->AddButton(kFormTool, QStringLiteral("curtain"), UiText(text::kCurtainUnrolled));
    m_tools->CheckItem(kFormTool, false);
    m_tools->AddSeparator();
    m_tools->AddButton(kUndoTool, QStringLiteral("undo"), UiText(text::kCurtainUndo));
    m_tools->AddButton(kRedoTool, QStringLiteral("redo"), UiText(text::kCurtainRedo));
    m_tools->AddButton(kClearTool, QStringLiteral("trash"), UiText(text::kCurtainClear));
    m_tools->AddSeparator();
    m_tools->AddButton(kImportTool, QStringLiteral("upload"), UiText(text::kCurtainImport));
    m_tools->AddButton(kExportTool, QStringLiteral("download"), UiText(text::kCurtainExport));
    QFont large = font();
    large.setPixelSize(fontInfo().pixelSize() * 5 / 4);
    large.setBold(true);
    m_reading->setFont(large);
    m_reading->setAlignment(Qt::AlignCenter);
    m_reading->setWordWrap(true); // a large font on a small screen
    auto* const hint = new QLabel(UiText(text::kCurtainHint));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignCenter);
    hint->setMargin(3);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 12);
    layout->addWidget(m_tools);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_reading);
    MakeProposal(layout);
    layout->addWidget(hint);
    layout->addLayout(MakeOkCancel());

    connect(m_tools, &CnToolBar::ItemChosen, this, &CurtainEditor::OnTool);
    connect(m_view, &CurtainView::Changed, this, &CurtainEditor::Update);
    const auto on = [this](const QKeySequence& keys, int tool) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this,
                [this, tool] { OnTool(tool); });
    };
    on(Qt::CTRL | Qt::Key_Z, kUndoTool);
    on(Qt::CTRL | Qt::Key_Y, kRedoTool);
}

void CurtainEditor::MakeProposal(QBoxLayout* layout)
{
    constexpr int kMargin = 12;
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(kMargin, 0, kMargin, 0);
    m_proposal = new QLabel;
    m_proposal->setWordWrap(true);
    QFont small = font();
    small.setPixelSize(fontInfo().pixelSize() * 7 / 8);
    m_proposal->setFont(small);
    m_proposal->setMargin(3); // the feet of the last line need it
    SetControlId(m_proposal, kProposalText);
    row->addWidget(m_proposal, 1);
    m_take = new QPushButton;
    m_take->setAutoDefault(false);
    SetControlId(m_take, kTakeButton);
    row->addWidget(m_take);
    layout->addLayout(row);
    connect(m_take, &QPushButton::clicked, this, &CurtainEditor::TakeProposal);
}

/// Looks at what was noted where the receiver stands, or stood last.
void CurtainEditor::Propose()
{
    const bool isNoting = m_surroundings.skyNotes != nullptr;
    SkyRecorder::Now notes = isNoting ? m_surroundings.skyNotes() : SkyRecorder::Now{};
    if (!notes.record) {
        SkyRecords known = LoadSkyRecords(m_session.Folder());
        std::ranges::move(known.setAside, std::back_inserter(notes.setAside));
        if (!known.records.empty()) {
            notes.record = known.records.front();
        }
    }
    m_noted = notes.record;
    const auto proposal =
        m_noted ? ProposeCurtain(*m_noted, m_edit.Curtain()) : std::optional<CurtainProposal>();
    m_view->SetProposal(proposal);
    m_take->setVisible(proposal.has_value());
    std::wstring words;
    const auto say = [&words](const std::wstring& more) {
        words += words.empty() || more.empty() ? more : L"\n" + more;
    };
    if (proposal) {
        say(FormatText(text::kSkylineProposal, Hours(proposal->observed),
                       proposal->Percent(SkylineCertainty::Sure),
                       proposal->Percent(SkylineCertainty::Fair)));
        constexpr double kKilometreM = 1000.0;
        constexpr double kElsewhereM = 100.0;
        const double away =
            DistanceM(m_noted->Place(), m_site ? m_site->observer : m_session.Site());
        if ((m_site || m_session.IsSiteKnown()) && away > kElsewhereM) {
            say(FormatText(text::kSkylineElsewhere, away / kKilometreM));
        }
    } else {
        say(NoneYet(m_noted ? m_noted->Observed() : std::chrono::seconds(0)));
        say(isNoting ? Text(SkyRecorderTextId(notes.state)) : L"");
    }
    for (const std::string& name : notes.setAside) {
        say(FormatText(text::kSkylineSetAside, FromUtf8(name).c_str()));
    }
    if (notes.fault) {
        say(FormatText(text::kSkylineNotKept, FromUtf8(notes.fault.message()).c_str()));
    }
    m_proposal->setText(ToQt(words));
}

bool CurtainEditor::IsTaken() const
{
    const auto& proposal = m_view->Proposal();
    return m_hasTaken && proposal && m_edit.Curtain() == proposal->curtain;
}

void CurtainEditor::TakeProposal()
{
    if (IsTaken()) {
        m_edit.Undo();
    } else if (m_noted) {
        // Where nothing is known, what has been drawn meanwhile stays.
        const auto proposal = ProposeCurtain(*m_noted, m_edit.Curtain());
        m_view->SetProposal(proposal);
        const ObstructionCurtain before = m_edit.Curtain();
        m_edit.Replace(proposal ? proposal->curtain : before);
        m_hasTaken = m_edit.Curtain() != before;
    }
    m_view->Invalidate();
    Update();
}

bool CurtainEditor::OnInitDialog()
{
    // Not the plan's own: without an almanac it has not read the file.
    m_edit = CurtainEdit(m_site ? m_site->curtain : LoadCurtain(m_session.Folder()));
    Propose();
    Update();
    m_view->setFocus();
    return false;
}

void CurtainEditor::OnTool(int id)
{
    switch (id) {
    case kFormTool:
        m_view->SetForm(m_tools->IsItemChecked(kFormTool) ? CurtainView::Form::Unrolled
                                                          : CurtainView::Form::Round);
        break;
    case kUndoTool:
        m_edit.Undo();
        break;
    case kRedoTool:
        m_edit.Redo();
        break;
    case kClearTool:
        m_edit.Clear();
        break;
    case kImportTool:
        Import();
        break;
    default:
        Export();
        break;
    }
    m_view->Invalidate();
    Update();
}

void CurtainEditor::Update()
{
    const int azimuth = m_view->CursorDeg();
    std::wstring reading = FormatText(text::kCurtainReading, azimuth, m_edit.At(azimuth));
    if (const auto& proposal = m_view->Proposal()) {
        const auto at = static_cast<std::size_t>(azimuth);
        const SkylineCertainty certainty = proposal->certainty[at];
        if (certainty != SkylineCertainty::Unknown) {
            reading += FormatText(certainty == SkylineCertainty::Sure ? text::kSkylineReadingSure
                                                                      : text::kSkylineReadingFair,
                                  int{proposal->curtain[at]});
        }
        m_take->setEnabled(IsTaken() || proposal->curtain != m_edit.Curtain());
        m_take->setText(UiText(IsTaken() ? text::kSkylineTakeBack : text::kSkylineTake));
    }
    m_reading->setText(ToQt(reading));
    m_tools->EnableItem(kUndoTool, m_edit.CanUndo());
    m_tools->EnableItem(kRedoTool, m_edit.CanRedo());
}

void CurtainEditor::Import()
{
    const std::filesystem::path file =
        m_surroundings.chooseFile(this, false, m_session.GetEnvironment().GetFolders().Documents(),
                                  UiText(text::kCurtainImport) + QStringLiteral(" (*.txt)"));
    if (file.empty()) {
        return;
    }
    const CurtainText read = LoadCurtainText(file);
    if (read.error) {
        CMesBox(m_session.GetEnvironment().GetHost())
            .Fail(TextErrorText(file, *read.error), text::kPlanFileCaption);
        return;
    }
    m_edit.Replace(read.curtain);
}

void CurtainEditor::Export()
{
    static_cast<void>(m_surroundings.Save(this, m_session.GetEnvironment(), text::kCurtainExport,
                                          UiText(text::kCurtainFile), QStringLiteral(".txt"),
                                          [this](const std::filesystem::path& file) {
                                              return SaveCurtainText(file, m_edit.Curtain());
                                          }));
}

bool CurtainEditor::OnClose(int result)
{
    m_edit.EndStroke();
    if (result != kOk) {
        return true;
    }
    const std::error_code error =
        m_site ? KeepSiteCurtain(m_session.Folder(), m_site->name, m_edit.Curtain())
               : m_session.ChangeCurtain(m_edit.Curtain());
    if (error) {
        CMesBox(m_session.GetEnvironment().GetHost())
            .Fail(ExportFailureText(
                      m_site
                          ? SiteCurtainPath(m_session.Folder(), m_site->name).value_or("Curtains")
                          : CurtainPath(m_session.Folder()),
                      error)
                      .toStdWString(),
                  text::kPlanFileCaption);
        return false;
    }
    return true;
}

} // namespace fieldcore
