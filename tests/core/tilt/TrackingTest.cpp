// Tracking parameters: the lists that they are chosen from, and how they are kept.

#include "core/tilt/TrackingSettings.h"

#include "core/input/EntryList.h"
#include "core/input/Parts.h"
#include "tests/core/tilt/SensorLine.h"

#include <functional>
#include <limits>
#include <set>
#include <string>

namespace fieldcore {
namespace {

using testing::SensorLine;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

TEST(PartsLists, ConvertPlacesAndValues)
{
    struct Row
    {
        int (*rule)(int);
        int given;
        int expected;
    };
    const Row rows[] = {
        {CParts::ConvElMaskFlag2Data, 0, 0},        {CParts::ConvElMaskFlag2Data, 10, 50},
        {CParts::ConvElMaskFlag2Data, 11, 60},      {CParts::ConvElMaskFlag2Data, 14, 90},
        {CParts::ConvElMaskFlag2Data, 15, -1},      {CParts::ConvElMaskFlag2Data, kMost, -1},
        {CParts::ConvElMaskFlag2Data, -3, -15},     {CParts::ConvElMaskFlag2Data, kLeast, kLeast},
        {CParts::ConvElMaskData2Flag, 55, 10},      {CParts::ConvElMaskData2Flag, 50, 10},
        {CParts::ConvElMaskData2Flag, 90, 14},      {CParts::ConvElMaskData2Flag, 91, -1},
        {CParts::ConvElMaskData2Flag, 14, 2},       {CParts::ConvElMaskData2Flag, -4, 0},
        {CParts::ConvElMaskData2Flag, -5, -1},      {CParts::ConvIntervalFlag2Data, 4, 5},
        {CParts::ConvIntervalFlag2Data, 5, 10},     {CParts::ConvIntervalFlag2Data, 15, 60},
        {CParts::ConvIntervalFlag2Data, 16, -1},    {CParts::ConvIntervalFlag2Data, kMost, -1},
        {CParts::ConvIntervalData2Flag, 0, -1},     {CParts::ConvIntervalData2Flag, 5, 4},
        {CParts::ConvIntervalData2Flag, 6, 5},      {CParts::ConvIntervalData2Flag, 9, 5},
        {CParts::ConvIntervalData2Flag, 14, 5},     {CParts::ConvIntervalData2Flag, 15, 6},
        {CParts::ConvIntervalData2Flag, 60, 15},    {CParts::ConvIntervalData2Flag, 61, -1},
        {CParts::ConvIntervalData2Flag, kMost, -1}, {CParts::ConvIntervalData2Flag, kLeast, -1},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(rows[i].rule(rows[i].given), rows[i].expected) << "row " << i;
    }
    EXPECT_EQ(CParts::ConvMinSVsFlag2Data(2, 4), 6);
    EXPECT_EQ(CParts::ConvMinSVsData2Flag(6, 4), 2);
    EXPECT_EQ(CParts::ConvMinSVsFlag2Data(kMost, 1), kMost);
    EXPECT_EQ(CParts::ConvMinSVsData2Flag(kLeast, 1), kLeast);
}

class RecordedList final : public TextList
{
public:
    void Insert(int position, std::wstring_view text) override
    {
        EXPECT_EQ(position, static_cast<int>(texts.size()));
        texts.emplace_back(text);
    }
    std::vector<std::wstring> texts;
};

TEST(PartsLists, FillLists)
{
    struct Row
    {
        const char* fault;
        std::function<void(TextList&)> fill;
        std::size_t count;
        std::size_t place;
        const wchar_t* text;
    };
    const Row rows[] = {
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
        {"none",
         [](TextList& l) {
             CParts::SetComboBoxStr(l, -1, L"", 0);
             l.Insert(0, L"x");
         },
         1, 0, L"x"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        RecordedList list;
        row.fill(list);
        ASSERT_EQ(list.texts.size(), row.count);
        EXPECT_EQ(list.texts[row.place], row.text);
    }
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
    EXPECT_EQ(parameters.SetGalileoData(1), 1);
    EXPECT_EQ(parameters.SetGalileoData(1), 0);
    EXPECT_EQ(parameters.SetSurveyType(2, 1), 1);
    EXPECT_EQ(parameters.SetSurveyType(4096, 1), 1) << "another type of the same rover";
    EXPECT_EQ(parameters.SetSurveyType(4096, 1), 0);
    CGPSPrm copy(parameters);
    EXPECT_EQ(copy.GetSurveyType(), 4096U);
    copy.SetGalileoData(0);
    copy = parameters;
    EXPECT_EQ(copy.GetGalileoData(), 1);
    EXPECT_EQ(copy.Reg().WriteNumber(L"GPS", L"x", 1), 1) << "at the library's own key";
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
    int epochs = 100;
    for (const SurveyKind& kind : AllSurveys()) {
        CGPSPrm parameters(line.roots);
        LoadTracking(line.reg, kind, 3017, parameters);
        EXPECT_EQ(parameters.GetSvEpochData(), ++epochs);
        EXPECT_EQ(parameters.GetPDOPMaskData(1), 4.5);
        EXPECT_EQ(parameters.GetMSASData(), 1);
        EXPECT_EQ(parameters.GetL2CData(), 1) << "the receiver's choice is that of every survey";
        EXPECT_EQ(parameters.GetGLONASSData(), 0);
        EXPECT_EQ(parameters.GetElMaskData(), 60);
        EXPECT_EQ(parameters.GetSurveyType(), kind.surveyType);
    }
    // What nobody can have chosen is what a new user has.
    const SurveyKind& kind = AllSurveys().front();
    const std::wstring key = std::wstring(L"GPS\\Tracking\\") + SectionOf(kind);
    for (const wchar_t* const name : {L"Interval", L"ElMask", L"SvEpoch", L"MinSVs", L"MSAS"}) {
        line.reg.WriteNumber(key, name, 7777777);
    }
    line.reg.WriteNumber(key, L"ElMask", 55);
    line.reg.WriteString(key, L"PDOPMask", L"inf");
    CGPSPrm parameters(line.roots);
    LoadTracking(line.reg, kind, 0, parameters);
    EXPECT_EQ(parameters.GetIntervalData(), 1);
    EXPECT_EQ(parameters.GetElMaskData(), 15);
    EXPECT_EQ(parameters.GetSvEpochData(), 10);
    EXPECT_EQ(parameters.GetMinSVsData(), 5);
    EXPECT_EQ(parameters.GetMSASData(), 0);
    EXPECT_EQ(parameters.GetPDOPMaskData(1), 7.0);

    EXPECT_EQ(LoadSurvey(line.reg), 0U) << "of a new user";
    ASSERT_EQ(SaveSurvey(line.reg, 9), 1);
    EXPECT_EQ(LoadSurvey(line.reg), 9U);
    line.reg.WriteString(L"GPS\\Tracking", L"Survey", L"nonsense");
    EXPECT_EQ(LoadSurvey(line.reg), 0U);
}

} // namespace
} // namespace fieldcore
