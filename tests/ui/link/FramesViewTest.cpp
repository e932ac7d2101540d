#include "ui/link/FramesView.h"

#include "core/platform/WholeFile.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/ui/link/Clicks.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/QtHost.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableView>

namespace fieldcore {
namespace {

using Frame = std::vector<std::uint8_t>;

const Frame kStatus{0x02, 0x00, 0x08, 0x00, 0x08, 0x03};
const Frame kDamaged{0x02, 0x00, 0x08, 0x00, 0x09, 0x03};
const Frame kNak{0x15};

class FramesViewTest : public ::testing::Test
{
protected:
    FramesViewTest()
    {
        view.resize(480, 640);
        view.show();
        QApplication::setActiveWindow(&view);
    }
    [[nodiscard]] QString Cell(int row, int column) const
    {
        return table->model()->index(row, column).data().toString();
    }
    void Click(int textId) const { testing::Click(view, textId); }
    /// What is told of the row that is selected.
    [[nodiscard]] QString Detail() const
    {
        return view.findChild<QPlainTextEdit*>()->toPlainText();
    }
    void Choose(int shown) const { view.findChild<QComboBox*>()->setCurrentIndex(shown); }

    FrameHistory history{SystemClock::Instance()};
    FramesView view{history};
    QTableView* const table = view.findChild<QTableView*>();
};

TEST_F(FramesViewTest, ShowsWhatGoesOverTheLine)
{
    CCommand command;
    command.SetLineObserver(history.Observer());
    const auto receiver = testing::Plugged(command, {});
    SerialReply serial;
    ASSERT_EQ(command.RequestSerial(serial), 1);
    view.Refresh();
    ASSERT_EQ(table->model()->rowCount(), 2);
    EXPECT_EQ(Cell(0, FramesModel::Way), QStringLiteral("→ Tx"));
    EXPECT_EQ(Cell(0, FramesModel::Bytes), QStringLiteral("02 00 06 00 06 03"));
    EXPECT_EQ(Cell(1, FramesModel::Way), QStringLiteral("← Rx"));
    EXPECT_TRUE(Cell(1, FramesModel::Content).startsWith(QStringLiteral("07 ")));
    QTest::keyClick(table, Qt::Key_End);
    table->selectRow(1);
    EXPECT_TRUE(Detail().contains(ToQt(serial.shortSerial).trimmed()));
}

TEST_F(FramesViewTest, ShowsWhatIsNoFrame)
{
    struct Row
    {
        const char* fault;
        Direction direction;
        LineUnit unit;
        std::string bytes;
        const char* content;
    };
    using enum Direction;
    using enum LineUnit;
    using namespace std::string_literals;
    const Row rows[] = {
        {"BREAK", Sent, Break, "\0"s, "BREAK"},
        {"text that is sent", Sent, Line, "ID", "文字「ID」"},
        {"text that comes", Received, Line, "OK\r\n", "文字「OK」"},
        {"text with a tab", Received, Line, "O\t\n", "4F 09 0A"},
        {"noise", Received, Noise, "\x99\x98", "! フレーム外  99 98"},
        {"text where frames are spoken", Received, Noise, "$G\n", "! フレーム外  文字「$G」"},
    };
    for (const Row& row : rows) {
        history.Add(row.direction, row.unit,
                    std::vector<std::uint8_t>(row.bytes.begin(), row.bytes.end()));
    }
    view.Refresh();
    for (int i = 0; i < static_cast<int>(std::size(rows)); ++i) {
        EXPECT_EQ(Cell(i, FramesModel::Content), QString::fromUtf8(rows[i].content))
            << rows[i].fault;
        EXPECT_EQ(Cell(i, FramesModel::Time).size(), 12) << rows[i].fault;
    }
    Choose(3);
    EXPECT_EQ(table->model()->rowCount(), 2) << "both pieces that were no frame";
    table->selectRow(0);
    EXPECT_TRUE(Detail().contains(UiText(text::kFramesNoise)));
}

TEST_F(FramesViewTest, FiltersHoldsAndClears)
{
    history.Add(Direction::Sent, LineUnit::Frame, kStatus);
    history.Add(Direction::Received, LineUnit::Frame, kDamaged);
    history.Add(Direction::Sent, LineUnit::Frame, kStatus);
    history.Add(Direction::Received, LineUnit::Frame, kNak);
    view.Refresh();
    auto* const search = view.findChild<QLineEdit*>();
    const auto rowsFor = [&](int shown, const char* typed) {
        Choose(shown);
        search->clear();
        QTest::keyClicks(search, QString::fromLatin1(typed));
        return table->model()->rowCount();
    };
    EXPECT_EQ(rowsFor(0, ""), 4);
    EXPECT_EQ(rowsFor(1, ""), 2);
    EXPECT_EQ(rowsFor(2, ""), 2);
    EXPECT_EQ(rowsFor(3, ""), 2) << "the damaged one and the refusal";
    EXPECT_EQ(rowsFor(0, "08 00 08"), 2);
    EXPECT_EQ(rowsFor(2, "nak"), 1);
    EXPECT_EQ(rowsFor(1, "nak"), 0);
    // What comes later is filtered, too.
    rowsFor(1, "");
    history.Add(Direction::Received, LineUnit::Frame, kNak);
    history.Add(Direction::Sent, LineUnit::Frame, kStatus);
    view.Refresh();
    EXPECT_EQ(table->model()->rowCount(), 3);
    rowsFor(0, "");
    Click(text::kFramesPause);
    history.Add(Direction::Sent, LineUnit::Frame, kStatus);
    view.Refresh();
    EXPECT_EQ(table->model()->rowCount(), 6) << "went on while it was held";
    Click(text::kFramesPause);
    EXPECT_EQ(table->model()->rowCount(), 7);
    Click(text::kFramesClear);
    EXPECT_EQ(table->model()->rowCount(), 0);
    EXPECT_FALSE(testing::Called(view, text::kFramesSave)->isEnabled());
    history.Add(Direction::Sent, LineUnit::Frame, kStatus);
    view.Refresh();
    EXPECT_EQ(table->model()->rowCount(), 1);
}

TEST_F(FramesViewTest, KeepsTenThousandRowsAndNoMore)
{
    for (int i = 0; i < 25000; ++i) {
        history.Add(i % 2 == 0 ? Direction::Sent : Direction::Received, LineUnit::Frame,
                    i % 2 == 0 ? kStatus : kNak);
        if (i % 6000 == 0) {
            view.Refresh();
        }
    }
    view.Refresh();
    EXPECT_EQ(table->model()->rowCount(), 10000);
    EXPECT_EQ(view.Model().Frames().front().number, 15001U);
    Choose(1);
    EXPECT_EQ(table->model()->rowCount(), 5000);
    for (int i = 0; i < 100; ++i) {
        history.Add(Direction::Received, LineUnit::Frame, kNak);
    }
    view.Refresh();
    EXPECT_EQ(table->model()->rowCount(), 4950) << "rows of frames that are gone";
}

TEST_F(FramesViewTest, SavesWhatIsShown)
{
    QtHost host;
    SetDefaultHost(&host);
    const TemporaryFolder folder;
    const auto file = folder.Path() / "exchange.log";
    history.Add(Direction::Sent, LineUnit::Frame, kStatus);
    history.Add(Direction::Received, LineUnit::Frame, kNak);
    view.Refresh();
    Choose(2);
    {
        const Surveyor surveyor(
            {{L"通信記録を保存しました。", L"通信記録", text::kMessageIconInformation},
             {L"通信記録を保存できませんでした。\n原因：No such file or directory\n"
              L"保存先の空き容量と書き込みの許可を確認して、もう一度保存してください。",
              L"通信記録", text::kMessageIconStop}});
        EXPECT_EQ(view.Save(file), 1);
        EXPECT_EQ(view.Save(folder.Path() / "no-folder" / "exchange.log"), 0);
    }
    const auto saved = ReadWholeFile(file, 1000);
    ASSERT_TRUE(saved.has_value());
    EXPECT_TRUE(std::string(saved->begin(), saved->end()).ends_with(" Rcvr Rx [15 ]\r\n"));
    SetDefaultHost(nullptr);
}

} // namespace
} // namespace fieldcore
