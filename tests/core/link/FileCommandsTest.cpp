#include "core/link/Command.h"

#include "tests/core/link/FileServer.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

const Bytes kDay{0x07, 0xEA, 3, 14, 1, 30};

class FileCommandsTest : public ::testing::Test,
                         protected testing::VirtualChannel,
                         protected MessageTarget
{
protected:
    void Post(unsigned number, std::intptr_t wParam, std::intptr_t lParam) override
    {
        EXPECT_EQ(number, 0x8005U);
        EXPECT_TRUE(wParam == 0 || lParam == 0);
        posted.push_back(wParam == 0 ? lParam : kEnd);
    }
    int ListPica(int mode = 1) { return command.RequestFiles_Pica(mode, 3010, table, this); }
    int ListLark() { return command.RequestFiles_Lark(L"*.Q01", table, this); }

    static constexpr std::intptr_t kEnd = -1;
    DirectoryTable table{};
    std::vector<std::intptr_t> posted; // the records that a listing stored
};

TEST_F(FileCommandsTest, ANameThatWouldReachAnotherFileIsNotSent)
{
    const ScriptedEnd receiver(line, [](const Bytes&) { return ScriptedEnd::Answer{{0x06}}; });
    Open();
    // The last one has 8 characters and 16 bytes.
    for (const std::wstring_view name :
         {L"", L"A*.Q01", L"?.Q01", L"ABCDEFGHIJKLMNO", L"測量測量測量測量"}) {
        SCOPED_TRACE(name.size());
        EXPECT_EQ(command.DeleteFile_Lark(name), 0);
        EXPECT_EQ(command.RecoverFile_Lark(name), 0);
        EXPECT_EQ(command.FileExists(name), 0);
        EXPECT_EQ(command.Fault(), CommandFault::TooLong);
    }
    EXPECT_EQ(command.DeleteFile_Lark(L"ABCDEFGHIJKLMN"), 1);
    EXPECT_EQ(receiver.Requests().size(), 1U);
}

TEST_F(FileCommandsTest, APicaListsWhatFitsTheMode)
{
    std::vector<Bytes> full;
    for (const int attributes : {0x00, 0x01, 0x80, 0x20, 0x81, 0x00, 0xA0, 0x7E, 0x00}) {
        full.push_back(PicaRecord(40, "A", static_cast<std::uint8_t>(attributes), kDay));
    }
    const std::vector<Bytes> rest{PicaRecord(50, "J", 0x00, kDay)};
    for (const int mode : {1, 0}) {
        SCOPED_TRACE(mode);
        const ScriptedEnd receiver(line, {{Page(0x79, 0, full)}, {Page(0x79, 1, rest)}});
        Open();
        posted.clear();
        EXPECT_EQ(ListPica(mode), 1) << command.LastError();
        EXPECT_EQ(posted, (mode == 1 ? std::vector<std::intptr_t>{0, 3, 5, 7, 8, 9, kEnd}
                                     : std::vector<std::intptr_t>{2, 6, kEnd}));
    }
    EXPECT_EQ(table[9].Name(), L"J");
    EXPECT_EQ(table[9].fileIndex, 50);
    EXPECT_EQ(table[8].pageFlag, 128);
    EXPECT_EQ(table[9].pageFlag, 0);
}

TEST_F(FileCommandsTest, ListingsEndWhateverTheReceiverSends)
{
    using Answer = std::function<Bytes(const Bytes&)>;
    const Answer picaPage = [](const Bytes& request) {
        return Page(0x79, request[4], std::vector<Bytes>(9, PicaRecord(1, "A", 0, kDay)));
    };
    const std::vector<Bytes> larks(8, LarkRecord("A.Q01", 1));
    const auto larkPages = [&](int count, int step, int mark = 0,
                               const Bytes& inFront = {}) -> Answer {
        Bytes all = inFront;
        for (int i = 0; i < count; ++i) {
            const int number = i * step % 128 | (i == count - 1 ? mark : 0);
            all = Joined({all, Page(0x9D, static_cast<std::uint8_t>(number), larks)});
        }
        return [all](const Bytes&) { return all; };
    };
    const auto list = [&](bool isPica, const Answer& answer, std::size_t records,
                          std::size_t requests) {
        const ScriptedEnd receiver(line, [&](const Bytes& request) {
            return ScriptedEnd::Answer{request[2] == 0x5A ? Bytes{kAck} : answer(request)};
        });
        Open();
        posted.clear();
        const int result = isPica ? ListPica() : ListLark();
        EXPECT_EQ(posted.size(), records + 1);
        EXPECT_EQ(posted.back(), kEnd);
        EXPECT_EQ(receiver.Requests().size(), requests) << "with the abort";
        return result;
    };
    const auto samePage = [&](const Bytes&) { return picaPage({0, 0, 0, 0, 1}); };
    EXPECT_EQ(list(true, picaPage, 512, 57), 1) << "Pica without end";
    EXPECT_EQ(list(true, samePage, 0, 1), 0) << "Pica answers with another page";
    EXPECT_EQ(list(false, larkPages(64, 1, 0x80), 512, 1), 1) << "Lark with 64 pages";
    EXPECT_EQ(list(false, larkPages(70, 1, 0x80), 512, 1), 1) << "more files than fit";
    EXPECT_EQ(list(false, larkPages(300, 1), 512, 2), 0) << "Lark without end";
    EXPECT_EQ(list(false, larkPages(300, 0), 8, 2), 0) << "Lark that repeats itself";
    EXPECT_EQ(list(false, larkPages(3, 2, 0x80), 24, 2), 0) << "Lark that leaves pages out";
    EXPECT_EQ(list(false, larkPages(2, 1, 0, Page(0x9D, 0x82, larks)), 24, 1), 1)
        << "marked page first";
    EXPECT_EQ(list(false, larkPages(2, 1), 16, 2), 0) << "Lark that falls silent";
    command.ClosePort();
    posted.clear();
    EXPECT_EQ(ListLark(), 0) << "no port";
    EXPECT_EQ(posted, std::vector{kEnd});
}

TEST_F(FileCommandsTest, TheReceiverIsToldWhenTheUserCancels)
{
    const std::function<int()> asks[] = {[&] { return ListPica(); }, [&] { return ListLark(); },
                                         [&] { return command.FileExists(L"A.Q1D"); }};
    for (const auto& ask : asks) {
        SCOPED_TRACE(&ask - asks);
        const ScriptedEnd receiver(line, [](const Bytes& request) {
            return request[2] == 0x5A ? ScriptedEnd::Answer{{kAck}} : ScriptedEnd::Answer{};
        });
        Open();
        host.inBreath = [isPatient = false]() mutable { return std::exchange(isPatient, true); };
        EXPECT_EQ(ask(), 0);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        const auto& requests = receiver.Requests();
        ASSERT_EQ(requests.size(), 2U);
        EXPECT_EQ(requests[1][2], 0x5A);
    }
}

TEST_F(FileCommandsTest, AFileExistsUnderExactlyItsName)
{
    const auto exists = [this](const Bytes& answer) {
        const ScriptedEnd receiver(line, {{answer}});
        Open();
        return command.FileExists(L"A.Q1D");
    };
    const auto listed = [](const std::vector<Bytes>& records) { return Page(0x9D, 0x80, records); };
    const Bytes own = LarkRecord("A.Q1D", 1);
    EXPECT_EQ(exists(listed({own})), 1) << command.LastError();
    EXPECT_EQ(exists(listed({})), 0) << "nothing is there";
    EXPECT_EQ(exists(listed({LarkRecord("A.Q1D2", 1)})), 0) << "a longer name";
    EXPECT_EQ(exists(listed({LarkRecord("a.Q1D", 1)})), 0) << "other case";
    EXPECT_EQ(exists(listed({LarkRecord("B", 1), own})), 0) << "second in the list";
    EXPECT_EQ(exists({kNak}), 0) << "refused";
}

} // namespace
} // namespace fieldcore
