#include "ui/equipment/RecvFileSaveDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

/// A folder below its radio button, broken where it must be.
QLabel* MakeFolderLabel(const std::filesystem::path& folder)
{
    QString words = QFile::decodeName(folder.c_str());
    // A path has no blanks at which it could be broken.
    words.replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
    auto* const label = new QLabel(folder.empty() ? UiText(text::kFileSaveNoCard) : words);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(QPalette::PlaceholderText); // the theme's second text
    label->setContentsMargins(4 * kGrid, 0, 0, 0);
    return label;
}

} // namespace

CRecvFileSaveDlg::CRecvFileSaveDlg(FileDestination& destination, QWidget* parent)
    : Dialog(parent, Extent::Form), m_destination(destination), m_summary(new QLabel),
      m_card(new QRadioButton(UiText(text::kFileSaveCard))),
      m_memory(new QRadioButton(UiText(text::kFileSaveMemory))),
      m_cardFolder(MakeFolderLabel(destination.CardFolder())),
      m_memoryFolder(MakeFolderLabel(destination.DocumentsFolder())),
      m_free(new RoleLabel(&Theme::text)),
      m_dateFolders(new QCheckBox(UiText(text::kFileSaveDateFolders))),
      m_onlyNew(new QCheckBox(UiText(text::kFileSaveOnlyNew)))
{
    setWindowTitle(UiText(text::kFileSaveTitle));
    setAccessibleName(windowTitle());
    BuildControls();
}

void CRecvFileSaveDlg::BuildControls()
{
    SetControlId(m_summary, kSummary);
    SetControlId(m_free, kFreeSpace);
    m_summary->setFont(BoldFont(font()));
    m_summary->setWordWrap(true);
    m_free->setWordWrap(true);
    m_card->setAccessibleDescription(m_cardFolder->text());
    m_memory->setAccessibleDescription(m_memoryFolder->text());

    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setSpacing(0);
    column->addWidget(m_summary);
    column->addSpacing(kGrid);
    for (QWidget* const widget :
         std::initializer_list<QWidget*>{m_card, m_cardFolder, m_memory, m_memoryFolder}) {
        column->addWidget(widget);
    }
    column->addSpacing(2 * kGrid);
    column->addWidget(m_free);
    column->addSpacing(kGrid);
    column->addWidget(m_dateFolders);
    column->addSpacing(kGrid);
    column->addWidget(m_onlyNew);
    column->addStretch(1);
    auto* const window = new QVBoxLayout(this);
    window->setContentsMargins(0, 0, 0, 12);
    window->addWidget(MakeScroll(content), 1);
    window->addLayout(MakeOkCancel());
    DefaultButton()->setText(UiText(text::kFileSaveStart));
    connect(m_card, &QRadioButton::toggled, this, &CRecvFileSaveDlg::ShowAmounts);
    connect(m_onlyNew, &QCheckBox::toggled, this, &CRecvFileSaveDlg::ShowAmounts);
}

bool CRecvFileSaveDlg::OnInitDialog()
{
    m_card->setEnabled(m_destination.HasCard());
    const bool isCard = m_destination.kind == FileDestination::Card;
    (isCard ? m_card : m_memory)->setChecked(true);
    m_dateFolders->setChecked(m_destination.dateFolders != 0);
    m_onlyNew->setChecked(m_destination.onlyNew);
    ShowAmounts();
    (isCard ? m_card : m_memory)->setFocus();
    return false;
}

FileDestination CRecvFileSaveDlg::Chosen() const
{
    FileDestination chosen = m_destination;
    chosen.kind = m_card->isChecked() ? FileDestination::Card : FileDestination::MainMemory;
    chosen.dateFolders = m_dateFolders->isChecked() ? 1 : 0;
    chosen.onlyNew = m_onlyNew->isChecked();
    return chosen;
}

/// What is left out depends on the folder, as does its free space.
void CRecvFileSaveDlg::ShowAmounts()
{
    const FileDestination chosen = Chosen();
    m_summary->setText(ToQt(chosen.Summary()));
    const auto free = chosen.FreeBytes();
    const bool isTooLittle = free && *free < chosen.TotalBytes();
    QString words = ToQt(chosen.FreeSpaceText());
    if (isTooLittle) {
        words += QLatin1Char('\n') + UiText(text::kFileSaveTooLittle);
    }
    m_free->setText(words);
    m_free->SetRole(isTooLittle ? &Theme::bad : &Theme::text);
}

bool CRecvFileSaveDlg::OnClose(int result)
{
    if (result == kOk) {
        m_destination = Chosen();
    }
    return true;
}

} // namespace fieldcore
