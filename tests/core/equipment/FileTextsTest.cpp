#include "core/equipment/FileTexts.h"

#include <string_view>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr std::uint32_t kDay = 86400;
constexpr std::uint32_t kFirstOf2000 = 7300 * kDay; // 7300 days after 1980-01-06

TEST(FileTexts, DatesAndTheirFolders)
{
    const std::tuple<std::uint32_t, std::wstring_view, std::wstring_view> rows[] = {
        {0, L"80/01/06", L"1980-01-06"},
        {kFirstOf2000 - 1, L"99/12/31", L"1999-12-31"},
        {kFirstOf2000, L"00/01/01", L"2000-01-01"},
        {kFirstOf2000 + 59 * kDay, L"00/02/29", L"2000-02-29"},
        {kFirstOf2000 + 36525 * kDay, L"100/01/01", L"2000-01-01"},
        {0xFFFFFFFF, L"116/02/12", L"2016-02-12"},
    };
    for (const auto& [seconds, text, folder] : rows) {
        SCOPED_TRACE(seconds);
        EXPECT_EQ(FileDateText(seconds), text);
        EXPECT_EQ(DateFolderName(seconds), folder);
    }
}

TEST(FileTexts, SizesOfAFile)
{
    const std::tuple<double, std::wstring_view> rows[] = {
        {0, L"0.0"},
        {1024, L"1.0"},
        {-1536, L"1.5"},
        {999.96 * 1024, L"1000.0"}, // still kilobytes: the number decides, not its rounding
        {1000.0 * 1024, L"1.0M"},
        {4294967295.0, L"4096.0M"},
    };
    for (const auto& [bytes, text] : rows) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(FileSizeText(bytes), text);
    }
}

TEST(FileTexts, NamesAndExtensions)
{
    EXPECT_EQ(FileRowName(L"A0314A00.Q01"), L"A0314A00");
    EXPECT_EQ(FileRowName(L"A.B.Q01"), L"A");
    EXPECT_EQ(FileRowName(L"ABCDEFGHIJKLMNOP"), L"ABCDEFGHIJKLMN");
    EXPECT_EQ(FileRowName(L".Q01"), L"");
    const std::tuple<bool, double, std::wstring_view, std::wstring_view> rows[] = {
        {false, 0.0, L".Q01", L".Q1D"}, {false, 0.99, L".Q01", L".Q1D"},
        {false, 1.0, L".Q00", L".Q0D"}, {false, 1.99, L".Q00", L".Q0D"},
        {false, 2.0, L".Q01", L".Q1D"}, {true, 1.5, L".Q02", L".Q02"},
    };
    for (const auto& [q02, version, live, deleted] : rows) {
        SCOPED_TRACE(version);
        EXPECT_EQ(FileExtension(q02, version, true), live);
        EXPECT_EQ(FileExtension(q02, version, false), deleted);
    }
}

TEST(FileTexts, SummaryOfADownload)
{
    const std::pair<std::uint64_t, std::wstring_view> sizes[] = {
        {0, L"1 KB未満"},      {1023, L"1 KB未満"},
        {1024, L"約 1 KB"},    {1535, L"約 1 KB"},
        {1536, L"約 2 KB"},    {1048575, L"約 1024 KB"},
        {1048576, L"約 1 MB"}, {1572863, L"約 1 MB"},
        {1572864, L"約 2 MB"}, {512ULL << 32, L"約 2097152 MB"},
    };
    for (const auto& [bytes, text] : sizes) {
        EXPECT_EQ(TotalSizeText(bytes), text) << bytes;
    }
    const std::tuple<std::uint64_t, std::uint32_t, std::wstring_view> times[] = {
        {9599, 9600, L"10 秒未満"},
        {9600, 9600, L"約 20 秒"},
        {9600, 0, L"約 20 秒"},
        {47999, 9600, L"約 50 秒"},
        {48000, 9600, L"約 1 分"},
        {57600, 9600, L"約 2 分"},
        {512ULL << 32, 262144, L"約 1398102 分"}, // 83886080 s
    };
    for (const auto& [bytes, rate, text] : times) {
        EXPECT_EQ(TransferTimeText(bytes, rate), text) << bytes;
    }
}

} // namespace
} // namespace fieldcore
