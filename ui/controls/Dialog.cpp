#include "ui/controls/Dialog.h"

#include "core/host/Host.h"
#include "ui/controls/PageAction.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QPushButton>
#include <QTimerEvent>
#include <QVariant>

namespace fieldcore {

namespace {

constexpr const char* kControlId = "fieldcoreControlId";
constexpr int kFormLines = 45;
constexpr int kFormLinesQ77 = 60; // on the controller with the taller screen

} // namespace

Dialog::Dialog(QWidget* parent, Extent extent) : QDialog(parent), m_extent(extent) {}

int Dialog::DoModal()
{
    setResult(kCancelled);
    const int result = exec();
    Destroy();
    return result == 0 ? kCancelled : result;
}

void Dialog::SetControlId(QWidget* control, int id)
{
    control->setProperty(kControlId, id);
}

int Dialog::ControlId(const QWidget* control)
{
    return control->property(kControlId).toInt();
}

QWidget* Dialog::FindControl(const QWidget* window, int id)
{
    for (QWidget* control : window->findChildren<QWidget*>()) {
        if (ControlId(control) == id) {
            return control;
        }
    }
    return nullptr;
}

QBoxLayout* Dialog::MakeOkCancel()
{
    constexpr int kMargin = 12;
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(kMargin, 0, kMargin, 0);
    row->setSpacing(TouchStyle::kGrid);
    if (QWidget* const button = MakePageButton()) {
        row->addWidget(button);
    }
    row->addStretch(1);
    for (const bool isOk : {false, true}) {
        auto* const button = MakeButton(isOk ? text::kButtonOk : text::kButtonCancel);
        button->setAutoDefault(false);
        button->setDefault(isOk);
        connect(button, &QPushButton::clicked, this,
                [this, isOk] { Close(isOk ? kOk : kCancelled); });
        row->addWidget(button);
        m_default = button; // the last one is OK
    }
    return row;
}

void Dialog::Close(int result)
{
    if (OnClose(result)) {
        done(result);
    }
}

void Dialog::reject()
{
    Close(kCancelled);
}

void Dialog::SetTimer(int id, int milliseconds)
{
    KillTimer(id);
    // Precise: a coarse one may be a twentieth early.
    m_timers.insert(id, startTimer(milliseconds, Qt::PreciseTimer));
}

void Dialog::KillTimer(int id)
{
    const auto found = m_timers.constFind(id);
    if (found != m_timers.constEnd()) {
        killTimer(found.value());
        m_timers.erase(found);
    }
}

bool Dialog::IsTimerRunning(int id) const
{
    return m_timers.contains(id);
}

void Dialog::Destroy()
{
    for (const int timer : std::as_const(m_timers)) {
        killTimer(timer);
    }
    m_timers.clear();
    if (m_initialised) {
        m_initialised = false;
        OnDestroy();
    }
}

void Dialog::OpenOverParent()
{
    if (m_extent == Extent::Natural || parentWidget() == nullptr || testAttribute(Qt::WA_Resized)) {
        return;
    }
    const QWidget* const under = parentWidget()->window();
    const int character = fontMetrics().horizontalAdvance(QChar(0x3042));
    const int lines = DefaultHost().IsQ77() ? kFormLinesQ77 : kFormLines;
    const QSize form(40 * character, lines * character);
    resize(m_extent == Extent::Whole ? under->size() : under->size().boundedTo(form));
    move(under->mapToGlobal(under->rect().center()) - rect().center());
}

void Dialog::showEvent(QShowEvent* event)
{
    if (!m_initialised) {
        m_initialised = true;
        if (const std::string icon = DefaultHost().CommonIcon(); !icon.empty()) {
            setWindowIcon(QIcon(QString::fromStdString(icon)));
        }
        if (m_extent != Extent::Natural && layout() != nullptr) {
            layout()->setMenuBar(MakePageHead(*this)); // which is above whatever the layout holds
        }
        OpenOverParent();
        if (OnInitDialog() && nextInFocusChain() != nullptr && focusWidget() == nullptr) {
            focusNextChild();
        }
        if (isWindow() && parentWidget() != nullptr) {
            FitOnScreen(*this);
        }
    }
    if (isWindow()) { // a part of a window stands where its layout puts it
        QDialog::showEvent(event);
    }
}

void Dialog::timerEvent(QTimerEvent* event)
{
    const int id = m_timers.key(event->timerId(), -1);
    if (id < 0) {
        QDialog::timerEvent(event);
        return;
    }
    OnTimer(id);
}

void Dialog::closeEvent(QCloseEvent* event)
{
    event->ignore(); // done() hides the window where closing is agreed
    Close(kCancelled);
}

void Dialog::done(int result)
{
    QDialog::done(result);
    Destroy();
}

} // namespace fieldcore
