#include "ui/controls/QtHost.h"

#include "core/host/MesBox.h"
#include "core/resources/StringTable.h"
#include "tests/support/HandClock.h"
#include "tests/ui/controls/OnScreen.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/Icon.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/QtMessageTarget.h"
#include "ui/controls/Theme.h"

#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPointingDevice>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWindow>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Next;

void MoveTo(testing::HandClock& clock, Clock::Duration moment)
{
    clock.Advance(moment - clock.Steady());
}

/// A window with something to click and something to type into.
class Window : public QWidget
{
public:
    Window()
    {
        auto* const layout = new QVBoxLayout(this);
        layout->addWidget(button);
        layout->addWidget(edit);
        layout->addStretch(1);
        Dialog::SetControlId(edit, 1042);
        connect(button, &QPushButton::clicked, this, [this] { ++clicks; });
        resize(480, 640);
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
    }
    [[nodiscard]] BusyStrip* Strip() const { return findChild<BusyStrip*>(); }

    QPushButton* const button = new QPushButton;
    QLineEdit* const edit = new QLineEdit(QStringLiteral("abc"));
    int clicks = 0;
};

/// What Enter, Esc and each button answer to each kind of box.
TEST(QtHost, AnswersByKeysAndClicks)
{
    using enum BoxAnswer;
    struct Row
    {
        const char* fault;
        BoxStyle style;
        BoxAnswer enter;
        BoxAnswer escape;
        std::vector<BoxAnswer> buttons; // from left to right
    };
    constexpr auto kOkCancel = BoxButtons::OkCancel;
    constexpr auto kYesNo = BoxButtons::YesNo;
    constexpr auto kAsks = BoxIcon::Question;
    const Row rows[] = {
        {"a message", {BoxButtons::Ok, BoxIcon::Stop}, Ok, Ok, {Ok}},
        {"a request", {kOkCancel, BoxIcon::Information}, Ok, Cancel, {Cancel, Ok}},
        {"what destroys", {kOkCancel, BoxIcon::Exclamation}, Cancel, Cancel, {Ok, Cancel}},
        {"a question", {kYesNo, kAsks}, No, No, {Yes, No}},
        {"trying again", {BoxButtons::RetryCancel, kAsks}, Retry, Cancel, {Cancel, Retry}},
        {"a question with Ok", {kOkCancel, kAsks, Ok}, Ok, Cancel, {Cancel, Ok}},
        {"a default that is no button", {kYesNo, kAsks, Retry}, No, No, {Yes, No}},
    };
    Window window;
    QtHost host;
    const auto ask = [&](BoxStyle style, const std::function<void(MessageDlg&)>& act) {
        Next<MessageDlg>(window, act);
        return CMesBox(host).Show(L"text", L"caption", style);
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(ask(row.style, [](auto& box) { QTest::keyClick(&box, Qt::Key_Return); }),
                  row.enter);
        EXPECT_EQ(ask(row.style, [](auto& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
                  row.escape);
        for (std::size_t i = 0; i < row.buttons.size(); ++i) {
            const BoxAnswer answer = ask(row.style, [&](MessageDlg& box) {
                auto buttons = box.findChildren<QPushButton*>();
                ASSERT_EQ(buttons.size(), static_cast<qsizetype>(row.buttons.size()));
                std::sort(buttons.begin(), buttons.end(),
                          [](auto* a, auto* b) { return a->x() < b->x(); });
                EXPECT_GE(buttons[static_cast<qsizetype>(i)]->height(), 44);
                QTest::mouseClick(buttons[static_cast<qsizetype>(i)], Qt::LeftButton);
            });
            EXPECT_EQ(answer, row.buttons[i]);
        }
    }
}

TEST(QtHost, ShowsTextCaptionAndIcon)
{
    Window window;
    QtHost host;
    struct Row
    {
        BoxIcon icon;
        int nameId;
        const char* drawing;
        QColor colour;
    };
    const Theme& theme = Theme::Current();
    const Row rows[] = {
        {BoxIcon::Information, text::kMessageIconInformation, "information", theme.accent},
        {BoxIcon::Exclamation, text::kMessageIconExclamation, "exclamation", theme.attention},
        {BoxIcon::Stop, text::kMessageIconStop, "stop", theme.bad},
        {BoxIcon::Question, text::kMessageIconQuestion, "question", theme.accent},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.drawing);
        Next<MessageDlg>(window, [&](MessageDlg& box) {
            EXPECT_TRUE(testing::Says(box, UiText(text::kForceInitQuestion)));
            EXPECT_TRUE(testing::Says(box, UiText(text::kForceInitCaption)));
            EXPECT_EQ(box.windowTitle(), UiText(text::kForceInitCaption));
            EXPECT_EQ(box.parentWidget(), &window);
            const auto* const icon = testing::Called<QLabel>(box, row.nameId);
            ASSERT_NE(icon, nullptr);
            EXPECT_EQ(icon->pixmap().toImage(),
                      DrawIcon(QString::fromLatin1(row.drawing), 48, icon->devicePixelRatioF(),
                               theme.text, row.colour)
                          .toImage());
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        CMesBox(host).Show(text::kForceInitQuestion, text::kForceInitCaption,
                           {BoxButtons::YesNo, row.icon});
    }
    // A number without a text is seen as such, and the box is not empty.
    EXPECT_EQ(BoxText(1).Get(), L"[1]");
}

/// The longest text there is, and one that no window can hold.
TEST(QtHost, CutsNoMessage)
{
    Window window;
    QtHost host;
    const std::wstring longest = Text(text::kPortIsSending);
    std::wstring endless;
    for (int i = 0; i < 30; ++i) {
        endless += longest;
    }
    testing::InEveryLook([&](QSize size) {
        window.resize(size);
        for (const std::wstring& said : {longest, endless}) {
            Next<MessageDlg>(window, [&](MessageDlg& box) {
                EXPECT_LE(box.width(), window.width());
                EXPECT_LE(box.height(), window.height());
                testing::ExpectNothingCut(box, box.size());
                for (const QPushButton* button : box.findChildren<QPushButton*>()) {
                    EXPECT_TRUE(box.rect().contains(button->geometry()));
                }
                QTest::keyClick(&box, Qt::Key_Escape);
            });
            CMesBox(host).Fail(said, text::kPortIsSendingCaption);
        }
    });
}

TEST(QtHost, NestsAndRestoresTheWaitCursor)
{
    const auto shape = [] {
        const QCursor* const cursor = QApplication::overrideCursor();
        return cursor != nullptr ? cursor->shape() : Qt::BlankCursor;
    };
    QApplication::setOverrideCursor(Qt::CrossCursor); // somebody else's
    {
        QtHost host;
        host.ShowWaitCursor(false); // one too many: not ours to take away
        EXPECT_EQ(shape(), Qt::CrossCursor);
        host.ShowWaitCursor(true);
        host.ShowWaitCursor(true);
        host.ShowWaitCursor(false);
        EXPECT_EQ(shape(), Qt::WaitCursor);
        Window window;
        Next<MessageDlg>(window, [&](MessageDlg& box) {
            EXPECT_EQ(shape(), Qt::ArrowCursor) << "a question is not waited for";
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        CMesBox(host).Warn(L"text", L"caption");
        EXPECT_EQ(shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(shape(), Qt::CrossCursor) << "a host that goes leaves its cursor behind";
    QApplication::restoreOverrideCursor();
}

/// Each has a control of that number; a dialog lies over the first, and none over the one typed in.
TEST(QtHost, FindsTheControlInTheWindowWhereItWasTyped)
{
    QtHost host;
    Window behind;
    QDialog modal(&behind);
    modal.setWindowModality(Qt::WindowModal);
    auto* const other = new QLineEdit(&modal);
    Dialog::SetControlId(other, 1042);
    modal.show();
    Window typedIn;
    typedIn.edit->setFocus();
    const std::unique_ptr<FocusTarget> control = host.FindControl(1042);
    ASSERT_NE(control, nullptr);
    modal.activateWindow(); // as when a message has been closed
    ASSERT_TRUE(QTest::qWaitForWindowActive(&modal));
    control->TakeFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return typedIn.edit->hasFocus(); }));
    EXPECT_EQ(typedIn.edit->selectedText(), QStringLiteral("abc")) << "to be typed over";
    EXPECT_EQ(host.FindControl(7), nullptr) << "nobody's";
    EXPECT_FALSE(other->hasFocus());
}

TEST(QtHost, ShowsTheStripOnlyInALongWait)
{
    testing::HandClock clock;
    QtHost host({.clock = &clock});
    Window window;
    EXPECT_TRUE(host.Breathe());
    MoveTo(clock, 299ms);
    EXPECT_TRUE(host.Breathe());
    EXPECT_EQ(window.Strip(), nullptr);
    MoveTo(clock, 2300ms);
    EXPECT_TRUE(host.Breathe());
    ASSERT_NE(window.Strip(), nullptr);
    EXPECT_TRUE(window.Strip()->isVisible());
    EXPECT_TRUE(window.rect().contains(window.Strip()->geometry()));
    EXPECT_GE(window.Strip()->CancelButton()->height(), 44);
    // Back in the event loop the wait is over, and the next one starts from the beginning.
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.Strip() == nullptr; }));
    MoveTo(clock, 2500ms);
    EXPECT_TRUE(host.Breathe());
    EXPECT_EQ(window.Strip(), nullptr);
}

/// A window over which the library waits, with all kinds of things to be used in it.
class WaitTest : public ::testing::Test
{
protected:
    WaitTest()
    {
        auto* const layout = qobject_cast<QVBoxLayout*>(window.layout());
        layout->addWidget(other);
        layout->addWidget(spin);
        window.button->setFocusPolicy(Qt::NoFocus);
        window.button->setContextMenuPolicy(Qt::CustomContextMenu);
        QObject::connect(window.button, &QWidget::customContextMenuRequested, &window,
                         [this] { menus += 1; });
        QObject::connect(new QShortcut(Qt::Key_F5, &window), &QShortcut::activated, &window,
                         [this] { shortcuts += 1; });
        QCoreApplication::processEvents();
        Settle();
    }

    /// Does @p act in the middle of a wait, and ends the wait without going to the event loop.
    bool During(const std::function<void()>& act)
    {
        bool done = false;
        QTimer::singleShot(0, &window, [&] {
            act();
            done = true;
        });
        bool goesOn = true;
        while (!done) {
            goesOn = host.Breathe() && goesOn;
        }
        return host.Breathe() && goesOn; // what was posted meanwhile
    }

    /// Lets the event loop run until nothing is left to be done.
    static void Settle()
    {
        for (int i = 0; i < 100; ++i) {
            QCoreApplication::processEvents();
        }
    }

    void Tap(QWidget* on) const
    {
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, PlaceOf(on));
    }
    void Type(const char* keys) const
    {
        for (; *keys != 0; ++keys) {
            QTest::keyClick(window.windowHandle(), *keys);
        }
    }
    [[nodiscard]] QPoint PlaceOf(const QWidget* on) const
    {
        return on->mapTo(&window, on->rect().center());
    }

    /// What input has changed.
    [[nodiscard]] std::string State() const
    {
        QStringList all;
        for (const auto& [count, of] : {std::pair(window.clicks, "clicks"),
                                        {spin->value(), "turns"},
                                        {menus, "menus"},
                                        {shortcuts, "keys"}}) {
            if (count != 0) {
                all += QStringLiteral("%1 %2").arg(count).arg(QLatin1String(of));
            }
        }
        all += {window.edit->text().mid(3), other->text()}; // the first one has abc
        all += window.edit->hasSelectedText() ? QStringLiteral("marked") : QString();
        all += window.isVisible() ? QString() : QStringLiteral("closed");
        all.removeAll(QString());
        return all.join(QStringLiteral(", ")).toStdString();
    }

    testing::HandClock clock;
    QtHost host{{.clock = &clock}};
    Window window;
    QLineEdit* other = new QLineEdit;
    QSpinBox* spin = new QSpinBox;
    int menus = 0;
    int shortcuts = 0;
};

TEST_F(WaitTest, KeepsInputAndHandsItOnInOrder)
{
    const QPointer<QPushButton> doomed = new QPushButton(&window);
    doomed->setGeometry(0, 400, 100, 50);
    doomed->show();
    static QPointingDevice* const finger = QTest::createTouchDevice(); // of the whole program
    const auto expect = [this](const char* fault, const char* after,
                               const std::function<void()>& act) {
        SCOPED_TRACE(fault);
        window.clicks = menus = shortcuts = 0;
        window.layout()->setContentsMargins({});
        window.edit->setText(QStringLiteral("abc"));
        other->clear();
        spin->setValue(0);
        window.edit->setFocus();
        Settle();
        EXPECT_TRUE(During(act));
        EXPECT_EQ(State(), "") << "while it waits";
        Settle();
        EXPECT_EQ(State(), after);
    };
    expect("a tap is lost", "1 clicks", [&] { Tap(window.button); });
    expect("a tap is lost that comes to the widget", "1 clicks",
           [&] { QTest::mouseClick(window.button, Qt::LeftButton); });
    expect("a finger is no mouse", "1 clicks", [&] {
        QTest::touchEvent(window.windowHandle(), finger).press(1, PlaceOf(window.button));
        QTest::touchEvent(window.windowHandle(), finger).release(1, PlaceOf(window.button));
    });
    expect("digits are lost or change places", "0.125", [&] { Type("0.125"); });
    expect("digits go to where the focus was before the tap", "1 clicks, 14, 23", [&] {
        Type("1");
        Tap(other);
        Type("23");
        Tap(window.edit);
        Type("4");
        Tap(window.button);
    });
    expect("a tap hits what has come to lie under it", "1 clicks, 5", [&] {
        Tap(window.button);
        Tap(other);
        Type("5");
        window.layout()->setContentsMargins(0, 200, 0, 0);
    });
    expect("a second click is none of its own", "marked", [&] {
        QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, PlaceOf(window.edit));
    });
    expect("a wheel is turned where the next tap is", "1 clicks, 1 turns", [&] {
        const QPointF at = PlaceOf(spin);
        QWheelEvent turned(at, window.mapToGlobal(at), {}, {0, 120}, {}, {}, Qt::NoScrollPhase,
                           false);
        QSpontaneKeyEvent::setSpontaneous(&turned); // as the system's own
        qApp->notify(window.windowHandle(), &turned);
        Tap(window.button);
    });
    expect("a shortcut is lost", "1 keys",
           [&] { QTest::keyClick(window.windowHandle(), Qt::Key_F5); });
    expect("what an input method puts together is lost", "点", [&] {
        Tap(other);
        QInputMethodEvent composed;
        composed.setCommitString(QStringLiteral("点"));
        QCoreApplication::sendEvent(QApplication::focusWidget(), &composed);
    });
    expect("a menu is not asked for", "1 menus", [&] {
        QContextMenuEvent asked(QContextMenuEvent::Mouse, {1, 1},
                                window.button->mapToGlobal(QPoint(1, 1)));
        QCoreApplication::sendEvent(window.button, &asked);
    });
    expect("the widget has gone", "6", [&] {
        Tap(doomed);
        Type("6");
        delete doomed;
    });
    expect("the user cannot close it", "closed", [&] { window.windowHandle()->close(); });
}

/// What is handed on may itself wait for the receiver, and what comes meanwhile goes behind.
TEST_F(WaitTest, KeepsTheRestWhileATapWaits)
{
    std::string order;
    bool waits = false;
    QObject::connect(window.button, &QPushButton::clicked, &window, [&] {
        EXPECT_FALSE(waits) << "one exchange within another";
        waits = true;
        order += "tap ";
        EXPECT_TRUE(During([&] { Type("3"); }));
        order += window.edit->text().toStdString() + ' ';
        waits = false;
    });
    window.edit->setFocus();
    EXPECT_TRUE(During([&] {
        Type("1");
        Tap(window.button);
        Tap(window.edit);
        Type("2");
        Tap(window.button);
    }));
    Type("x"); // behind it, although the wait is over
    Settle();
    EXPECT_EQ(order, "tap abc1 tap abc12 ");
    EXPECT_EQ(window.edit->text(), QStringLiteral("abc12x33"));
}

TEST_F(WaitTest, PutsNoInputIntoADialogThatWasNotThere)
{
    QObject::connect(window.button, &QPushButton::clicked, &window, [&] {
        Next<MessageDlg>(window, [&](MessageDlg& box) {
            EXPECT_EQ(window.clicks, 1);
            Settle();
            EXPECT_TRUE(box.isVisible()) << "answered by what was typed before";
            // The box has waits of its own.
            EXPECT_TRUE(During([&] { QTest::keyClick(&box, Qt::Key_Return); }));
        });
        CMesBox(host).Warn(L"text", L"caption");
    });
    window.edit->setFocus();
    EXPECT_TRUE(During([&] {
        Tap(window.button);
        Tap(window.button); // twice, out of impatience
        QTest::keyClick(window.windowHandle(), Qt::Key_Return);
    }));
    Settle();
    EXPECT_EQ(window.clicks, 1);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);

    // A box that the program itself puts over the wait takes nothing away.
    EXPECT_TRUE(During([&] { Type("1"); }));
    window.edit->setFocus();
    EXPECT_TRUE(During([&] {
        Next<MessageDlg>(window, [](MessageDlg& box) { QTest::keyClick(&box, Qt::Key_Return); });
        CMesBox(host).Warn(L"text", L"caption");
    }));
    Type("2");
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.edit->text() == QStringLiteral("abc12"); }))
        << window.edit->text().toStdString();
}

TEST_F(WaitTest, RefusesInputOnlyUnderTheStrip)
{
    const auto press = [&](QWidget* on) {
        QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, PlaceOf(on));
    };
    const auto letGo = [&](QWidget* on) {
        QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, PlaceOf(on));
    };
    window.edit->setFocus();
    EXPECT_TRUE(During([&] {
        Type("1");
        press(window.button);
    }));
    MoveTo(clock, 300ms);
    QTimer::singleShot(0, &window, [&] { Type("2"); }); // before the strip can be seen
    host.Breathe();
    ASSERT_NE(window.Strip(), nullptr);
    EXPECT_EQ(window.Strip()->geometry(), window.rect()) << "the page looks as if it took input";
    EXPECT_TRUE(During([&] { letGo(window.button); }));
    EXPECT_TRUE(During([&] { Tap(window.button); }));
    EXPECT_TRUE(During([&] { Type("xyz"); }));
    EXPECT_TRUE(During([&] { window.windowHandle()->close(); }));
    bool nested = false;
    EXPECT_TRUE(During([&] { nested = host.Breathe(); }));
    EXPECT_TRUE(nested);

    EXPECT_FALSE(During([&] { Tap(window.Strip()->CancelButton()); }));
    EXPECT_TRUE(host.Breathe()) << "the receiver has still to be told";
    EXPECT_FALSE(During([&] { QTest::keyClick(window.edit, Qt::Key_Escape); }));

    // A dialog that a timer opens over the wait can be answered, or the program would hang.
    EXPECT_TRUE(During([&] {
        Next<MessageDlg>(window, [](MessageDlg& box) { QTest::keyClick(&box, Qt::Key_Return); });
        CMesBox(host).Warn(L"text", L"caption");
    }));

    EXPECT_TRUE(QTest::qWaitFor([&] { return window.Strip() == nullptr; }));
    Settle();
    EXPECT_EQ(window.clicks, 1) << "the tap that the strip has cut in two";
    EXPECT_EQ(window.edit->text(), QStringLiteral("abc12"));
    EXPECT_TRUE(window.isVisible());
    Tap(window.button);
    EXPECT_EQ(window.clicks, 2) << "input is still refused after the wait";
}

TEST_F(WaitTest, KeepsNoMoreThanItCanHold)
{
    window.edit->setFocus();
    EXPECT_TRUE(During([&] {
        for (std::size_t i = 0; i < QtHost::kMostKept; ++i) {
            Type("7"); // pressed and let go
        }
    }));
    Settle();
    for (int i = 0; i < 10; ++i) {
        Settle();
    }
    EXPECT_EQ(window.edit->text().size(), 3 + static_cast<qsizetype>(QtHost::kMostKept / 2));
    Type("8");
    EXPECT_TRUE(window.edit->text().endsWith(QLatin1Char('8')));
}

TEST(QtMessageTarget, DeliversInOrderFromAnotherThreadAndDropsWhenGone)
{
    std::vector<std::intptr_t> seen;
    auto receiver = std::make_unique<QObject>();
    QtMessageTarget target(receiver.get(), [&](unsigned message, auto wParam, auto lParam) {
        EXPECT_EQ(message, 0x8005U);
        EXPECT_EQ(lParam, -wParam);
        EXPECT_EQ(QThread::currentThread(), qApp->thread());
        seen.push_back(wParam);
    });
    std::thread([&] {
        for (std::intptr_t i = 0; i < 512; ++i) {
            target.Post(0x8005, i, -i);
        }
    }).join();
    EXPECT_TRUE(seen.empty()) << "handled inside Post()";
    QCoreApplication::processEvents();
    ASSERT_EQ(seen.size(), 512U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));

    target.Post(0x8005, 1, -1);
    receiver.reset();
    target.Post(0x8005, 2, -2);
    QCoreApplication::processEvents();
    EXPECT_EQ(seen.size(), 512U);
}

} // namespace
} // namespace fieldcore
