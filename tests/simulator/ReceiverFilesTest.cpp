// The receiver's files: what is listed, read, deleted and brought back.

#include "simulator/FileNames.h"
#include "simulator/FileStore.h"
#include "simulator/ReceiverFile.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/simulator/Support.h"

#include <iterator>
#include <sstream>

namespace fieldcore::simulator::test {

namespace {

Bytes Name(std::string_view name)
{
    return DataWriter().Text(name, 14).Data();
}

Bytes DownloadData(std::string_view name, std::uint32_t offset, unsigned blocks)
{
    return DataWriter().Text(name, 14).U32(offset).U16(blocks).Data();
}

Bytes ContentFrom(std::string_view name, std::uint32_t offset, std::size_t bytes)
{
    ReceiverFile file;
    file.name = name;
    Bytes content(bytes);
    ReadFileContent(file, offset, content);
    return content;
}

/// Names in a list, with a blank behind each; "*" behind those being logged.
std::string Listed(Receiver& receiver, std::string_view pattern)
{
    std::string names;
    for (const Bytes& page : Ask(receiver, 0x9C, Name(pattern))) {
        for (std::size_t at = 6; at + 24 <= page.size() - 2; at += 24) {
            const std::string field(page.begin() + static_cast<std::ptrdiff_t>(at),
                                    page.begin() + static_cast<std::ptrdiff_t>(at) + 14);
            names += field.substr(0, field.find(' ')) + (page[at + 22] != 0 ? "* " : " ");
        }
    }
    return names;
}

/// The receiver's files as "A.Q01 ", with "-" in front of those in the recycle bin.
std::string Held(const Receiver& receiver)
{
    std::string names;
    for (const FileStore::Entry& entry : receiver.Files().Entries()) {
        names += (entry.file.state == FileState::Deleted ? "-" : "") + entry.file.name + " ";
    }
    return names;
}

constexpr std::string_view kThreeFiles = "file A 10 2026-03-14 01:30\n"
                                         "file B 10 2026-03-14 01:30 open\n"
                                         "file C 10 2026-03-14 01:30 locked\n"
                                         "file A 10 2026-03-14 01:30 deleted\n";

} // namespace

TEST(ReceiverFiles, DeletingAndRecoveringByNameFollowTheFirmware)
{
    // Told are "d" delete or "r" recover and the name, answered "+" ACK and "-" NAK.
    using Row = std::tuple<std::string_view, std::string_view, std::string_view, std::string_view,
                           std::string_view>;
    constexpr Row kRows[] = {
        {"moved into the bin, over the older one", "3.69", "dA.Q01", "+", "-A.Q1D B.Q01 C.Q01 "},
        {"a second deletion is for good", "3.69", "dA.Q01 dA.Q1D", "++", "B.Q01 C.Q01 "},
        {"3.7 has no bin", "3.7", "dA.Q01", "+", "B.Q01 C.Q01 -A.Q1D "},
        {"the older extension", "1.5", "dA.Q00 rA.Q0D", "++", "A.Q00 B.Q00 C.Q00 "},
        {"open and locked files stay", "3.69", "dB.Q01 dC.Q01", "--", "A.Q01 B.Q01 C.Q01 -A.Q1D "},
        {"its name is taken", "3.69", "rA.Q1D", "-", "A.Q01 B.Q01 C.Q01 -A.Q1D "},
        {"a live file cannot come back", "3.69", "rA.Q01", "-", "A.Q01 B.Q01 C.Q01 -A.Q1D "},
        {"no such file", "3.69", "dX.Q01 rX.Q1D dA", "---", "A.Q01 B.Q01 C.Q01 -A.Q1D "},
    };
    for (const auto& [fault, firmware, told, answered, held] : kRows) {
        SCOPED_TRACE(fault);
        Receiver receiver(
            Parsed("firmware " + std::string(firmware) + "\n" + std::string(kThreeFiles)), kStill);
        std::string answers;
        std::istringstream commands{std::string(told)};
        for (std::string command; commands >> command;) {
            const std::uint8_t type = command[0] == 'd' ? 0xA0 : 0xA1;
            answers += Ask(receiver, type, Name(command.substr(1))) == kAccepted ? '+' : '-';
        }
        EXPECT_EQ(answers, answered);
        EXPECT_EQ(Held(receiver), held);
    }
}

TEST(ReceiverFiles, APicaNamesFilesByAnIndexThatIsNever255)
{
    Receiver receiver(Parsed("model 3010\nfirmware 1.23\nfiles 300 1 9"), kStill);
    EXPECT_EQ(Ask(receiver, 0x60, "00 FF"), kRefused);
    EXPECT_EQ(Ask(receiver, 0x68, "00 02"), kRefused) << "it is not in the bin";
    EXPECT_EQ(Ask(receiver, 0x60, "00 02"), kAccepted);
    const Bytes bin = Data(receiver, 0x79, "00 00 01");
    ASSERT_EQ(bin.size(), 2U + 22) << "one file is in it";
    EXPECT_EQ(bin[2 + 20], 0x80) << "deleted";
    // 299 files left: 33 pages of nine and one of two.
    EXPECT_EQ(Data(receiver, 0x79, "20 01 01")[1], 9);
    EXPECT_EQ(Data(receiver, 0x79, "21 01 01")[1], 2);
    EXPECT_EQ(Data(receiver, 0x79, "22 01 01")[1], 0);
    EXPECT_EQ(Ask(receiver, 0x68, "00 02"), kAccepted);
    EXPECT_EQ(Data(receiver, 0x79, "21 01 01")[1], 3);
}

TEST(ReceiverFiles, AListFollowsItsPatternAndItsManner)
{
    const std::string files = "firmware 3.2\n" + std::string(kThreeFiles);
    Receiver receiver(Parsed(files), kStill);
    EXPECT_EQ(Listed(receiver, "*.Q01"), "A.Q01 B.Q01* C.Q01 ");
    EXPECT_EQ(Listed(receiver, "*.Q1D"), "A.Q1D ");
    EXPECT_EQ(Listed(receiver, "B.Q01"), "B.Q01* ");
    EXPECT_EQ(Listed(receiver, "B"), "");
    EXPECT_EQ(Ask(receiver, 0x9C, Name("*.Q09")),
              std::vector<Bytes>{MakeFrame(0x9D, Bytes{0x80, 0})});

    Receiver many(Shipped("many-files"), kStill);
    const std::vector<Bytes> pages = Ask(many, 0x9C, Name("*.Q02"));
    ASSERT_EQ(pages.size(), 75U);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        EXPECT_EQ(pages[i][4], i == 74 ? 0x80 | 74 : i);
    }
    Receiver backwards(Parsed("listing backwards\nfiles 20 1 9"), kStill);
    const std::vector<Bytes> turned = Ask(backwards, 0x9C, Name("*"));
    ASSERT_EQ(turned.size(), 3U);
    EXPECT_EQ(turned[0][4], 2);
    EXPECT_EQ(turned[2][4], 0x80) << "page 0 ends the list";
    Receiver endless(Parsed("listing endless\nfiles 20 1 9"), kStill);
    static_cast<void>(endless.Answer(FrameRequest(MakeFrame(0x9C, Name("*")))));
    for (int i = 0; i < 1000; ++i) {
        const std::optional<Bytes> page = endless.NextFrame();
        ASSERT_TRUE(page);
        ASSERT_EQ((*page)[4] & 0x80, 0) << "no page is the last";
    }
}

TEST(ReceiverFiles, ADownloadBeginsAndEndsWhereItIsAskedTo)
{
    using Row = std::tuple<std::string_view, std::string_view, std::uint32_t, unsigned, std::size_t,
                           std::size_t, std::uint8_t>;
    constexpr Row kRows[] = {
        {"whole file", "A.Q01", 0, 0, 3, 2500, 1},
        {"whole file, its blocks counted", "A.Q01", 0, 3, 3, 2500, 1},
        {"so many blocks and no more", "A.Q01", 0, 2, 2, 2000, 0},
        {"from the middle", "A.Q01", 1501, 0, 1, 999, 1},
        {"ends with a full block", "B.Q01", 0, 0, 2, 2000, 1},
        {"offset at the end", "A.Q01", 2500, 0, 1, 0, 1},
        {"offset behind the end", "A.Q01", 0xFFFFFFFF, 0, 1, 0, 1},
        {"empty file", "E.Q01", 0, 0, 1, 0, 1},
        {"no such file", "X.Q01", 7, 0, 1, 0, 2},
        {"file in the bin", "D.Q1D", 0, 0, 1, 0, 2},
        {"file being logged", "O.Q01", 0, 0, 1, 0, 4},
    };
    Receiver receiver(Parsed("firmware 3.2\n"
                             "file A 2500 2026-03-14 01:30 announces 4294967295\n"
                             "file B 2000 2026-03-14 01:30\n"
                             "file E 0 2026-03-14 01:30\n"
                             "file D 9 2026-03-14 01:30 deleted\n"
                             "file O 9 2026-03-14 01:30 open\n"),
                      kStill);
    for (const auto& [fault, name, offset, blocks, blocksSent, bytes, lastFlags] : kRows) {
        SCOPED_TRACE(fault);
        const auto frames = Ask(receiver, 0x96, DownloadData(name, offset, blocks));
        ASSERT_EQ(frames.size(), blocksSent);
        Bytes content;
        for (const Bytes& frame : frames) {
            ASSERT_EQ(frame[2], 0x95);
            EXPECT_EQ(Bytes(frame.begin() + 5, frame.begin() + 9),
                      DataWriter().U32(offset + content.size()).Data());
            EXPECT_EQ(frame[9], &frame == &frames.back() ? lastFlags : 0);
            content.insert(content.end(), frame.begin() + 10, frame.end() - 2);
        }
        EXPECT_EQ(content, ContentFrom(name, offset, bytes));
    }
}

TEST(ReceiverFiles, FreeMemoryFollowsThem)
{
    const auto tenths = [](Receiver& receiver) {
        const Bytes status = Data(receiver, 0x6B);
        return std::string(status.begin() + 19, status.begin() + 21);
    };
    const std::string files = "memory-mb 10\nfile A 3145728 2026-03-14 01:30\n"; // 3 MB
    Receiver computed(Parsed(files + "free-memory files"), kStill);
    EXPECT_EQ(tenths(computed), "07");
    EXPECT_EQ(Ask(computed, 0xA0, Name("A.Q01")), kAccepted);
    EXPECT_EQ(tenths(computed), "10");
    Receiver said(Parsed(files + "free-memory 2"), kStill);
    EXPECT_EQ(tenths(said), "02");
    EXPECT_EQ(Ask(said, 0xA0, Name("A.Q01")), kAccepted);
    EXPECT_EQ(tenths(said), "05");
    Receiver withBin(Parsed("firmware 3.2\nfree-memory files\n" + files), kStill);
    EXPECT_EQ(Ask(withBin, 0xA0, Name("A.Q01")), kAccepted);
    EXPECT_EQ(tenths(withBin), "07") << "the recycle bin is memory, too";
}

TEST(ReceiverFiles, AnExportStaysInItsFolderAndOverwritesNothing)
{
    const TemporaryFolder folder;
    std::vector<std::string> leftOut;
    std::string error;
    const Scenario hostile = Shipped("hostile-files");
    ASSERT_TRUE(ExportFiles(hostile, folder.Path() / "in/side", leftOut, error)) << error;
    EXPECT_EQ(leftOut.size(), 7U) << "six impossible names, and one twice";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path() / "in"),
                            std::filesystem::directory_iterator()),
              1);
    const std::string content = ContentOf(folder.Path() / "in/side/HUGE.Q01");
    EXPECT_EQ(Bytes(content.begin(), content.end()), ContentFrom("HUGE", 0, 20'000));
    EXPECT_FALSE(ExportFiles(hostile, folder.Path() / "in/side", leftOut, error));
    EXPECT_NE(error.find("in/side/"), std::string::npos) << error;
}

TEST(FileNames, APatternStandsForWhatItsStarsLeaveOpen)
{
    constexpr std::tuple<std::string_view, std::string_view, bool> kRows[] = {
        {"*.Q01", ".Q01", true},   {"*.Q01", "A.Q011", false},
        {"A*1", "A.Q01", true},    {"A*1", "B.Q01", false},
        {"*", "", true},           {"", "A", false},
        {"**1*", "A.Q01", true},   {"A.Q01", "A.Q0", false},
        {"*0*0*", "A.Q01", false},
    };
    for (const auto& [pattern, name, fits] : kRows) {
        EXPECT_EQ(FitsPattern(name, pattern), fits) << name << ' ' << pattern;
    }
}

} // namespace fieldcore::simulator::test
