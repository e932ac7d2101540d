#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/StepButton.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Theme.h"

#include <QAbstractItemView>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QWheelEvent>

#include <cmath>
#include <string>

namespace fieldcore {
namespace {

void Show(QWidget& widget)
{
    widget.show();
    widget.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
}

void Wheel(QWidget* widget, int steps)
{
    const QPointF place = widget->rect().center();
    QWheelEvent event(place, widget->mapToGlobal(place), {}, {0, 120 * steps}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}

TEST(CTComboBox, KeepsTheCodeWithItsEntry)
{
    CTComboBox combo;
    EXPECT_EQ(combo.GetCode(), CTComboBox::kNoCode);
    combo.AddEntry(QStringLiteral("115200"), 6);
    combo.AddEntry(QStringLiteral("9600"), 2);
    EXPECT_EQ(combo.AddEntry(QStringLiteral("38400"), 0), 2);
    EXPECT_EQ(combo.SelectCode(0), 1);
    EXPECT_EQ(combo.currentText(), QStringLiteral("38400"));
    EXPECT_EQ(combo.SelectCode(5), 0);
    EXPECT_EQ(combo.GetCode(), 0) << "an unknown code has changed the selection";
    EXPECT_EQ(combo.GetCode(3), CTComboBox::kNoCode);

    Show(combo);
    QTest::keyClick(&combo, Qt::Key_Up);
    EXPECT_EQ(combo.GetCode(), 2);
    combo.clearFocus();
    Wheel(&combo, -1);
    EXPECT_EQ(combo.GetCode(), 2) << "scrolling a page has changed a setting";
    combo.showPopup();
    EXPECT_GE(combo.view()->visualRect(combo.model()->index(0, 0)).height(), 44);
    combo.hidePopup();
}

TEST(CTextProgressCtrl, ShowsTextAndFillsItsPart)
{
    CTextProgressCtrl bar;
    bar.resize(202, 40);
    bar.SetRange(0, 50);
    bar.SetPos(25);
    EXPECT_EQ(bar.text(), QStringLiteral("50 %"));
    bar.SetText(QStringLiteral("25 / 50"));
    EXPECT_EQ(bar.text(), QStringLiteral("25 / 50"));
    const Theme& theme = Theme::Current();
    const auto colourAt = [&](int x) { return bar.grab().toImage().pixelColor(x, 5); };
    EXPECT_EQ(colourAt(98), theme.accent); // one pixel of edge, then half of 200
    EXPECT_EQ(colourAt(103), theme.raised);
    bar.SetPos(1000);
    EXPECT_EQ(bar.GetPos(), 50);
    EXPECT_EQ(colourAt(199), theme.accent);
    bar.SetPos(-1);
    EXPECT_EQ(bar.GetPos(), 0);
    EXPECT_EQ(colourAt(3), theme.raised);
    bar.SetRange(5, 1); // the wrong way round: full of nothing, and no division by it
    EXPECT_EQ(bar.GetPos(), 5);
    bar.SetText(QString());
    EXPECT_EQ(bar.text(), QStringLiteral("0 %"));
    bar.grab();
}

class SpinDoubleTest : public ::testing::Test
{
protected:
    SpinDoubleTest()
    {
        spin.SetDecimals(3);
        spin.SetRange(-1.0, 2.5);
        spin.SetStep(0.1);
        spin.SetUnit(QStringLiteral(" m"));
        QObject::connect(&spin, &CSpinDouble::ValueChanged, &spin, [this] { ++changes; });
        Show(spin);
    }
    CSpinDouble spin;
    StepButton* const minus = spin.findChildren<StepButton*>().at(0);
    StepButton* const plus = spin.findChildren<StepButton*>().at(1);
    QDoubleSpinBox* const box = spin.findChild<QDoubleSpinBox*>();
    int changes = 0;
};

TEST_F(SpinDoubleTest, StepsByButtonsAndKeysInsideItsRange)
{
    for (int i = 0; i < 3; ++i) {
        QTest::mouseClick(plus, Qt::LeftButton);
    }
    QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(spin.GetValue(), 0.4) << "steps of 0.1 have piled up errors";
    QTest::keyClick(box, Qt::Key_Down);
    QTest::mouseClick(minus, Qt::LeftButton);
    EXPECT_EQ(spin.GetValue(), 0.2);
    EXPECT_EQ(changes, 6);
    spin.SetValue(99.0);
    EXPECT_EQ(spin.GetValue(), 2.5);
    EXPECT_FALSE(plus->isEnabled());
    EXPECT_TRUE(minus->isEnabled());
    spin.SetValue(std::nan(""));
    EXPECT_EQ(spin.GetValue(), 2.5);
    spin.SetRange(-1.0, 2.0);
    EXPECT_EQ(spin.GetValue(), 2.0);
    minus->parentWidget()->setFocus();
    box->clearFocus();
    Wheel(box, 1);
    EXPECT_EQ(spin.GetValue(), 2.0) << "scrolling a page has changed a value";
}

TEST_F(SpinDoubleTest, TakesWhatIsTypedWithAPoint)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German)); // a comma for a point
    struct Row
    {
        const char* typed;
        double value;
        const char* shown;
    };
    const Row rows[] = {
        {"1.543", 1.543, "1.543 m"}, {"-.5", -0.5, "-0.500 m"},     {"1,5", 1.5, "1.500 m"},
        {"9", 2.5, "2.500 m"},       {"1.23456", 1.234, "1.234 m"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        spin.SetValue(0.0);
        auto* const edit = box->findChild<QLineEdit*>();
        edit->selectAll();
        QTest::keyClicks(edit, QString::fromLatin1(row.typed));
        EXPECT_NEAR(spin.GetValue(), row.value, 1e-12);
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_EQ(box->text(), QString::fromLatin1(row.shown));
    }
    QLocale::setDefault(before);
}

/// The start spin of the observation plan. What it tells is written down.
class LabelSpinTest : public ::testing::Test
{
protected:
    LabelSpinTest()
    {
        spin.setRange(0, 23);
        spin.setValue(22);
        spin.SetLabel(&LabelSpin::HourLabel);
        QObject::connect(&spin, &LabelSpin::SpinMoved, &spin,
                         [this](int value) { told += std::to_string(value) + " "; });
        QObject::connect(&spin, &LabelSpin::ScrollEnded, &spin, [this] { told += "end "; });
        Show(spin);
    }
    LabelSpin spin;
    StepButton* const minus = spin.findChildren<StepButton*>().at(0);
    StepButton* const plus = spin.findChildren<StepButton*>().at(1);
    std::string told;
};

TEST_F(LabelSpinTest, TellsMovesAndTheirEnd)
{
    const auto expect = [this](const char* fault, const char* tells, const char* shows,
                               const std::function<void()>& act) {
        SCOPED_TRACE(fault);
        told.clear();
        act();
        EXPECT_EQ(told, tells);
        EXPECT_EQ(spin.LabelControl()->text(), QString::fromLatin1(shows));
    };
    const auto click = [&] { QTest::mouseClick(plus, Qt::LeftButton); };
    const auto wheel = [&] { Wheel(&spin, 1); };
    expect("set by the program", "", "22:00", [&] { spin.setValue(22); });
    expect("a click", "23 end ", "23:00", click);
    expect("against the end of the range", "23 end ", "23:00", click);
    expect("the end only when the button is let go", "22 held end ", "22:00", [&] {
        QTest::mousePress(minus, Qt::LeftButton);
        told += "held ";
        QTest::mouseRelease(minus, Qt::LeftButton);
    });
    expect("a button that is left while held", "21 end ", "21:00", [&] {
        QTest::mousePress(minus, Qt::LeftButton);
        QTest::mouseMove(minus, QPoint(-50, -50));
        QTest::mouseRelease(minus, Qt::LeftButton, {}, QPoint(-50, -50));
    });
    expect("a key that is held repeats", "22 23 held end ", "23:00", [&] {
        QTest::keyPress(&spin, Qt::Key_Up);
        QKeyEvent released(QEvent::KeyRelease, Qt::Key_Up, {}, {}, true);
        QCoreApplication::sendEvent(&spin, &released);
        QTest::keyPress(&spin, Qt::Key_Up);
        told += "held ";
        QTest::keyRelease(&spin, Qt::Key_Up);
    });
    expect("Home", "0 end ", "00:00", [&] { QTest::keyClick(&spin, Qt::Key_Home); });
    expect("moves nothing", "", "00:00", [&] { QTest::keyClick(&spin, Qt::Key_A); });
    expect("the wheel", "1 end ", "01:00", wheel);
    expect("the focus goes while a key is down", "2 end ", "02:00", [&] {
        QTest::keyPress(&spin, Qt::Key_Right);
        spin.clearFocus();
    });
    expect("the wheel of a page that scrolls", "", "02:00", wheel);
}

TEST_F(LabelSpinTest, GoesOnWhileAButtonIsHeld)
{
    spin.setValue(23);
    minus->setAutoRepeatDelay(1);
    minus->setAutoRepeatInterval(1);
    QTest::mousePress(minus, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return spin.value() == 0; }, 20000));
    EXPECT_EQ(told.find("end"), std::string::npos) << told;
    QTest::mouseRelease(minus, Qt::LeftButton);
    EXPECT_EQ(told.substr(0, 9), "22 21 20 ");
    EXPECT_EQ(told.substr(told.size() - 6), "0 end ");
}

/// What its buttons do is tried with the screens that ask.
TEST(CPrgEndMes, AnswersToKeys)
{
    using Mode = CPrgEndMes::Mode;
    QWidget page;
    const auto answer = [&page](Mode mode, Qt::Key key) {
        testing::Next<CPrgEndMes>(page, [&](CPrgEndMes& question) {
            EXPECT_EQ(testing::Called(question, text::kEndProgramPowerOff) != nullptr,
                      mode == Mode::Logging);
            QTest::keyClick(question.focusWidget(), key);
        });
        return CPrgEndMes(mode).DoModal();
    };
    EXPECT_EQ(answer(Mode::Logging, Qt::Key_Escape), 2) << "Esc stays";
    EXPECT_EQ(answer(Mode::Logging, Qt::Key_Return), 1) << "Enter leaves the receiver on";
    EXPECT_EQ(answer(Mode::Normal, Qt::Key_Return), 1) << "without a receiver";
}

} // namespace
} // namespace fieldcore
