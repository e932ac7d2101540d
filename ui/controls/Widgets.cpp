#include "ui/controls/Widgets.h"

#include "ui/controls/Dialog.h"
#include "ui/controls/Icon.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QComboBox>
#include <QFontInfo>
#include <QFormLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace fieldcore {

QFont BoldFont(const QFont& font, double factor)
{
    QFont bold = font;
    bold.setBold(true);
    bold.setPixelSize(qRound(QFontInfo(font).pixelSize() * factor));
    return bold;
}

QFont SmallFont(const QFont& font)
{
    constexpr int kLeastPx = 13;
    QFont small = font;
    small.setPixelSize(std::max(kLeastPx, QFontInfo(font).pixelSize() * 13 / 16));
    return small;
}

QPushButton* MakeButton(int textId, const char* icon)
{
    auto* const button = new QPushButton(UiText(textId));
    button->setMinimumSize(15 * TouchStyle::kGrid, 6 * TouchStyle::kGrid);
    if (icon != nullptr) {
        button->setIcon(ThemeIcon(QString::fromLatin1(icon)));
    }
    return button;
}

QBoxLayout* LayOut(QBoxLayout* box, const QMargins& margins, int spacing,
                   std::initializer_list<BoxItem> items)
{
    box->setContentsMargins(margins);
    box->setSpacing(spacing);
    for (const BoxItem& item : items) {
        if (item.widget != nullptr) {
            box->addWidget(item.widget, item.stretch, item.alignment);
        } else if (item.layout != nullptr) {
            box->addLayout(item.layout, item.stretch);
        } else if (item.pixels > 0) {
            box->addSpacing(item.pixels);
        } else {
            box->addStretch(item.stretch);
        }
    }
    return box;
}

QScrollArea* MakeScroll(QWidget* content)
{
    auto* const scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    return scroll;
}

void PaintGround(QWidget& window, const QColor& band)
{
    QPainter painter(&window);
    painter.fillRect(window.rect(), Theme::Current().ground);
    painter.setPen(Theme::Current().stale);
    painter.drawRect(window.rect().adjusted(0, 0, -1, -1));
    painter.fillRect(0, 0, window.width(), TouchStyle::kGrid / 2, band);
}

void LayOutPage(Dialog& page, QWidget* content, QLayout* foot)
{
    auto* const menu = new CnMenuBar;
    QObject::connect(menu, &CnMenuBar::CloseRequested, &page, &Dialog::reject);
    foot->setContentsMargins(12, 0, 12, 0);
    LayOut(new QVBoxLayout(&page), {}, TouchStyle::kGrid, {{MakeScroll(content), 1}, foot, menu});
}

void AddFormRow(QFormLayout& form, const QString& label, QWidget* field)
{
    auto* const shown = new QLabel(label);
    shown->setMinimumHeight(TouchStyle::kTarget);
    shown->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    shown->setBuddy(field);
    field->setMinimumHeight(TouchStyle::kTarget);
    field->setSizePolicy(QSizePolicy::Expanding, field->sizePolicy().verticalPolicy());
    if (auto* const list = qobject_cast<QComboBox*>(field)) {
        // It would shrink to its contents for a moment after it was filled.
        list->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    }
    form.addRow(shown, field);
}

} // namespace fieldcore
