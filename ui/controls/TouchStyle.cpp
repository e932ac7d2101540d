#include "ui/controls/TouchStyle.h"

#include "ui/controls/Theme.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QStyleOption>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kTextPx = 16;

/// Whether it is something that a finger aims at, one above the other.
bool IsTarget(QStyle::ContentsType type, const QStyleOption* option)
{
    switch (type) {
    case QStyle::CT_PushButton:
    case QStyle::CT_CheckBox:
    case QStyle::CT_RadioButton:
    case QStyle::CT_ToolButton:
    case QStyle::CT_ComboBox:
    case QStyle::CT_LineEdit:
    case QStyle::CT_SpinBox:
    case QStyle::CT_TabBarTab:
    case QStyle::CT_ItemViewItem:
        return true;
    case QStyle::CT_MenuItem: {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        return item == nullptr || item->menuItemType != QStyleOptionMenuItem::Separator;
    }
    default:
        return false;
    }
}

} // namespace

TouchStyle::TouchStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void TouchStyle::Install()
{
    QApplication::setStyle(new TouchStyle);
    QFont font = QApplication::font();
    const QStringList japanese = QFontDatabase::families(QFontDatabase::Japanese);
    if (!japanese.contains(font.family())) {
        const QString gothic = QStringLiteral("VL PGothic");
        font.setFamily(japanese.contains(gothic) || japanese.isEmpty() ? gothic : japanese.front());
    }
    font.setPixelSize(kTextPx);
    QApplication::setFont(font);
    Theme::Use(Theme::Used());
}

TouchStyle* TouchStyle::Shared()
{
    static TouchStyle* const style = [] {
        auto* const made = new TouchStyle;
        made->setParent(QCoreApplication::instance());
        return made;
    }();
    return style;
}

int TouchStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const
{
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
    case PM_ScrollBarExtent:
        return 3 * kGrid;
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return kGrid;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return 12;
    case PM_SliderThickness:
    case PM_SliderLength:
        return kTarget;
    case PM_TabBarTabHSpace:
        return 4 * kGrid;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize TouchStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const
{
    QSize wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (IsTarget(type, option)) {
        wanted.setHeight(std::max(wanted.height(), kTarget));
        if (type == CT_MenuItem) { // the column of the check marks is wider than it counts on
            wanted.rwidth() += 5 * kGrid;
        }
    }
    return wanted;
}

int TouchStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returned) const
{
    switch (hint) {
    case SH_ComboBox_Popup: // a list below the box, with rows as high as everywhere
    case SH_EtchDisabledText:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

} // namespace fieldcore
