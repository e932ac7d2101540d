#include "ui/planning/CurtainEditor.h"

#include "core/host/MesBox.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/PlanSession.h"
#include "core/platform/Folders.h"
#include "core/resources/StringTable.h"
#include "ui/controls/NToolBar.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/CurtainView.h"
#include "ui/planning/PlanExport.h"
#include "ui/planning/TextErrorText.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

CurtainEditor::CurtainEditor(PlanSession& session, const PlanSurroundings& surroundings, Host& host,
                             QWidget* parent, std::optional<SiteSky> site)
    : Dialog(parent, Extent::Whole), m_session(session), m_surroundings(surroundings), m_host(host),
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
    auto* const hint = new QLabel(UiText(text::kCurtainHint));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignCenter);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 12);
    layout->addWidget(m_tools);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_reading);
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

bool CurtainEditor::OnInitDialog()
{
    // Not the plan's own: without an almanac it has not read the file.
    m_edit = CurtainEdit(m_site ? m_site->curtain : LoadCurtain(m_session.Folder()));
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
    m_reading->setText(ToQt(FormatText(text::kCurtainReading, azimuth, m_edit.At(azimuth))));
    m_tools->EnableItem(kUndoTool, m_edit.CanUndo());
    m_tools->EnableItem(kRedoTool, m_edit.CanRedo());
}

void CurtainEditor::Import()
{
    const std::filesystem::path file =
        m_surroundings.chooseFile(this, false, m_surroundings.documents,
                                  UiText(text::kCurtainImport) + QStringLiteral(" (*.txt)"));
    if (file.empty()) {
        return;
    }
    const CurtainText read = LoadCurtainText(file);
    if (read.error) {
        CMesBox(m_host).Fail(TextErrorText(file, *read.error), text::kPlanFileCaption);
        return;
    }
    m_edit.Replace(read.curtain);
}

void CurtainEditor::Export()
{
    const QString name = UiText(text::kCurtainFile) + QStringLiteral(".txt");
    const std::filesystem::path file = m_surroundings.chooseFile(
        this, true, m_surroundings.documents / QFile::encodeName(name).toStdString(),
        UiText(text::kCurtainExport) + QStringLiteral(" (*.txt)"));
    if (file.empty()) {
        return;
    }
    static_cast<void>(Folders::Create(file.parent_path())); // else saving says what is wrong
    if (const std::error_code error = SaveCurtainText(file, m_edit.Curtain())) {
        CMesBox(m_host).Fail(ExportFailureText(file, error).toStdWString(), text::kPlanFileCaption);
    }
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
        CMesBox(m_host).Fail(
            ExportFailureText(
                m_site ? SiteCurtainPath(m_session.Folder(), m_site->name).value_or("Curtains")
                       : CurtainPath(m_session.Folder()),
                error)
                .toStdWString(),
            text::kPlanFileCaption);
        return false;
    }
    return true;
}

} // namespace fieldcore
