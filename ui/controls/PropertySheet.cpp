#include "ui/controls/PropertySheet.h"

#include "core/resources/StringTable.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

PropertySheet::PropertySheet(const QString& caption, QWidget* parent)
    : Dialog(parent, Extent::Form), m_tabs(new QTabBar), m_stack(new QStackedWidget),
      m_buttons(new QWidget)
{
    setWindowTitle(caption);
    setAccessibleName(caption);
    m_tabs->setStyle(TouchStyle::Shared());
    m_tabs->setExpanding(true);
    m_tabs->setElideMode(Qt::ElideNone);
    m_tabs->setUsesScrollButtons(true);
    m_tabs->setAccessibleName(caption);
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) { SetActivePage(index); });

    auto* const row = MakeOkCancel();
    row->setContentsMargins(12, kGrid, 12, 12);
    m_buttons->setLayout(row);

    LayOut(new QVBoxLayout(this), {0, kGrid, 0, 0}, 0, {m_tabs, {m_stack, 1}, m_buttons});

    const auto turnBy = [this](const QKeySequence& keys, int step) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this,
                [this, step] { Turn(step); });
    };
    turnBy(Qt::CTRL | Qt::Key_Tab, 1);
    turnBy(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, -1);
    turnBy(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, -1);
    turnBy(Qt::CTRL | Qt::Key_PageDown, 1);
    turnBy(Qt::CTRL | Qt::Key_PageUp, -1);
}

void PropertySheet::AddPage(PropertyPage* page, const QString& title)
{
    auto* const scroll = MakeScroll(page);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    page->m_sheet = this;
    page->setAccessibleName(title.trimmed());
    m_pages.append(page);
    m_stack->addWidget(scroll);
    const QSignalBlocker quiet(m_tabs); // the first tab becomes the current one
    m_tabs->addTab(title.trimmed());
}

void PropertySheet::RemovePage(int index)
{
    if (GetPage(index) == nullptr) {
        return;
    }
    const bool wasActive = index == m_active;
    if (index < m_active || m_active == GetPageCount() - 1) {
        m_active = std::max(0, m_active - 1);
    }
    {
        const QSignalBlocker quiet(m_tabs);
        m_tabs->removeTab(index);
        m_tabs->setCurrentIndex(m_active);
    }
    QWidget* const scroll = m_stack->widget(index);
    m_stack->removeWidget(scroll);
    m_pages.removeAt(index);
    delete scroll;
    if (wasActive && m_isShown) {
        ShowActive();
    }
}

PropertyPage* PropertySheet::GetPage(int index) const
{
    return index >= 0 && index < m_pages.size() ? m_pages[index] : nullptr;
}

int PropertySheet::SetActivePage(const PropertyPage* page)
{
    return SetActivePage(static_cast<int>(m_pages.indexOf(page)));
}

int PropertySheet::SetActivePage(int index)
{
    const bool exists = GetPage(index) != nullptr;
    if (exists && index != m_active && (!m_isShown || GetActivePage()->OnKillActive())) {
        m_active = index;
        if (m_isShown) {
            ShowActive();
        }
    }
    const QSignalBlocker quiet(m_tabs);
    m_tabs->setCurrentIndex(m_active); // back, where the page has refused
    return exists && index == m_active ? 1 : 0;
}

void PropertySheet::SetMenuBar(CnMenuBar* bar)
{
    layout()->addWidget(bar);
    connect(bar, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
}

void PropertySheet::HideButtons()
{
    m_buttons->hide();
}

void PropertySheet::Turn(int step)
{
    if (GetPageCount() > 1) {
        SetActivePage((m_active + step + GetPageCount()) % GetPageCount());
    }
}

void PropertySheet::ShowActive()
{
    PropertyPage* const page = GetActivePage();
    if (page == nullptr) {
        return;
    }
    if (!page->m_isInitialised) {
        page->m_isInitialised = true;
        page->OnInitDialog();
    }
    m_stack->setCurrentIndex(m_active);
    page->OnSetActive();
}

bool PropertySheet::OnInitDialog()
{
    for (PropertyPage* const page : std::as_const(m_pages)) {
        page->m_isInitialised = false;
    }
    m_isShown = true;
    SetActivePage(m_active);
    ShowActive();
    return true;
}

bool PropertySheet::OnClose(int result)
{
    if (result == kOk && GetActivePage() != nullptr && !GetActivePage()->OnKillActive()) {
        return false;
    }
    for (int i = 0; i < GetPageCount(); ++i) {
        PropertyPage* const page = m_pages[i];
        if (!page->m_isInitialised) {
            continue;
        }
        if (result != kOk) {
            if (!page->OnCancel()) {
                return false;
            }
        } else if (!page->OnOK()) {
            m_active = i;
            SetActivePage(i);
            ShowActive();
            return false;
        }
    }
    m_isShown = false;
    return true;
}

} // namespace fieldcore
