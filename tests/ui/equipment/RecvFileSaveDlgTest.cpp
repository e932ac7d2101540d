// Where fetched files go, with fingers and keys.

#include "ui/equipment/RecvFileSaveDlg.h"

#include "tests/support/ProofSize.h"
#include "tests/ui/controls/Pictures.h"
#include "tests/ui/equipment/FilesScreen.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <random>

namespace fieldcore {
namespace {

using testing::FilesScreen;

class RecvFileSaveDlgTest : public FilesScreen
{
protected:
    void Open(std::uint64_t total, int port = 1)
    {
        destination = std::make_unique<FileDestination>(total, port, 9600, OwnFolders());
        dialog = std::make_unique<CRecvFileSaveDlg>(*destination);
        dialog->resize(480, 640);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    [[nodiscard]] QAbstractButton* Button(const char* text) const
    {
        for (QAbstractButton* const button : dialog->findChildren<QAbstractButton*>()) {
            if (button->text() == QString::fromUtf8(text)) {
                return button;
            }
        }
        ADD_FAILURE() << "there is no button " << text;
        return nullptr;
    }
    /// Where a finger would aim: at the sign, not at the middle of the wide control.
    static void Tap(QAbstractButton* button)
    {
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(12, button->height() / 2));
    }
    [[nodiscard]] QString TextOf(int control) const
    {
        return qobject_cast<QLabel*>(Dialog::FindControl(dialog.get(), control))->text();
    }

    static constexpr const char* kCard = "メモリカード";
    static constexpr const char* kMemory = "本体メモリ （My Documents内）";
    static constexpr const char* kByDay = "観測日毎にフォルダを作成する";

    std::unique_ptr<FileDestination> destination;
    std::unique_ptr<CRecvFileSaveDlg> dialog;
};

TEST_F(RecvFileSaveDlgTest, HasItsTextsToTheLetter)
{
    Open(9600);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("取得データの保存先"));
    EXPECT_EQ(TextOf(CRecvFileSaveDlg::kSummary),
              QStringLiteral("合計データサイズ： 約 9 KB\n取得時間目安： 約 20 秒"));
    EXPECT_FALSE(Button(kCard)->isEnabled()) << "without a card";
    EXPECT_TRUE(Button(kMemory)->isChecked());
    EXPECT_TRUE(Button(kByDay)->isChecked());
    EXPECT_TRUE(qobject_cast<QPushButton*>(Button("開始"))->isDefault());
    EXPECT_TRUE(TextOf(CRecvFileSaveDlg::kFreeSpace).startsWith(QStringLiteral("空き容量： 約 ")));
    KeepPicture(*dialog, QStringLiteral("files-destination"));
    hasCard = true;
    Open(9600, 4); // Bluetooth
    EXPECT_TRUE(Button(kCard)->isEnabled() && Button(kCard)->isChecked());
    EXPECT_TRUE(TextOf(CRecvFileSaveDlg::kSummary).endsWith(QStringLiteral("10 秒未満")));
}

TEST_F(RecvFileSaveDlgTest, TakesTheChoicesOnlyWithTheStartButton)
{
    hasCard = true;
    for (const bool starts : {false, true}) {
        SCOPED_TRACE(starts);
        Open(1000);
        Tap(Button(kMemory));
        Tap(Button(kByDay));
        Tap(Button("取得済みのデータを除く"));
        if (starts) {
            QTest::mouseClick(Button("開始"), Qt::LeftButton);
        } else {
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
        }
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(dialog->result(), starts ? Dialog::kOk : Dialog::kCancelled);
        EXPECT_EQ(destination->kind, starts ? FileDestination::MainMemory : FileDestination::Card);
        EXPECT_EQ(destination->dateFolders, starts ? 0 : 1);
        EXPECT_EQ(destination->onlyNew, starts);
    }
}

TEST_F(RecvFileSaveDlgTest, WarnsOfTooLittleSpace)
{
    Open(std::uint64_t{1} << 60U);
    EXPECT_TRUE(TextOf(CRecvFileSaveDlg::kFreeSpace)
                    .endsWith(QStringLiteral("\n空き容量が不足しています。")));
    KeepPicture(*dialog, QStringLiteral("files-destination-full"));
}

TEST_F(RecvFileSaveDlgTest, StandsAThousandRandomEvents)
{
    hasCard = true;
    Open(1000);
    std::mt19937 random(testing::Seed()); // the same events every time
    constexpr std::array kKeys{Qt::Key_Tab,   Qt::Key_Up,     Qt::Key_Down,
                               Qt::Key_Space, Qt::Key_Return, Qt::Key_Escape};
    int opened = 1;
    const int most = testing::ProofSize("FIELDCORE_HANDS", 1000);
    testing::Measured(most, "events");
    for (int event = 0; event < most; ++event) {
        const auto choice = random();
        QWidget* const focus = QApplication::focusWidget();
        if (choice % 3 == 0) {
            const auto buttons = dialog->findChildren<QAbstractButton*>();
            Tap(buttons[static_cast<int>(random() % static_cast<unsigned>(buttons.size()))]);
        } else {
            QTest::keyClick(focus != nullptr ? focus : dialog.get(), kKeys.at(random() % 6));
        }
        QCoreApplication::processEvents();
        ASSERT_NE(Button(kCard)->isChecked(), Button(kMemory)->isChecked()) << "event " << event;
        if (!dialog->isVisible()) {
            ASSERT_FALSE(destination->Folder().empty());
            ++opened;
            Open(1000);
        }
    }
    EXPECT_GT(opened, 10);
}

TEST_F(RecvFileSaveDlgTest, FitsInLargeFonts)
{
    const QFont usual = QApplication::font();
    hasCard = true;
    for (const double scale : {1.0, 1.3}) {
        SCOPED_TRACE(scale);
        QFont font = usual;
        font.setPixelSize(static_cast<int>(usual.pixelSize() * scale));
        QApplication::setFont(font);
        Open(std::uint64_t{1} << 60U);
        EXPECT_EQ(dialog->size(), QSize(480, 640));
        for (const QAbstractButton* const button : dialog->findChildren<QAbstractButton*>()) {
            if (button->isVisible()) {
                EXPECT_GE(button->width(), button->minimumSizeHint().width())
                    << button->text().toStdString();
                const QPoint corner = button->mapTo(dialog.get(), button->rect().bottomRight());
                EXPECT_TRUE(dialog->rect().contains(corner)) << button->text().toStdString();
            }
        }
        for (const QLabel* const label : dialog->findChildren<QLabel*>()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->text().toStdString();
        }
        KeepPicture(*dialog, QStringLiteral("files-destination-%1").arg(scale));
    }
    QApplication::setFont(usual);
}

} // namespace
} // namespace fieldcore
