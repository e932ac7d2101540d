#include "ui/equipment/RecvFileMan.h"

#include "core/equipment/FileManager.h"
#include "core/link/Command.h"
#include "ui/controls/Icon.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/RecvFilePage.h"
#include "ui/equipment/RecvFileSaveDlg.h"
#include "ui/equipment/TransferPanel.h"
#include "ui/link/ConnectDlg.h"

#include <QLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kListTimer = 1;
constexpr int kBusyMs = 50; // until it is looked again whether the channel is free
constexpr int kGomiPage = 1;

} // namespace

/// While it lives something is being done, and the buttons show that they cannot be pressed.
class CRecvFileMan::Work
{
public:
    explicit Work(CRecvFileMan& sheet) : m_sheet(sheet)
    {
        m_sheet.m_isWorking = true;
        m_sheet.Page()->EnableButtons(false);
    }
    ~Work()
    {
        m_sheet.m_isWorking = false;
        m_sheet.Page()->EnableButtons(true);
        m_sheet.Page()->ShowState();
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

private:
    CRecvFileMan& m_sheet;
};

CRecvFileMan::CRecvFileMan(CCommand* command, int loadWay, const wchar_t* caption, QWidget* parent,
                           unsigned startPage)
    : CRecvFileMan(command, loadWay, caption, Surroundings{}, parent, startPage)
{}

CRecvFileMan::CRecvFileMan(CCommand* command, int loadWay, const wchar_t* caption,
                           Surroundings surroundings, QWidget* parent, unsigned startPage)
    : PropertySheet(caption != nullptr ? ToQt(caption) : UiText(text::kFilesTitle), parent),
      ReceiverFiles(*command, loadWay), m_surroundings(std::move(surroundings)),
      m_target(this,
               [this](unsigned message, std::intptr_t wParam, std::intptr_t lParam) {
                   if (message == kFileListMessage) {
                       OnRecvFileList(wParam, lParam);
                   }
               }),
      m_progress(new TransferPanel)
{
    AddPage(new CRecvFile(*this), UiText(text::kFilesPage));
    AddPage(new CRecvGomi(*this), UiText(text::kGomiPage));
    SetActivePage(static_cast<int>(startPage));
    HideButtons();
    layout()->addWidget(m_progress);
    m_progress->hide();
}

CRecvFileMan::~CRecvFileMan()
{
    Destroy();
}

int CRecvFileMan::Open()
{
    const std::unique_ptr<CConnect> connect =
        m_surroundings.makeConnect ? m_surroundings.makeConnect(GetCommand())
                                   : std::make_unique<ConnectDlg>(GetCommand(), 0, parentWidget());
    const int result = ReceiverFiles::Open(*connect);
    if (result == ReceiverFiles::Opened && !HasRecyclePage()) {
        RemovePage(kGomiPage);
    }
    return result;
}

int CRecvFileMan::DoModal()
{
    return Open() == ReceiverFiles::Opened ? PropertySheet::DoModal() : kCancelled;
}

bool CRecvFileMan::OnInitDialog()
{
    if (!m_hasMenu) {
        m_hasMenu = true;
        SetMenuBar(new CnMenuBar(GetLoadWay()));
    }
    PropertySheet::OnInitDialog();
    return false; // the page has set the focus
}

bool CRecvFileMan::OnClose(int result)
{
    return !m_isWorking && PropertySheet::OnClose(result);
}

RecvFilePage* CRecvFileMan::Page() const
{
    return static_cast<RecvFilePage*>(GetActivePage()); // there are no others
}

bool CRecvFileMan::CanWork() const
{
    return !m_isWorking && !GetCommand().IsBusy() && GetRows() != nullptr;
}

bool CRecvFileMan::IsWorking() const
{
    return m_isWorking || IsTimerRunning(kListTimer);
}

void CRecvFileMan::SetListCtrl(FileList* list)
{
    SetRows(&list->Rows());
}

void CRecvFileMan::InitListCtrl(FileList* list)
{
    list->ShowColumns();
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
}

void CRecvFileMan::InitIcon(FileList* list, FileImageList* images)
{
    (*images)[FileRow::Live] = ThemeIcon(QStringLiteral("file"));
    (*images)[FileRow::Recycled] = ThemeIcon(QStringLiteral("trash"));
    (*images)[FileRow::Logging] = ThemeIcon(QStringLiteral("recording"));
    list->SetImages(*images);
}

void CRecvFileMan::ListSoon()
{
    SetTimer(kListTimer, 0);
}

void CRecvFileMan::OnTimer(int id)
{
    if (id == kListTimer && CanWork()) {
        KillTimer(kListTimer);
        GetFileData();
    } else if (id == kListTimer) {
        SetTimer(kListTimer, kBusyMs);
    }
}

void CRecvFileMan::GetFileData()
{
    if (!CanWork()) {
        return;
    }
    const Work work(*this);
    m_notice.clear();
    LookForFetched();
    ReceiverFiles::GetFileData(m_target);
}

/// Each time: a card comes and goes while the sheet is open.
void CRecvFileMan::LookForFetched()
{
    const Folders& folders = GetCommand().GetEnvironment().GetFolders();
    std::vector<std::filesystem::path> fetched{folders.Documents()};
    const auto cards = folders.StorageCards();
    if (!cards.empty()) {
        fetched.push_back(cards.front());
    }
    SetFetchedFolders(std::move(fetched));
}

int CRecvFileMan::OnRecvFileList(std::intptr_t wParam, std::intptr_t lParam)
{
    ReceiverFiles::OnRecvFileList(wParam, lParam);
    if (wParam != 0) {
        Page()->ShowState();
    }
    return 0;
}

void CRecvFileMan::ChoiceAll()
{
    Page()->List().selectAll();
    Page()->List().setFocus();
}

void CRecvFileMan::FileDownload()
{
    if (!CanWork()) {
        return;
    }
    const Work work(*this);
    m_notice.clear();
    FileManager::Surroundings around;
    around.running.freeBytes = m_surroundings.freeBytes;
    around.askDestination = [this](FileDestination& destination) {
        return CRecvFileSaveDlg(destination, this).DoModal() == kOk;
    };
    around.running.watch = [this](const TransferProgress& progress) {
        if (!m_progress->isVisible()) {
            Page()->HideButtons();
        }
        m_progress->Show(progress);
        return true; // its Cancel button ends the wait that the host has charge of
    };
    FileManager(*this, around).FileDownload();
    m_progress->Reset();
}

void CRecvFileMan::FileDelete()
{
    Change(&FileManager::FileDelete);
}

void CRecvFileMan::FileRecover()
{
    Change(&FileManager::FileRecover);
}

void CRecvFileMan::Change(void (FileManager::*action)())
{
    if (!CanWork()) {
        return;
    }
    const Work work(*this);
    m_notice.clear();
    LookForFetched();
    FileManager manager(*this);
    (manager.*action)();
    m_notice = manager.Notice();
    if (auto unanswered = manager.Unanswered(); !unanswered.empty()) {
        ListAgain(m_target, std::move(unanswered));
    }
}

int CRecvFileMan::CheckIDCANCEL()
{
    return ReceiverFiles::CheckIDCANCEL(CPrgEndMes(CPrgEndMes::Mode::Logging, this).DoModal());
}

} // namespace fieldcore
