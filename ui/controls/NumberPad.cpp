#include "ui/controls/NumberPad.h"

#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QApplication>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>

#include <algorithm>
#include <functional>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr QSize kKey(10 * kGrid, 7 * kGrid);
constexpr const char* kServed = "fieldcoreHasNumberPad";
// The keys that do more than a key does.
constexpr int kSign = Qt::Key_plusminus;
constexpr int kClear = Qt::Key_Clear;
constexpr int kDone = Qt::Key_Return;

QPointer<NumberPad> g_pad; // there is one at most

QWidget* BoxOf(QLineEdit& field)
{
    return field.focusProxy() != nullptr ? field.focusProxy() : &field;
}

/// Brings the pad when its field is tapped.
class Tap : public QObject
{
public:
    Tap(QLineEdit& field, std::function<void()> open) : QObject(&field), m_open(std::move(open))
    {
        field.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            QMetaObject::invokeMethod(this, m_open, Qt::QueuedConnection); // behind the tap itself
        }
        return QObject::eventFilter(watched, event);
    }

private:
    const std::function<void()> m_open;
};

} // namespace

void NumberPad::Serve(QLineEdit& field)
{
    const Qt::InputMethodHints hints = field.inputMethodHints() | BoxOf(field)->inputMethodHints();
    const bool isForNumbers = (hints & (Qt::ImhFormattedNumbersOnly | Qt::ImhDigitsOnly)) != 0;
    if (isForNumbers && !field.property(kServed).toBool()) {
        field.setProperty(kServed, true);
        new Tap(field, [&field] { Open(field); }); // owned by the field
    }
}

void NumberPad::Open(QLineEdit& field)
{
    const bool isThere = g_pad != nullptr && g_pad->m_field == &field && g_pad->isVisible();
    if (isThere || field.isReadOnly() || !field.isEnabled() || !field.isVisible()) {
        return;
    }
    delete g_pad.data();
    g_pad = new NumberPad(field);
    field.selectAll(); // the first key replaces what was there
    g_pad->Place();
    g_pad->show();
}

NumberPad::NumberPad(QLineEdit& field)
    : QWidget(field.window(), Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                  Qt::WindowDoesNotAcceptFocus),
      m_field(&field), m_box(BoxOf(field))
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::NoFocus);
    setWindowTitle(UiText(text::kPadName));
    setAccessibleName(windowTitle());
    AddKeys();
    m_box->installEventFilter(this);
    connect(&field, &QObject::destroyed, this, &QWidget::close);
}

void NumberPad::AddKeys()
{
    const auto* const spin = qobject_cast<const QDoubleSpinBox*>(m_box.data());
    setFont(BoldFont(font(), 1.25));
    auto* const keys = new QGridLayout(this);
    keys->setContentsMargins(kGrid, kGrid, kGrid, kGrid);
    keys->setSpacing(kGrid);
    for (int digit = 1; digit <= 9; ++digit) {
        AddKey(*keys, 2 - (digit - 1) / 3, (digit - 1) % 3, QString::number(digit), 0,
               Qt::Key_0 + digit);
    }
    AddKey(*keys, 3, 0, QStringLiteral("0"), 0, Qt::Key_0);
    const bool isWhole = m_box->inputMethodHints().testFlag(Qt::ImhDigitsOnly);
    AddKey(*keys, 3, 1, QStringLiteral("."), 0, Qt::Key_Period)
        ->setEnabled(spin != nullptr ? spin->decimals() > 0 : !isWhole);
    AddKey(*keys, 0, 3, QStringLiteral("←"), text::kPadBackspace, Qt::Key_Backspace)
        ->setAutoRepeat(true);
    AddKey(*keys, 1, 3, UiText(text::kPadClear), 0, kClear);
    AddKey(*keys, 2, 3, QStringLiteral("±"), text::kPadSign, kSign)
        ->setEnabled(spin != nullptr ? spin->minimum() < 0.0 : !isWhole);
    auto* const done = AddKey(*keys, 3, 2, UiText(text::kPadDone), 0, kDone);
    keys->addWidget(done, 3, 2, 1, 2);
}

QPushButton* NumberPad::AddKey(QGridLayout& keys, int row, int column, const QString& label,
                               int textId, int key)
{
    auto* const button = new QPushButton(label);
    button->setMinimumSize(kKey);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoDefault(false);
    button->setAccessibleName(textId != 0 ? UiText(textId) : label);
    connect(button, &QPushButton::clicked, this, [this, key] { Press(key); });
    keys.addWidget(button, row, column);
    return button;
}

void NumberPad::Place()
{
    adjustSize();
    const QRect room = m_field->screen()->availableGeometry();
    const QRect field(m_field->mapToGlobal(QPoint()), m_field->size());
    // With room for it on neither side it stands where there is more, and sticks out.
    const int below = room.bottom() - field.bottom();
    const int above = field.top() - room.top();
    const bool isBelow = below >= height() + kGrid || below >= above;
    const int y = isBelow ? field.bottom() + kGrid : field.top() - kGrid - height();
    const int x = std::clamp(field.center().x() - width() / 2, room.left(),
                             std::max(room.left(), room.right() - width() + 1));
    move(x, y);
}

void NumberPad::Press(int key)
{
    if (m_field == nullptr) {
        return;
    }
    auto* const spin = qobject_cast<QDoubleSpinBox*>(m_box.data());
    const auto unit = spin != nullptr ? static_cast<int>(spin->suffix().size()) : 0;
    const int last = static_cast<int>(m_field->text().size()) - unit;
    if (m_isFresh && key != kSign) {
        const bool keepsSign = m_isSigned && m_field->text().startsWith(QLatin1Char('-'));
        m_field->setSelection(keepsSign ? 1 : 0, keepsSign ? last - 1 : last);
    } else if (!m_field->hasSelectedText()) {
        m_field->setCursorPosition(std::min(m_field->cursorPosition(), last)); // before the unit
    }
    m_isSigned = m_isFresh && key == kSign;
    m_isFresh = m_isSigned;
    switch (key) {
    case kDone:
        Done();
        return;
    case kSign:
        ChangeSign();
        break;
    case kClear:
        m_field->selectAll();
        m_field->del();
        break;
    default: {
        const QString typed = key == Qt::Key_Backspace ? QString() : QString(QChar(key));
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier, typed);
            QCoreApplication::sendEvent(m_box, &event);
        }
        break;
    }
    }
    Place(); // the page may have moved beneath it
}

void NumberPad::ChangeSign()
{
    const bool isNegative = m_field->text().startsWith(QLatin1Char('-'));
    m_field->setCursorPosition(0);
    isNegative ? m_field->del() : m_field->insert(QStringLiteral("-"));
    m_field->end(false); // the next key goes on with the number
}

void NumberPad::Done()
{
    if (auto* const spin = qobject_cast<QAbstractSpinBox*>(m_box.data())) {
        spin->interpretText();
    } else {
        Q_EMIT m_field->editingFinished();
    }
    close();
}

bool NumberPad::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusOut:
        if (QApplication::activeWindow() == this) {
            break; // a window manager that does not heed what the window says of itself
        }
        [[fallthrough]];
    case QEvent::Hide:
        close();
        break;
    case QEvent::KeyPress:
        if (event->spontaneous()) {
            close();
            return static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void NumberPad::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    painter.fillRect(rect(), theme.ground);
    painter.setPen(QPen(theme.accent, 3.0));
    painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

} // namespace fieldcore
