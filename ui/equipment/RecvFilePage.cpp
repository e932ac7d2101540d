#include "ui/equipment/RecvFilePage.h"

#include "core/equipment/ReceiverFiles.h"
#include "core/link/Command.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/RecvFileMan.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
// The height of the list, in eighths of a line of text.
constexpr int kListUnits = 122;
constexpr int kListUnitsQ77 = 167; // on the controller with the taller screen

} // namespace

RecvFilePage::RecvFilePage(CRecvFileMan& sheet, int mode)
    : m_man(sheet), m_mode(mode),
      m_list(new FileList(sheet.GetCommand().GetHost().IsQ77() ? kListUnitsQ77 : kListUnits)),
      m_state(new QLabel), m_trouble(new QLabel), m_buttons(new QWidget),
      m_row(new QHBoxLayout(m_buttons))
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(12, kGrid, 12, kGrid);
    column->setSpacing(kGrid);

    auto* const head = new QHBoxLayout;
    head->setSpacing(kGrid);
    Dialog::SetControlId(m_state, kState);
    // Without wrapping, here and below: it would make the page as high as it wishes to be.
    head->addWidget(m_state, 1);
    auto* const reload = new QPushButton(UiText(text::kFilesReload));
    reload->setIcon(ThemeIcon(QStringLiteral("refresh")));
    reload->setAutoDefault(false);
    reload->setShortcut(Qt::Key_F5);
    Dialog::SetControlId(reload, kReload);
    connect(reload, &QPushButton::clicked, this, [this] { m_man.GetFileData(); });
    head->addWidget(reload);
    column->addLayout(head);
    Dialog::SetControlId(m_trouble, kTrouble);
    m_trouble->setTextFormat(Qt::PlainText);
    m_trouble->setWordWrap(true);
    m_trouble->hide();
    column->addWidget(m_trouble);

    Dialog::SetControlId(m_list, kList);
    connect(m_list, &FileList::Changed, this, &RecvFilePage::ShowState);
    column->addWidget(m_list, 1);

    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(kGrid);
    column->addWidget(m_buttons);
}

QPushButton* RecvFilePage::AddButton(int control, int textId, const char* icon,
                                     void (CRecvFileMan::*action)())
{
    auto* const button = new QPushButton(UiText(textId));
    button->setIcon(ThemeIcon(QLatin1String(icon)));
    button->setMinimumHeight(6 * kGrid);
    button->setAutoDefault(false);
    Dialog::SetControlId(button, control);
    connect(button, &QPushButton::clicked, &m_man, action);
    m_row->addWidget(button, 1);
    return button;
}

void RecvFilePage::AddNote(QLabel* note)
{
    auto* const column = static_cast<QVBoxLayout*>(layout());
    column->insertWidget(column->indexOf(m_buttons), note);
}

void RecvFilePage::OnInitDialog()
{
    m_man.InitListCtrl(m_list);
    m_man.InitIcon(m_list, &m_images);
    m_list->setFocus();
}

void RecvFilePage::OnSetActive()
{
    m_man.SetMode(m_mode);
    m_man.SetListCtrl(m_list);
    m_man.SetImageList(&m_images);
    m_man.ListSoon();
}

bool RecvFilePage::OnCancel()
{
    // The question is asked once, whichever pages have been seen.
    if (m_man.GetActivePage() != this || m_man.GetLoadWay() == 0) {
        return true;
    }
    return m_man.CheckIDCANCEL() != 0;
}

void RecvFilePage::EnableButtons(bool enabled)
{
    m_buttons->setEnabled(enabled);
    m_buttons->setVisible(true);
}

void RecvFilePage::HideButtons()
{
    m_buttons->hide();
}

void RecvFilePage::ShowState()
{
    if (m_man.GetActivePage() != this) {
        return;
    }
    const int count = m_list->Rows().Count();
    QStringList trouble;
    if (!m_man.Notice().empty()) {
        trouble += ToQt(m_man.Notice());
    }
    if (m_man.IsListing()) {
        m_state->setText(ToQt(FormatText(text::kFilesListing, count)));
    } else {
        const wchar_t* const cause = CauseText(m_man.ListFault());
        if (count > 0) {
            m_state->setText(
                ToQt(FormatText(text::kFilesCount, count, m_list->Rows().SelectedCount())));
        } else {
            m_state->setText(UiText(m_man.WasListed() ? text::kFilesEmpty : text::kFilesNotListed));
        }
        if (m_man.IsOldList()) {
            trouble += UiText(text::kFilesNotListed); // why, the notice says
        } else if (!m_man.WasListed()) {
            trouble += count > 0 ? ToQt(FormatText(text::kFilesPart, cause)) : ToQt(cause);
        }
        if (m_man.HasMore()) {
            trouble += ToQt(FormatText(text::kFilesMore, count));
        }
    }
    m_trouble->setText(trouble.join(QLatin1Char('\n')));
    m_trouble->setVisible(!trouble.isEmpty());
}

CRecvFile::CRecvFile(CRecvFileMan& sheet)
    : RecvFilePage(sheet, ReceiverFiles::Live), m_note(new QLabel(UiText(text::kFilesNoRecovery)))
{
    Dialog::SetControlId(m_note, kNote);
    AddNote(m_note);
    AddButton(kDelete, text::kFilesDelete, "trash", &CRecvFileMan::FileDelete);
    AddButton(kSelectAll, text::kFilesSelectAll, "ok", &CRecvFileMan::ChoiceAll);
    m_fetch = AddButton(kFetch, text::kFilesFetch, "download", &CRecvFileMan::FileDownload);
    m_fetch->setDefault(true);
}

void CRecvFile::OnInitDialog()
{
    m_note->setVisible(!m_man.HasRecyclePage());
    m_fetch->setVisible(m_man.CanDownload());
    RecvFilePage::OnInitDialog();
}

CRecvGomi::CRecvGomi(CRecvFileMan& sheet) : RecvFilePage(sheet, ReceiverFiles::Recycled)
{
    m_delete = AddButton(kDelete, text::kFilesDelete, "trash", &CRecvFileMan::FileDelete);
    AddButton(kSelectAll, text::kFilesSelectAll, "ok", &CRecvFileMan::ChoiceAll);
    AddButton(kRecover, text::kFilesRecover, "restore", &CRecvFileMan::FileRecover)
        ->setDefault(true);
}

void CRecvGomi::OnInitDialog()
{
    m_delete->setEnabled(m_man.CanDeleteRecycled());
    RecvFilePage::OnInitDialog();
}

} // namespace fieldcore
