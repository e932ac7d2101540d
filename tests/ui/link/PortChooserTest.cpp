#include "ui/link/PortChooser.h"

#include "simulator/Scenario.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/ui/controls/OnScreen.h"
#include "tests/ui/controls/ScreenTrial.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

std::vector<ScenarioChoice> Scenarios()
{
    std::vector<ScenarioChoice> scenarios;
    for (const auto& [name, title] : simulator::ShippedScenarios()) {
        scenarios.push_back({name, QString::fromStdString(title)});
    }
    return scenarios;
}

/// A made-up machine whose adapters come and go; no device of the real one is looked at.
class PortChooserTest : public ::testing::Test
{
protected:
    [[nodiscard]] SystemRoots Roots() const
    {
        return {machine.Path() / "dev", machine.Path() / "sys", machine.Path() / "proc"};
    }
    void Plug(const std::string& name, const std::string& product) const
    {
        const fs::path usb = "sys/devices/" + name;
        machine.Write(usb / "idVendor", "1234\n");
        machine.Write(usb / "product", product + "\n");
        machine.Link(usb / "driver", "some-driver");
        machine.Write(usb / "some-driver/name", "");
        machine.Link(usb / "tty" / name / "device", "../..");
        machine.Link("sys/class/tty/" + name, fs::path("../../devices") / name / "tty" / name);
        machine.Write("dev/" + name, "");
    }
    void Unplug(const std::string& name) const
    {
        fs::remove(machine.Path() / "sys/class/tty" / name);
        fs::remove_all(machine.Path() / "sys/devices" / name);
        fs::remove(machine.Path() / "dev" / name);
    }
    [[nodiscard]] std::string Device(const std::string& name) const
    {
        return (machine.Path() / "dev" / name).string();
    }
    void Show(const ConnectChoice& choice)
    {
        window.resize(480, 640);
        window.show();
        dialog = std::make_unique<PortChooserDlg>(PortNames(Roots()), Scenarios(), choice, Roots(),
                                                  &window);
        dialog->show();
        QApplication::setActiveWindow(dialog.get());
        EXPECT_TRUE(QTest::qWaitFor([&] { return List()->count() > 0; }, 30000))
            << "nobody looks for ports";
    }
    template <typename Control>
    [[nodiscard]] Control* Find(int textId) const
    {
        return testing::Called<Control>(*dialog, UiText(textId).remove(QLatin1Char('&')));
    }
    [[nodiscard]] QListWidget* List() const { return Find<QListWidget>(text::kPortList); }
    [[nodiscard]] QLineEdit* Name() const { return Find<QLineEdit>(text::kPortName); }
    void Type(const QString& name) const
    {
        Name()->setFocus();
        Name()->selectAll();
        QTest::keyClicks(Name(), name);
    }
    void ClickRow(int row) const
    {
        const QRect place = List()->visualItemRect(List()->item(row));
        EXPECT_GE(place.height(), 44);
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, {}, place.center());
    }

    TemporaryFolder machine;
    QWidget window;
    std::unique_ptr<PortChooserDlg> dialog;
};

TEST_F(PortChooserTest, ShowsPortsThatComeAndGo)
{
    Show({});
    EXPECT_EQ(List()->count(), 1) << "the simulator alone";
    Plug("ttyUSB0", "Field Cable");
    Plug("ttyUSB1", "Long Cable");
    dialog->Chooser()->Refresh();
    ASSERT_EQ(List()->count(), 3);
    EXPECT_TRUE(List()->item(0)->text().contains(QStringLiteral("Field Cable")));
    ClickRow(1);
    EXPECT_EQ(dialog->Chooser()->Choice()->port, Device("ttyUSB1"));
    // The one above goes: the choice stays, also as a row.
    Unplug("ttyUSB0");
    dialog->Chooser()->Refresh();
    EXPECT_EQ(List()->currentRow(), 0);
    EXPECT_EQ(dialog->Chooser()->Choice()->port, Device("ttyUSB1"));
    // The chosen one goes and comes back.
    Unplug("ttyUSB1");
    dialog->Chooser()->Refresh();
    EXPECT_EQ(List()->currentRow(), -1) << "another one was chosen";
    EXPECT_EQ(dialog->Chooser()->Choice()->port, Device("ttyUSB1"));
    Plug("ttyUSB1", "Long Cable");
    dialog->Chooser()->Refresh();
    EXPECT_EQ(List()->currentRow(), 0);
    // Seen by itself, without being told.
    Unplug("ttyUSB1");
    EXPECT_TRUE(QTest::qWaitFor([&] { return List()->count() == 1; }, 30000));
}

TEST_F(PortChooserTest, TakesWhatIsTypedAndSaysWhatIsWrong)
{
    Show({"COM3", 9600});
    struct Row
    {
        const char* typed;
        bool isPort;
        bool isSimulator;
    };
    for (const Row& row :
         {Row{"/dev/any where", true, false}, Row{"com7:", true, false}, Row{"COM0", false, false},
          Row{"receiver", false, false}, Row{"sim:pica", true, true}, Row{" sim: ", true, true}}) {
        SCOPED_TRACE(row.typed);
        Type(QString::fromLatin1(row.typed));
        EXPECT_EQ(testing::Called(*dialog, text::kPortConnect)->isEnabled(), row.isPort);
        EXPECT_EQ(testing::Says(*dialog, UiText(text::kPortNameFault)), !row.isPort);
        EXPECT_EQ(Find<QComboBox>(text::kPortScenario)->isVisible(), row.isSimulator);
        EXPECT_EQ(List()->currentRow(), row.isSimulator ? 0 : -1);
    }
    Type(QStringLiteral("nonsense"));
    QTest::keyClick(Name(), Qt::Key_Return);
    EXPECT_TRUE(dialog->isVisible()) << "left with a name that is none";
}

TEST_F(PortChooserTest, GivesTheChoiceBackAsItCame)
{
    Plug("ttyUSB0", "Field Cable");
    const ConnectChoice last{"sim:noisy-line", 115200};
    Show(last);
    auto* const scenario = Find<QComboBox>(text::kPortScenario);
    EXPECT_TRUE(scenario->currentText().startsWith(QStringLiteral("noisy-line")));
    EXPECT_EQ(dialog->Chooser()->Choice(), last);
    // The scenario by keys, then the rate, then Enter.
    scenario->setFocus();
    QTest::keyClick(scenario, Qt::Key_Home);
    EXPECT_EQ(dialog->Chooser()->Choice()->port, "sim:");
    auto* const rate = Find<QComboBox>(text::kPortBaudRate);
    rate->setFocus();
    QTest::keyClick(rate, Qt::Key_Up);
    Name()->setFocus();
    QTest::keyClick(Name(), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), Dialog::kOk);
    EXPECT_EQ(dialog->Choice(), (ConnectChoice{"sim:", 57600}));
}

TEST_F(PortChooserTest, CutsNothingOffAndStandsRandomHands)
{
    Plug("ttyUSB0", "A Field Cable with a Name That Is Longer than Any Name Should Be");
    testing::TryScreen([&] {
        return std::make_unique<PortChooserDlg>(PortNames(Roots()), Scenarios(),
                                                ConnectChoice{"sim:old-firmware", 38400}, Roots());
    });
}

} // namespace
} // namespace fieldcore
