// The antenna's dialog: what follows from what is typed, what is refused, what is stored.

#include "ui/equipment/Antenna.h"

#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/OnScreen.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/TComboBox.h"
#include "ui/equipment/AntennaDrawing.h"

#include <QInputMethodEvent>
#include <QLineEdit>

namespace fieldcore {
namespace {

using Texts = std::vector<std::wstring>;

class AntennaDialog : public ::testing::Test
{
protected:
    AntennaDialog()
    {
        SetDefaultHost(&host);
        InstallSampleAntennas(m_home.Path());
        dialog.show();
    }
    ~AntennaDialog() override { SetDefaultHost(nullptr); }

    /// The messages since it was asked last.
    Texts Told()
    {
        Texts told;
        for (const auto& box : std::exchange(host.boxes, {})) {
            told.push_back(box.text);
        }
        return told;
    }

    [[nodiscard]] CTComboBox* Box(int id) { return testing::Called<CTComboBox>(dialog, id); }
    void Choose(int id, int code)
    {
        CTComboBox* const box = Box(id);
        ASSERT_EQ(box->SelectCode(code), 1);
        Q_EMIT box->activated(box->currentIndex());
    }
    void Type(int id, const QString& keys)
    {
        Box(id)->lineEdit()->selectAll();
        QTest::keyClick(Box(id), Qt::Key_Delete);
        // What is no key of a Latin keyboard comes from an input method.
        QInputMethodEvent composed;
        composed.setCommitString(keys);
        QCoreApplication::sendEvent(Box(id)->lineEdit(), &composed);
    }
    [[nodiscard]] bool Says(const std::wstring& words)
    {
        return testing::Says(dialog, ToQt(words));
    }
    /// What was stored of the reference antenna; then it is chosen.
    void ChooseReference(int type, int way, double heightM)
    {
        AntennaSettings reference(&m_closed, 0, 0);
        reference.SetAntTypeFlag(type);
        reference.SetAntWayFlag(way);
        reference.SetAntInputH(heightM);
        ASSERT_EQ(reference.WriteRegAnt(), 1);
        dialog.OfferRoles();
        Choose(text::kAntennaRole, kReference);
    }
    static constexpr int kReference = static_cast<int>(AntennaRole::Reference);

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    CCommand m_closed{{.roots = &m_roots}};
    testing::BoxKeepingHost host;
    CAntenna dialog{&m_closed, 1, 0};
};

TEST_F(AntennaDialog, ReducesWhatIsTyped)
{
    struct Row
    {
        const char* typed;
        int way;
        const wchar_t* shown;
        std::wstring warning;
    };
    Choose(text::kAntennaType, 3); // R 0.1, V 0.05 at its rim; V 0.0623 at its base
    const Row rows[] = {
        {"1.5", 0, L"1.500 m", L""},
        {"1.5", 2, L"1.562 m", L""},
        {"0.05", 1, L"0.100 m", FormatText(text::kAntennaTooShort, 0.05, 0.1)},
        {"-1", 1, L"--", Text(text::kAntennaNegativeHeight)},
        {"1.5x", 1, L"--", Text(text::kAntennaBadHeight)},
        {"", 1, L"--", L""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.typed) + " way " + std::to_string(row.way));
        Choose(text::kAntennaMethod, row.way);
        Type(text::kAntennaHeight, QString::fromLatin1(row.typed));
        EXPECT_TRUE(Says(row.shown));
        EXPECT_TRUE(row.warning.empty() || Says(row.warning));
        EXPECT_FALSE(row.warning.empty() && Says(Text(text::kAntennaBadHeight)));
    }
    Choose(text::kAntennaMethod, 2);
    Choose(text::kAntennaType, 6);
    EXPECT_EQ(Box(text::kAntennaMethod)->GetCode(), 0) << "another antenna's method was kept";
}

TEST_F(AntennaDialog, StoresOnlyWhatIsGood)
{
    struct Row
    {
        const char* fault;
        const char* height;
        const char* serial;
        std::wstring said; ///< empty: stored
    };
    const Row rows[] = {
        {"nothing typed", "", "", Text(text::kAntennaBadHeight)},
        {"below the ground", "-1.5", "", FormatText(text::kCheckRange, L"0.000", L"100.000")},
        {"a serial with a blank", "1.5", "A 1", FormatText(text::kAntennaBadSerial, 16)},
        {"another program writes", "1.543", "A0001", Text(text::kAntennaNotStored)},
        {"a good one", "1.543", "A0001", L""},
    };
    std::optional<SettingsBatch> other(std::in_place,
                                       HostReg(m_roots).Store()); // whose writer has not finished
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Type(text::kAntennaHeight, QString::fromUtf8(row.height));
        Type(text::kAntennaSerial, QString::fromLatin1(row.serial));
        if (row.said.empty()) {
            other.reset();
        }
        QTest::keyClick(&dialog, Qt::Key_Return);
        EXPECT_EQ(dialog.isVisible(), !row.said.empty());
        EXPECT_EQ(Told(), row.said.empty() ? Texts() : Texts{row.said});
        EXPECT_EQ(dialog.GetAntFlag(), row.said.empty() ? 1 : 0);
        if (!row.said.empty() && row.said != Text(text::kAntennaNotStored)) {
            const bool isSerial = *row.serial != '\0';
            const QLineEdit* const wrong =
                Box(isSerial ? text::kAntennaSerial : text::kAntennaHeight)->lineEdit();
            EXPECT_EQ(wrong->selectedText(), wrong->text()) << "to be typed over";
        }
    }
    EXPECT_EQ(dialog.GetAntHEx(), L"1.543");
    EXPECT_EQ(dialog.GetAntSNEx(), L"A0001");
}

TEST_F(AntennaDialog, AsksAReceiverThatIsConnectedAnew)
{
    struct Row
    {
        const char* course;
        const char* antennaType;
        int reConnect;
        bool isOpen;
        int type; ///< -1: the one that the receiver has
        std::wstring said;
    };
    const Row rows[] = {
        {"connected anew", "01", 1, true, -1, L""},
        {"as before", "01", 0, true, 4, L""},
        {"an antenna that nobody knows", "??", 1, true, 4,
         FormatText(text::kAntennaNotListed, L"??")},
        {"gone again", "01", 1, false, 4, L""},
    };
    AntennaSettings stored(&m_closed, 1, 0);
    stored.SetAntTypeFlag(4);
    ASSERT_EQ(stored.WriteRegAnt(), 1);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        simulator::Scenario scenario;
        scenario.antennaType = row.antennaType;
        CCommand command{{.roots = &m_roots}};
        const auto receiver = testing::Plugged(command, scenario);
        if (!row.isOpen) {
            command.ClosePort();
        }
        CAntenna antenna(&command, 1, row.reConnect);
        antenna.show();
        const int known = stored.Catalogue().FindCharCode(L"01").value_or(-1);
        EXPECT_EQ(antenna.GetAntTypeFlag(), row.type < 0 ? known : row.type);
        EXPECT_EQ(antenna.GetAntSN(), row.type < 0 ? L"A0001" : L"");
        EXPECT_EQ(antenna.GetReConnect(), 0) << "asked once";
        EXPECT_EQ(Told(), row.said.empty() ? Texts() : Texts{row.said});
    }
}

TEST_F(AntennaDialog, AsksBeforeItDropsWhatWasTyped)
{
    EXPECT_FALSE(Box(text::kAntennaRole)->isVisible());
    ChooseReference(4, 2, 1.2);
    EXPECT_EQ(Told(), Texts()) << "nothing was typed";
    host.answers = {BoxAnswer::No};
    EXPECT_EQ(Box(text::kAntennaMethod)->GetCode(), 2);
    EXPECT_EQ(Box(text::kAntennaHeight)->currentText(), QStringLiteral("1.200"));
    Choose(text::kAntennaRole, static_cast<int>(AntennaRole::Rover));
    Type(text::kAntennaHeight, QStringLiteral("1.5"));
    Choose(text::kAntennaRole, kReference);
    EXPECT_EQ(Told(), Texts{Text(text::kAntennaChangeRole)});
    EXPECT_EQ(dialog.Role(), AntennaRole::Rover);
    EXPECT_EQ(Box(text::kAntennaRole)->currentText(), UiText(text::kAntennaRover));
    EXPECT_EQ(Box(text::kAntennaHeight)->currentText(), QStringLiteral("1.5"));
    host.answers = {BoxAnswer::Yes};
    Choose(text::kAntennaRole, kReference);
    EXPECT_EQ(dialog.Role(), AntennaRole::Reference);
    EXPECT_EQ(Box(text::kAntennaHeight)->currentText(), QStringLiteral("1.200"));
}

TEST_F(AntennaDialog, HasAnAntennaChosenThatIsGone)
{
    ChooseReference(40, 1, 1.5);
    EXPECT_EQ(Box(text::kAntennaType)->currentText(), UiText(text::kAntennaTypeUnlisted));
    EXPECT_EQ(Box(text::kAntennaMethod)->currentText(), UiText(text::kAntennaMethodUnlisted));
    EXPECT_TRUE(Says(L"1.500 m"));
    EXPECT_TRUE(Says(Text(text::kAntennaTypeUnknown)));
    dialog.Close(Dialog::kOk);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(Told(), Texts{Text(text::kAntennaTypeUnknown)});
    Choose(text::kAntennaType, 3);
    EXPECT_EQ(Box(text::kAntennaMethod)->GetCode(), 0);
    dialog.Close(Dialog::kOk);
    EXPECT_FALSE(dialog.isVisible());
    dialog.ReadRegAnt();
    EXPECT_EQ(dialog.GetAntTypeFlag(), 3);
}

TEST_F(AntennaDialog, DrawsEachMethodInItsOwnWay)
{
    AntennaDrawing drawing;
    drawing.resize(400, 300);
    const auto picture = [&](const AntennaHeight& height) {
        drawing.Show(height, true);
        return drawing.grab().toImage();
    };
    const AntennaHeight vertical{1.5, 1.5, 0.0, {}, AntennaReduction::None};
    const QImage none = picture(vertical);
    const QImage slant = picture(ReduceAntennaHeight(1.5, {0.1, 0.05, L""}));
    const QImage base = picture(ReduceAntennaHeight(1.5, {0.0, 0.05, L""}));
    EXPECT_EQ(none, picture(vertical));
    EXPECT_NE(none, slant);
    EXPECT_NE(slant, base);
    EXPECT_NE(base, none);
    // The measured line runs up the axis, or to the rim at the right of it.
    const auto isLine = [&](const QImage& image, double x, double y) {
        const QColor colour = image.pixelColor(qRound(x), qRound(y));
        return colour.blue() > colour.red() + 60;
    };
    EXPECT_TRUE(isLine(base, 200.0, 250.0));
    EXPECT_FALSE(isLine(slant, 200.0, 180.0));
}

} // namespace
} // namespace fieldcore
