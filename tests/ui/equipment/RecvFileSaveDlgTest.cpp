// Where fetched files go, with fingers and keys.

#include "ui/equipment/RecvFileSaveDlg.h"

#include "tests/ui/controls/ScreenTrial.h"
#include "tests/ui/equipment/FilesScreen.h"

#include <QPushButton>

namespace fieldcore {
namespace {

using testing::FilesScreen;

class RecvFileSaveDlgTest : public FilesScreen
{
protected:
    void Open(std::uint64_t total, int port = 1)
    {
        destination = std::make_unique<FileDestination>(
            total, port, 9600, OwnFolders(),
            [this](const auto& folder) { return folder == Documents() ? 8000 : 4000; });
        dialog = std::make_unique<CRecvFileSaveDlg>(*destination);
        dialog->resize(480, 640);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    [[nodiscard]] QAbstractButton* Button(const char* text) const
    {
        QAbstractButton* const button = testing::Called(*dialog, QString::fromUtf8(text));
        EXPECT_NE(button, nullptr) << text;
        return button;
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

TEST_F(RecvFileSaveDlgTest, HasItsTextsAndFollowsWhatIsChosen)
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
    hasCard = true;
    Open(9600, 4); // Bluetooth
    EXPECT_TRUE(Button(kCard)->isEnabled() && Button(kCard)->isChecked());
    const auto summary = [this](const char* words) {
        return TextOf(CRecvFileSaveDlg::kSummary).contains(QString::fromUtf8(words));
    };
    EXPECT_TRUE(summary("： 約 9 KB") && summary("10 秒未満"));
    Tap(Button("取得済みのデータを除く"));
    EXPECT_TRUE(summary("： 約 5 KB")) << "4000 are on the card";
    Tap(Button(kMemory));
    EXPECT_TRUE(summary("： 約 2 KB")) << "8000 are in the documents";
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

TEST_F(RecvFileSaveDlgTest, CutsNothingOffWhenSpaceIsShort)
{
    hasCard = true;
    testing::InEveryLook([&](QSize) {
        Open(std::uint64_t{1} << 60U);
        EXPECT_TRUE(TextOf(CRecvFileSaveDlg::kFreeSpace)
                        .endsWith(QStringLiteral("\n空き容量が不足しています。")));
        testing::ExpectNothingCut(*dialog, {480, 640});
    });
}

} // namespace
} // namespace fieldcore
