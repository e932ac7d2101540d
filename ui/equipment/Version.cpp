#include "ui/equipment/Version.h"

#include "core/link/Command.h"
#include "core/link/RecvInfo.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kMargin = 12;

} // namespace

CVersion::CVersion(CCommand* command, QWidget* parent, ReceiverIdentity known)
    : Dialog(parent, Extent::Form), m_command(command), m_known(std::move(known)),
      m_notice(new QLabel), m_list(new QTableWidget(0, 2)),
      m_copy(new QPushButton(UiText(text::kVersionCopy)))
{
    setWindowTitle(UiText(text::kVersionTitle));
    OfferConnection([this] {
        m_known = {};
        Update();
    });
    m_notice->setWordWrap(true);
    m_notice->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    m_list->setAccessibleName(UiText(text::kVersionTitle));
    m_list->horizontalHeader()->hide();
    m_list->verticalHeader()->hide();
    m_list->verticalHeader()->setDefaultSectionSize(TouchStyle::kTarget);
    m_list->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setShowGrid(false);
    m_list->setTabKeyNavigation(false); // Tab goes on to the buttons
    m_list->setFrameShape(QFrame::NoFrame);
    m_copy->setEnabled(false);
    m_copy->setMinimumHeight(TouchStyle::kTarget);
    auto* const foot = new QHBoxLayout;
    foot->setContentsMargins(kMargin, TouchStyle::kGrid, kMargin, TouchStyle::kGrid);
    foot->addStretch(1);
    foot->addWidget(m_copy);
    auto* const menu = new CnMenuBar;
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_notice);
    auto* const middle = new QHBoxLayout;
    middle->setContentsMargins(kMargin, 0, 0, 0);
    middle->addWidget(m_list);
    column->addLayout(middle, 1);
    column->addLayout(foot);
    column->addWidget(menu);
    connect(menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
    connect(m_copy, &QPushButton::clicked, this, &CVersion::Copy);
    Show({});
}

bool CVersion::OnInitDialog()
{
    Update();
    return true;
}

int CVersion::Update()
{
    if (m_command == nullptr || m_command->IsPortOpen() == 0) {
        m_notice->setText(UiText(text::kVersionNoLink));
        Show({});
        return 0;
    }
    CRecvInfo info(m_known);
    const int read = info.ReadMissing(*m_command);
    if (read == 0 && m_command->Fault() == CommandFault::Cancelled) {
        m_command->SendAbort();
    }
    m_notice->setText(read == 1 ? QString() : UiText(text::kVersionNotRead));
    Show(read == 1 ? VersionRowsOf(info.Known()) : std::vector<VersionRow>());
    return read;
}

void CVersion::Show(std::vector<VersionRow> rows)
{
    m_rows = std::move(rows);
    const Theme& theme = Theme::Current();
    m_notice->setVisible(m_rows.empty());
    m_copy->setEnabled(!m_rows.empty());
    m_list->clearSpans();
    m_list->setRowCount(static_cast<int>(m_rows.size()));
    for (int i = 0; i < m_list->rowCount(); ++i) {
        const VersionRow& row = m_rows[static_cast<std::size_t>(i)];
        auto* const name = new QTableWidgetItem(ToQt(row.name));
        auto* const value = new QTableWidgetItem(ToQt(row.value));
        value->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        const QFont bold = BoldFont(font());
        if (row.isHeading) {
            name->setFont(bold);
            name->setBackground(theme.raised);
            m_list->setItem(i, 0, name);
            m_list->setSpan(i, 0, 1, 2);
            delete value;
            continue;
        }
        value->setFont(row.isMissing ? font() : bold);
        for (QTableWidgetItem* item : {name, value}) {
            item->setForeground(row.isMissing ? theme.stale : theme.text);
        }
        m_list->setItem(i, 0, name);
        m_list->setItem(i, 1, value);
    }
}

/// Cells keep the colours that they were given.
void CVersion::changeEvent(QEvent* event)
{
    Dialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Show(std::vector(m_rows));
    }
}

void CVersion::Copy() const
{
    QGuiApplication::clipboard()->setText(ToQt(VersionText(m_rows)));
}

} // namespace fieldcore
