// Tracking parameters: the lists that they are chosen from, and how they are kept.

#include "core/tilt/TrackingSettings.h"

#include "core/input/EntryList.h"
#include "core/input/Parts.h"
#include "tests/core/tilt/SensorLine.h"

#include <functional>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <tuple>

namespace fieldcore {
namespace {

using testing::SensorLine;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

TEST(PartsLists, ConvertPlacesAndValues)
{
    const auto expect = [](int (*rule)(int), std::initializer_list<std::pair<int, int>> rows) {
        for (const auto& [given, expected] : rows) {
            EXPECT_EQ(rule(given), expected) << given;
        }
    };
    expect(CParts::ConvElMaskFlag2Data,
           {{10, 50}, {11, 60}, {14, 90}, {15, -1}, {kMost, -1}, {-3, -15}, {kLeast, kLeast}});
    expect(CParts::ConvElMaskData2Flag,
           {{55, 10}, {50, 10}, {90, 14}, {91, -1}, {14, 2}, {-4, 0}, {-5, -1}});
    expect(CParts::ConvIntervalFlag2Data, {{4, 5}, {5, 10}, {15, 60}, {16, -1}, {kMost, -1}});
    expect(
        CParts::ConvIntervalData2Flag,
        {{0, -1}, {5, 4}, {6, 5}, {14, 5}, {15, 6}, {60, 15}, {61, -1}, {kMost, -1}, {kLeast, -1}});
    EXPECT_EQ(CParts::ConvMinSVsFlag2Data(2, 4), 6);
    EXPECT_EQ(CParts::ConvMinSVsData2Flag(6, 4), 2);
    EXPECT_EQ(CParts::ConvMinSVsFlag2Data(kMost, 1), kMost);
    EXPECT_EQ(CParts::ConvMinSVsData2Flag(kLeast, 1), kLeast);
}

TEST(PartsLists, FillLists)
{
    using Fill = std::function<void(TextList&)>;
    const std::tuple<const char*, Fill, std::size_t, std::size_t, const wchar_t*> rows[] = {
        {"masks", CParts::SetElMaskStr, 15, 11, L"60 度"},
        {"seconds", [](TextList& l) { CParts::SetIntervalStr(l, 0); }, 16, 15, L"60 秒"},
        {"minutes", [](TextList& l) { CParts::SetIntervalStr(l, 2); }, 16, 0, L"1 分"},
        {"numbers with a unit, filled up", [](TextList& l) { CParts::SetMinSVsStr(l, 4); }, 6, 0,
         L"4  衛星"},
        {"two digits", [](TextList& l) { CParts::SetMinSVsStr(l, 7); }, 6, 3, L"10 衛星"},
        {"hours of the day", [](TextList& l) { CParts::SetSvHourStr(l, 1); }, 24, 23, L"23 時"},
        {"hours long", [](TextList& l) { CParts::SetSvHourStr(l, 0); }, 24, 1, L"1  時間"},
        {"minutes of an hour", CParts::SetSvMinuteStr, 60, 59, L"59 分"},
        {"not to use is first", CParts::SetSvEnableStr, 2, 0, L"利用しない"},
        {"to use", CParts::SetSvEnableStr, 2, 1, L"利用する"},
    };
    for (const auto& [fault, fill, count, place, text] : rows) {
        SCOPED_TRACE(fault);
        TextEntries list;
        fill(list);
        ASSERT_EQ(list.Texts().size(), count);
        EXPECT_EQ(list.Texts()[place], text);
    }
    TextEntries none;
    CParts::SetComboBoxStr(none, -1, L"", 0);
    EXPECT_TRUE(none.Texts().empty());
}

TEST(GpsPrm, KeepsTheLimitThatIsWorkedWithAboveAFloor)
{
    const SensorLine line;
    CGPSPrm parameters(const_cast<SettingsRoots&>(line.roots));
    for (const auto& [stored, worked] :
         {std::pair{4.0, 7.0}, {6.999, 7.0}, {7.0, 7.0}, {7.5, 7.5}}) {
        parameters.SetPDOPMaskData(stored);
        EXPECT_EQ(parameters.GetPDOPMaskData(0), worked);
        EXPECT_EQ(parameters.GetPDOPMaskData(1), stored);
    }
    EXPECT_EQ(parameters.SetSurveyType(2, 1), 1);
    EXPECT_EQ(parameters.SetSurveyType(4096, 1), 1) << "another type of the same rover";
    EXPECT_EQ(parameters.SetSurveyType(4096, 1), 0);
    EXPECT_EQ(parameters.Reg().WriteNumber(L"GPS", L"x", 1), 1) << "at the library's own key";
    std::uint32_t x = 0;
    EXPECT_EQ(line.reg.ReadNumber(L"GPS", L"x", x, 0), 1);
}

TEST(Tracking, KeepsEverySurveyByItself)
{
    SensorLine line;
    std::set<std::wstring> sections;
    for (const SurveyKind& kind : AllSurveys()) {
        sections.insert(SectionOf(kind));
        CGPSPrm parameters(line.roots);
        ResetTracking(parameters, kind);
        parameters.SetSvEpochData(static_cast<int>(sections.size()) + 100);
        parameters.SetPDOPMaskData(4.5);
        parameters.SetMSASData(1);
        parameters.SetElMaskData(60);
        ASSERT_EQ(SaveTracking(line.reg, kind, parameters), 1);
    }
    EXPECT_EQ(sections.size(), 13U) << "no two share a section";
    SignalSet chosen;
    chosen.Set(Signal::L2c, true);
    ASSERT_EQ(SaveSignals(line.reg, 3017, chosen), 1);
    const auto loaded = [&line](const SurveyKind& kind, std::uint32_t typeNumber) {
        CGPSPrm parameters(line.roots);
        LoadTracking(line.reg, kind, typeNumber, parameters);
        EXPECT_EQ(parameters.GetSurveyType(), kind.surveyType);
        EXPECT_EQ(parameters.GetIntervalData(), kind.isPost ? 15 : 1);
        std::ostringstream words;
        words << parameters.GetSvEpochData() << " epochs, PDOP " << parameters.GetPDOPMaskData(1)
              << ", MSAS " << parameters.GetMSASData() << ", mask " << parameters.GetElMaskData()
              << ", L2C " << parameters.GetL2CData() << ", GLONASS " << parameters.GetGLONASSData()
              << ", " << parameters.GetMinSVsData() << " satellites";
        return words.str();
    };
    int epochs = 100; // the receiver's signals are those of every survey
    for (const SurveyKind& kind : AllSurveys()) {
        EXPECT_EQ(loaded(kind, 3017),
                  std::to_string(++epochs) +
                      " epochs, PDOP 4.5, MSAS 1, mask 60, L2C 1, GLONASS 0, 5 satellites");
    }
    // What nobody can have chosen is what a new user has.
    const SurveyKind& kind = AllSurveys().front();
    const std::wstring key = std::wstring(L"GPS\\Tracking\\") + SectionOf(kind);
    for (const wchar_t* const name : {L"Interval", L"ElMask", L"SvEpoch", L"MinSVs", L"MSAS"}) {
        line.reg.WriteNumber(key, name, 7777777);
    }
    line.reg.WriteNumber(key, L"ElMask", 55);
    line.reg.WriteString(key, L"PDOPMask", L"inf");
    EXPECT_EQ(loaded(kind, 0),
              "10 epochs, PDOP 7, MSAS 0, mask 15, L2C 0, GLONASS 0, 5 satellites");

    EXPECT_EQ(LoadSurvey(line.reg), 0U) << "of a new user";
    ASSERT_EQ(SaveSurvey(line.reg, 9), 1);
    EXPECT_EQ(LoadSurvey(line.reg), 9U);
    line.reg.WriteString(L"GPS\\Tracking", L"Survey", L"nonsense");
    EXPECT_EQ(LoadSurvey(line.reg), 0U);
}

} // namespace
} // namespace fieldcore
