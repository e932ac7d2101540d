#include "ui/controls/TouchStyle.h"

#include "ui/controls/NumberPad.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScreen>
#include <QStyleOption>

#include <algorithm>
#include <array>

namespace fieldcore {

namespace {

constexpr int kTextPx = 16;
constexpr double kPlainDpi = 96.0;
constexpr double kMostEnlarged = 1.3; // what the screens have room for

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

/// The edge of what is entered into. The base style makes it of the ground made darker, which
/// nobody sees on a dark ground.
void DrawEdge(QPainter& painter, const QRect& rect, const QStyleOption& option)
{
    const Theme& theme = Theme::Current();
    const bool hasFocus = (option.state & QStyle::State_HasFocus) != 0;
    painter.save();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(hasFocus ? theme.accent : theme.stale, hasFocus ? 3.0 : 1.0));
    const int inset = hasFocus ? 1 : 0;
    painter.drawRect(rect.adjusted(inset, inset, -1 - inset, -1 - inset));
    painter.restore();
}

void DrawIndicator(QPainter& painter, const QStyleOption& option, bool isRound)
{
    const Theme& theme = Theme::Current();
    const bool isEnabled = (option.state & QStyle::State_Enabled) != 0;
    const QRectF box = QRectF(option.rect).adjusted(2, 2, -2, -2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(isEnabled ? theme.second : theme.stale, 2.0));
    painter.setBrush(theme.ground);
    isRound ? painter.drawEllipse(box) : painter.drawRect(box);
    const QColor mark = isEnabled ? theme.accent : theme.stale;
    if ((option.state & QStyle::State_On) != 0 && isRound) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(mark);
        painter.drawEllipse(box.center(), box.width() / 4, box.height() / 4);
    } else if ((option.state & QStyle::State_On) != 0) {
        painter.setPen(QPen(mark, 3.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const auto at = [&box](double x, double y) {
            return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
        };
        const std::array<QPointF, 3> tick{at(0.2, 0.5), at(0.42, 0.75), at(0.82, 0.25)};
        painter.drawPolyline(tick.data(), static_cast<int>(tick.size()));
    } else if ((option.state & QStyle::State_NoChange) != 0) {
        painter.fillRect(box.adjusted(4, 4, -4, -4), mark);
    }
    painter.restore();
}

/// The field beside a label of a form; null if the widget is no such label.
const QWidget* FieldOf(const QWidget* label)
{
    const QWidget* const parent = label->parentWidget();
    const auto* form = parent != nullptr ? qobject_cast<QFormLayout*>(parent->layout()) : nullptr;
    for (int row = 0; form != nullptr && row < form->rowCount(); ++row) {
        const QLayoutItem* const item = form->itemAt(row, QFormLayout::LabelRole);
        const QLayoutItem* const field = form->itemAt(row, QFormLayout::FieldRole);
        if (item != nullptr && item->widget() == label && field != nullptr) {
            return field->widget();
        }
    }
    return nullptr;
}

} // namespace

TouchStyle::TouchStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void TouchStyle::UseWholePixels()
{
    // A display of 125 dots an inch would make 369 x 492 of 480 x 640: its text is enlarged
    // instead.
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::Floor);
}

void TouchStyle::Install()
{
    QApplication::setStyle(new TouchStyle);
    QFont font = QApplication::font();
    const QStringList japanese = QFontDatabase::families(QFontDatabase::Japanese);
    if (!japanese.contains(font.family()) && !japanese.isEmpty()) {
        const QString gothic = QStringLiteral("VL PGothic");
        font.setFamily(japanese.contains(gothic) ? gothic : japanese.front());
    }
    const double dpi = QGuiApplication::primaryScreen()->logicalDotsPerInchY();
    font.setPixelSize(qRound(kTextPx * std::clamp(dpi / kPlainDpi, 1.0, kMostEnlarged)));
    QApplication::setFont(font);
    Theme::Use(Theme::Used());
}

bool TouchStyle::CanDrawJapanese()
{
    return !QFontDatabase::families(QFontDatabase::Japanese).isEmpty();
}

TouchStyle* TouchStyle::Shared()
{
    static TouchStyle* style = nullptr;
    if (style == nullptr) {
        style = new TouchStyle;
        style->setParent(QCoreApplication::instance()); // which destroys it
    }
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

void TouchStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const
{
    switch (element) {
    case PE_FrameLineEdit:
        DrawEdge(*painter, option->rect, *option);
        break;
    case PE_IndicatorCheckBox:
        DrawIndicator(*painter, *option, false);
        break;
    case PE_IndicatorRadioButton:
        DrawIndicator(*painter, *option, true);
        break;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        break;
    }
}

void TouchStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const
{
    const auto* const combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (element != CE_ComboBoxLabel || combo == nullptr) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    // The base style lets the arrow cut a long text in the midst of a character.
    QStyleOptionComboBox fitting = *combo;
    const int icon = combo->currentIcon.isNull() ? 0 : combo->iconSize.width() + 4;
    const QRect field = subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
    fitting.currentText =
        combo->fontMetrics.elidedText(combo->currentText, Qt::ElideRight, field.width() - icon - 2);
    QProxyStyle::drawControl(element, &fitting, painter, widget);
}

void TouchStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox || control == CC_ComboBox) {
        DrawEdge(*painter, option->rect, *option);
    }
}

void TouchStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    // A form puts its labels near the upper edge of tall fields; as tall as those, they stand at
    // the same height.
    if (qobject_cast<QLabel*>(widget) != nullptr) {
        const QWidget* const field = FieldOf(widget);
        if (field != nullptr && field->sizeHint().height() >= kTarget) {
            widget->setMinimumHeight(kTarget);
        }
    }
    if (auto* const field = qobject_cast<QLineEdit*>(widget)) {
        NumberPad::Serve(*field);
    }
}

void FitOnScreen(QWidget& window)
{
    const QWidget* const under =
        window.parentWidget() != nullptr ? window.parentWidget()->window() : nullptr;
    // Which frame it will have nobody knows before it is there: that of the window beneath.
    const QWidget& framed = under != nullptr ? *under : window;
    const bool hasFrame = !window.windowFlags().testFlag(Qt::FramelessWindowHint);
    QRect room = framed.screen()->availableGeometry();
    if (hasFrame) {
        room.setSize(room.size() - (framed.frameGeometry().size() - framed.size()));
    }
    window.resize(window.size().boundedTo(room.size()));
    constexpr int kTitleBar = 5 * TouchStyle::kGrid;
    if (hasFrame && under != nullptr && under->isFullScreen() &&
        window.height() > room.height() - kTitleBar) {
        window.setWindowState(Qt::WindowFullScreen); // which has none
    }
    const QPoint last = room.bottomRight() - window.rect().bottomRight();
    if (window.testAttribute(Qt::WA_Moved)) {
        window.move(std::max(room.left(), std::min(window.x(), last.x())),
                    std::max(room.top(), std::min(window.y(), last.y())));
    }
}

} // namespace fieldcore
