#include "core/link/Command.h"

#include "tests/core/link/FileServer.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/Hex.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Bytes;
using testing::Frame;
using testing::Joined;
using testing::LarkRecord;
using testing::Page;
using testing::PicaRecord;
using testing::ScriptedEnd;

const Bytes kDay{0x07, 0xEA, 3, 14, 1, 30};

/// Keeps the posted messages.
class Window : public MessageTarget
{
public:
    struct Message
    {
        unsigned number;
        std::intptr_t wParam;
        std::intptr_t lParam;
        bool operator==(const Message&) const = default;
    };
    void Post(unsigned number, std::intptr_t wParam, std::intptr_t lParam) override
    {
        messages.push_back({number, wParam, lParam});
    }

    std::vector<Message> messages;
};

/// The messages of a listing that stores these records.
std::vector<Window::Message> Posted(const std::vector<std::intptr_t>& indexes)
{
    std::vector<Window::Message> messages;
    for (const std::intptr_t index : indexes) {
        messages.push_back({0x8005, 0, index});
    }
    messages.push_back({0x8005, 1, 0});
    return messages;
}

class FileCommandsTest : public ::testing::Test, protected testing::VirtualChannel
{
protected:
    DirectoryTable table{};
    Window window;
    TemporaryFolder folder;
};

TEST_F(FileCommandsTest, SendsTheseBytes)
{
    struct Row
    {
        std::string_view name;
        std::function<int()> send;
        std::string_view request; ///< type and data; empty: none
    };
    const Row rows[] = {
        {"list, first Pica", [&] { return command.RequestFiles_Pica(1, 3010, table, &window); },
         "79 00 01 01"},
        {"list deleted, second Pica",
         [&] { return command.RequestFiles_Pica(0, 3020, table, &window); }, "79 00 00 02"},
        {"list, Lark", [&] { return command.RequestFiles_Lark(L"*.Q01", table, &window); },
         "9C 2A 2E 51 30 31 20 20 20 20 20 20 20 20 20"},
        {"exists", [&] { return command.FileExists(L"A.Q1D"); },
         "9C 41 2E 51 31 44 20 20 20 20 20 20 20 20 20"},
        {"delete by index", [&] { return command.DeleteFile_Pica(4); }, "60 00 04"},
        {"recover by index", [&] { return command.RecoverFile_Pica(0x0104); }, "68 01 04"},
        {"delete by name", [&] { return command.DeleteFile_Lark(L"A0314A00.Q01"); },
         "A0 41 30 33 31 34 41 30 30 2E 51 30 31 20 20"},
        {"recover by name", [&] { return command.RecoverFile_Lark(L"A0314A00.Q01"); },
         "A1 41 30 33 31 34 41 30 30 2E 51 30 31 20 20"},
        {"download",
         [&] { return static_cast<int>(command.DownloadFile(folder.Path(), L"A.Q01", 5)); },
         "96 41 2E 51 30 31 20 20 20 20 20 20 20 20 20 00 00 00 00 00 00"},
        {"download to where nothing can be kept",
         [&] { return static_cast<int>(command.DownloadFile("/nowhere/at/all", L"A", 0)); }, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const ScriptedEnd receiver(line, {{Bytes{testing::kNak}}});
        Open();
        row.send();
        std::vector<Bytes> expected;
        if (const Bytes bytes = testing::Hex(row.request); !bytes.empty()) {
            expected.push_back(Frame(bytes[0], Bytes(bytes.begin() + 1, bytes.end())));
        }
        EXPECT_EQ(receiver.Requests(), expected);
    }
}

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
    const std::vector<Bytes> full{PicaRecord(40, "A", 0x00, kDay), PicaRecord(41, "B", 0x01, kDay),
                                  PicaRecord(42, "C", 0x80, kDay), PicaRecord(43, "D", 0x20, kDay),
                                  PicaRecord(44, "E", 0x81, kDay), PicaRecord(45, "F", 0x00, kDay),
                                  PicaRecord(46, "G", 0xA0, kDay), PicaRecord(47, "H", 0x7E, kDay),
                                  PicaRecord(48, "I", 0x00, kDay)};
    const std::vector<Bytes> rest{PicaRecord(50, "J", 0x00, kDay)};
    for (const int mode : {1, 0}) {
        SCOPED_TRACE(mode);
        const ScriptedEnd receiver(line, {{Page(0x79, 0, full)}, {Page(0x79, 1, rest)}});
        Open();
        window.messages.clear();
        EXPECT_EQ(command.RequestFiles_Pica(mode, 3010, table, &window), 1) << command.LastError();
        EXPECT_EQ(window.messages, mode == 1 ? Posted({0, 3, 5, 7, 8, 9}) : Posted({2, 6}));
    }
    EXPECT_EQ(table[9].Name(), L"J");
    EXPECT_EQ(table[9].fileIndex, 50);
    EXPECT_EQ(table[8].pageFlag, 128);
    EXPECT_EQ(table[9].pageFlag, 0);
}

TEST_F(FileCommandsTest, ListingsEndWhateverTheReceiverSends)
{
    const std::vector<Bytes> picas(9, PicaRecord(1, "A", 0, kDay));
    const std::vector<Bytes> larks(8, LarkRecord("A.Q01", 1));
    const auto larkPages = [&](int count, std::uint8_t step, bool last) {
        Bytes all;
        for (int i = 0; i < count; ++i) {
            const auto number = static_cast<std::uint8_t>(i * step % 128);
            const Bytes page = Page(0x9D, last && i == count - 1 ? number | 0x80 : number, larks);
            all.insert(all.end(), page.begin(), page.end());
        }
        return ScriptedEnd::Answer{all};
    };
    struct Row
    {
        std::string_view fault;
        bool pica;
        std::function<ScriptedEnd::Answer(const Bytes&)> answer;
        int result;
        std::size_t records;
        std::size_t requests; ///< with the abort
    };
    const Row rows[] = {
        {"Pica without end", true,
         [&](const Bytes& r) { return ScriptedEnd::Answer{Page(0x79, r[4], picas)}; }, 1, 512, 57},
        {"Pica answers with another page", true,
         [&](const Bytes&) { return ScriptedEnd::Answer{Page(0x79, 1, picas)}; }, 0, 0, 1},
        {"Lark with 64 pages", false, [&](const Bytes&) { return larkPages(64, 1, true); }, 1, 512,
         1},
        {"Lark with more files than fit", false,
         [&](const Bytes&) { return larkPages(70, 1, true); }, 1, 512, 1},
        {"Lark without end", false, [&](const Bytes&) { return larkPages(300, 1, false); }, 0, 512,
         2},
        {"Lark that repeats itself", false, [&](const Bytes&) { return larkPages(300, 0, false); },
         0, 8, 2},
        {"Lark that leaves pages out", false, [&](const Bytes&) { return larkPages(3, 2, true); },
         0, 24, 2},
        {"Lark with the marked page first", false,
         [&](const Bytes&) {
             return ScriptedEnd::Answer{
                 Joined({Page(0x9D, 0x82, larks), Page(0x9D, 0, larks), Page(0x9D, 1, larks)})};
         },
         1, 24, 1},
        {"Lark that falls silent", false, [&](const Bytes&) { return larkPages(2, 1, false); }, 0,
         16, 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const ScriptedEnd receiver(line, [&](const Bytes& request) {
            return request[2] == 0x5A ? ScriptedEnd::Answer{{testing::kAck}} : row.answer(request);
        });
        Open();
        window.messages.clear();
        EXPECT_EQ(row.pica ? command.RequestFiles_Pica(1, 3010, table, &window)
                           : command.RequestFiles_Lark(L"*.Q01", table, &window),
                  row.result)
            << command.LastError();
        EXPECT_EQ(window.messages.size(), row.records + 1);
        EXPECT_EQ(window.messages.back(), (Window::Message{0x8005, 1, 0}));
        EXPECT_EQ(receiver.Requests().size(), row.requests);
    }
    command.ClosePort();
    window.messages.clear();
    EXPECT_EQ(command.RequestFiles_Lark(L"*.Q01", table, &window), 0) << "no port";
    EXPECT_EQ(window.messages, Posted({}));
}

TEST_F(FileCommandsTest, TheReceiverIsToldWhenTheUserCancels)
{
    struct Row
    {
        std::string_view what;
        std::function<int()> ask;
    };
    const Row rows[] = {
        {"listing of a Pica", [&] { return command.RequestFiles_Pica(1, 3010, table, &window); }},
        {"listing of a Lark", [&] { return command.RequestFiles_Lark(L"*.Q01", table, &window); }},
        {"whether a file exists", [&] { return command.FileExists(L"A.Q1D"); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const ScriptedEnd receiver(line, [](const Bytes& request) {
            return request[2] == 0x5A ? ScriptedEnd::Answer{{testing::kAck}}
                                      : ScriptedEnd::Answer{};
        });
        Open();
        host.inBreath = [isPatient = false]() mutable { return std::exchange(isPatient, true); };
        EXPECT_EQ(row.ask(), 0);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        const auto& requests = receiver.Requests();
        ASSERT_EQ(requests.size(), 2U);
        EXPECT_EQ(requests[1][2], 0x5A);
    }
}

TEST_F(FileCommandsTest, AFileExistsUnderExactlyItsName)
{
    struct Row
    {
        std::string_view fault;
        Bytes answer;
        int exists;
    };
    const Row rows[] = {
        {"it is there", Page(0x9D, 0x80, {LarkRecord("A.Q1D", 1)}), 1},
        {"nothing is there", Page(0x9D, 0x80, {}), 0},
        {"a longer name", Page(0x9D, 0x80, {LarkRecord("A.Q1D2", 1)}), 0},
        {"other case", Page(0x9D, 0x80, {LarkRecord("a.Q1D", 1)}), 0},
        {"second in the list", Page(0x9D, 0x80, {LarkRecord("B", 1), LarkRecord("A.Q1D", 1)}), 0},
        {"refused", {testing::kNak}, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const ScriptedEnd receiver(line, {{row.answer}});
        Open();
        EXPECT_EQ(command.FileExists(L"A.Q1D"), row.exists) << command.LastError();
    }
}

} // namespace
} // namespace fieldcore
