#include "ui/controls/NMenuBar.h"

#include "core/resources/StringTable.h"
#include "ui/controls/PageAction.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QMenu>

#include <QAbstractButton>
#include <QFontMetrics>
#include <QKeySequence>
#include <QPainter>
#include <QShortcut>
#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

/// A button of the bar at the foot of a screen: its text, and below it the key that presses it too.
/// 48 px high, or more where the font wants it.
class BarButton : public QAbstractButton
{
public:
    /// @param key  that is named below the text and presses the button anywhere in its window
    BarButton(const QString& text, Qt::Key key, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString m_keyName;
};

BarButton::BarButton(const QString& text, Qt::Key key, QWidget* parent)
    : QAbstractButton(parent), m_keyName(QKeySequence(key).toString(QKeySequence::NativeText))
{
    setText(text.trimmed());
    setAccessibleName(text.simplified());
    setAccessibleDescription(m_keyName);
    setFocusPolicy(Qt::TabFocus); // a touch leaves the focus where the user works
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    auto* const shortcut = new QShortcut(key, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, [this] { click(); });
}

QSize BarButton::sizeHint() const
{
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width() + 2 * kGrid;
    const int height = fontMetrics().height() + QFontMetrics(SmallFont(font())).height() + kGrid;
    return {width, std::max(6 * kGrid, height)};
}

void BarButton::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    const bool pressed = isDown() || isChecked();
    painter.fillRect(rect(), pressed ? theme.accent : theme.raised);
    if (parentWidget() == nullptr || geometry().right() < parentWidget()->rect().right()) {
        // To its neighbour; the last one has none.
        painter.setPen(theme.stale);
        painter.drawLine(rect().topRight() + QPoint(0, kGrid),
                         rect().bottomRight() - QPoint(0, kGrid));
    }
    if (hasFocus()) {
        painter.setPen(QPen(theme.accent, 3.0));
        painter.drawRect(rect().adjusted(1, 1, -2, -2));
    }
    const QFontMetrics small(SmallFont(font()));
    const int high = fontMetrics().height();
    const int top = (height() - high - small.height()) / 2;
    painter.setPen(!isEnabled() ? theme.stale : pressed ? theme.ground : theme.text);
    painter.drawText(QRect(0, top, width(), high), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    painter.setFont(SmallFont(font()));
    painter.setPen(!isEnabled() ? theme.stale : pressed ? theme.ground : theme.second);
    painter.drawText(QRect(0, top + high, width(), small.height()), Qt::AlignCenter, m_keyName);
}

} // namespace

CnMenuBar::CnMenuBar(int loadWay, QWidget* parent)
    : QWidget(parent), m_loadWay(loadWay), m_row(new QHBoxLayout(this))
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(0);
    if (QWidget* const button = MakePageButton()) {
        m_row->addWidget(button);
    }
    const int closes = loadWay != 0 ? text::kButtonEndProgram : text::kButtonClose;
    auto* const close = new BarButton(UiText(closes), Qt::Key_Escape);
    connect(close, &QAbstractButton::clicked, this, &CnMenuBar::CloseRequested);
    m_row->addWidget(close);
    m_close = close;
}

int CnMenuBar::AddPopup(const QString& text)
{
    const int index = static_cast<int>(m_popups.size());
    if (index >= kMaxPopups) {
        return -1;
    }
    auto* const button = new BarButton(text, static_cast<Qt::Key>(Qt::Key_F1 + index));
    button->setCheckable(true); // as long as its popup is open
    auto* const menu = new QMenu(this);
    menu->setStyle(TouchStyle::Shared());
    menu->setAccessibleName(button->accessibleName());
    connect(button, &QAbstractButton::clicked, this, [this, index] { Open(index); });
    connect(menu, &QMenu::aboutToHide, button, [button] { button->setChecked(false); });
    m_row->insertWidget(index, button);
    if (index > 0) {
        setTabOrder(m_popups.back().button, button);
    }
    setTabOrder(button, m_close);
    m_popups.append({button, menu});
    return index;
}

void CnMenuBar::AddItem(int popup, int id, const QString& text)
{
    QMenu* const menu = Popup(popup);
    if (menu == nullptr) {
        return;
    }
    QAction* const item = menu->addAction(text);
    item->setData(id);
    connect(item, &QAction::triggered, this, [this, id] { Q_EMIT ItemChosen(id); });
    m_items.insert(id, item);
}

void CnMenuBar::AddSeparator(int popup)
{
    if (QMenu* const menu = Popup(popup)) {
        menu->addSeparator();
    }
}

void CnMenuBar::EnableItem(int id, bool enabled)
{
    if (QAction* const item = m_items.value(id)) {
        item->setEnabled(enabled);
    }
}

void CnMenuBar::CheckRadioItem(int first, int last, int id)
{
    QActionGroup* group = nullptr;
    for (int each = first; each <= last; ++each) {
        QAction* const item = m_items.value(each);
        if (item == nullptr) {
            continue;
        }
        if (group == nullptr) {
            group = item->actionGroup() != nullptr ? item->actionGroup() : new QActionGroup(this);
        }
        item->setCheckable(true);
        item->setActionGroup(group);
    }
    if (QAction* const item = m_items.value(id); item != nullptr && item->actionGroup() == group) {
        item->setChecked(true);
    }
}

bool CnMenuBar::IsItemChecked(int id) const
{
    const QAction* const item = m_items.value(id);
    return item != nullptr && item->isChecked();
}

QMenu* CnMenuBar::Popup(int popup) const
{
    return popup >= 0 && popup < m_popups.size() ? m_popups[popup].menu : nullptr;
}

void CnMenuBar::Open(int popup)
{
    const Entry& entry = m_popups[popup];
    if (entry.menu->isEmpty()) {
        entry.button->setChecked(false);
        return;
    }
    entry.menu->setMinimumWidth(entry.button->width());
    const QSize size = entry.menu->sizeHint();
    // Upwards, and not beyond the right edge of the window.
    QPoint corner = entry.button->mapTo(window(), QPoint(0, -size.height()));
    corner.setX(std::max(0, std::min(corner.x(), window()->width() - size.width())));
    entry.menu->popup(window()->mapToGlobal(corner));
    for (QAction* const item : entry.menu->actions()) {
        if (item->isEnabled() && !item->isSeparator()) {
            entry.menu->setActiveAction(item); // for the keys
            break;
        }
    }
}

} // namespace fieldcore
