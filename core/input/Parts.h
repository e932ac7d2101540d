#pragma once

#include "core/settings/HostReg.h"

#include <cstdint>
#include <string>

namespace fieldcore {

class EntryList;
class TextList;

/// Number text, the rounding that all screens share, the lists that tracking parameters are chosen
/// from, the names of the sections under which each survey type keeps its settings, and the entries
/// that lists remember. It has no state. The functions that use no settings may be called by any
/// thread.
class CParts
{
public:
    /// The number at the start of the text, by ParseReal(); 0.0 if there is none.
    [[nodiscard]] static double atof(const std::wstring& text);
    [[nodiscard]] static double atof(const wchar_t* text);

    /// Rounds half away from zero. The result is the double nearest to the decimal that a person
    /// would write: it goes through decimal text, and a rounded binary product would not do.
    ///
    /// @param decimals  digits behind the point
    /// @return magnitudes that scaled by 10^decimals reach 2^32 become (2^32 - 1) / 10^decimals;
    /// a negative value that rounds to zero is -0.0; NaN stays NaN
    [[nodiscard]] static double round(double value, std::uint8_t decimals);

    /// Text with @p decimals digits behind the point. The value is rounded to 3 decimals first,
    /// whatever number is asked for: 1.23456 with 5 is "1.23500".
    [[nodiscard]] static std::wstring Round(double value, std::uint8_t decimals);

    /// a - b, both rounded before and their difference after.
    [[nodiscard]] static double RoundNega(double a, double b, std::uint8_t decimals);

    /// The mean of a and b, both rounded before and the mean after.
    [[nodiscard]] static double RoundAve(double a, double b, std::uint8_t decimals);

    /// Section of a real-time survey type.
    /// @param surveyType  one flag: 1, 2, 4, 8, 32, 256, 512 or 4096; any other counts as 1
    /// @param rover  0: the reference station's section, whatever the type
    /// @return a constant of the library
    [[nodiscard]] static const wchar_t* GetRtkSec(std::uint32_t surveyType, int rover);

    /// Section of a post-processing survey type.
    /// @param surveyType  one flag: 1, 2, 4 or 8; any other counts as 1
    /// @return a constant of the library
    [[nodiscard]] static const wchar_t* GetPostSec(std::uint32_t surveyType);

    // Remembered entries. What was chosen is stored first, so that it comes back at the top, as the
    // texts PREFIX0, PREFIX1 and so on of one key; an empty or missing one ends the list. A setting
    // that cannot be written or read is no failure: all of these answer 1. An accessor of settings
    // starts at the library's own key.

    /// Puts a text at the top of the list, or selects it where it stands already, compared exactly.
    /// An empty text changes nothing.
    /// @param maxCount  how many are stored later; the list itself is not shortened
    static int StackComboList(EntryList& list, const std::wstring& text, int maxCount);

    /// Puts the stored entries into the list, in order, from its beginning.
    /// @param count  at most
    static int RegReadComboBoxList(EntryList& list, const CReg& reg, const std::wstring& key,
                                   const std::wstring& prefix, int count);
    /// Stores the selected entry and then the others. An empty one uses up its number; one that is
    /// too long to be read again, see CReg::kMaxText, is left out. Ends at the first that cannot be
    /// written.
    /// @param count  numbers at most; what is stored under higher ones stays
    static int RegWriteComboBoxList(const EntryList& list, const CReg& reg, const std::wstring& key,
                                    const std::wstring& prefix, int count);

    // The lists of the points: names, numbers and attributes.
    static int ReadRegPointName(EntryList& list, int count, const CReg& reg = HostReg());
    static int ReadRegPointNo(EntryList& list, int count, const CReg& reg = HostReg());
    static int ReadRegAttrib(EntryList& list, int count, const CReg& reg = HostReg());
    static int WriteRegPointName(const EntryList& list, int count, const CReg& reg = HostReg());
    static int WriteRegPointNo(const EntryList& list, int count, const CReg& reg = HostReg());
    static int WriteRegAttrib(const EntryList& list, int count, const CReg& reg = HostReg());

    /// The page of a dialog that was open last.
    /// @param read   not 0: @p value becomes what is stored, and stays if there is nothing; 0: it
    /// is
    ///               stored
    /// @param value  whatever was stored: not checked against the pages that there are
    static int SetRegActivePage(int read, int& value, const std::wstring& dialogName,
                                const CReg& reg = HostReg());

    // Places in lists, from 0, and the values that they stand for. Where there is none, -1.

    /// Elevation mask, degrees: 0, 5, 10 ... 50, 60 ... 90. A negative place goes on downwards in
    /// steps of 5.
    [[nodiscard]] static int ConvElMaskFlag2Data(int flag);
    /// A mask between two entries has the place of the lower one.
    [[nodiscard]] static int ConvElMaskData2Flag(int data);
    /// Recording interval: 1, 2, 3, 4, 5, 10, 15 ... 60. A negative place goes on downwards.
    [[nodiscard]] static int ConvIntervalFlag2Data(int flag);
    /// 6 to 9 have the place of 10; above, a value between two entries has that of the lower one.
    [[nodiscard]] static int ConvIntervalData2Flag(int data);
    /// Least number of satellites. @param base  the first entry. Sums beyond an int saturate.
    [[nodiscard]] static int ConvMinSVsFlag2Data(int flag, int base);
    [[nodiscard]] static int ConvMinSVsData2Flag(int data, int base);

    // Lists for these choices. Each text goes to the place that it stands for.

    static void SetElMaskStr(TextList& list);
    /// @param unit  0 seconds, else minutes
    static void SetIntervalStr(TextList& list, int unit);
    /// Numbers with a unit. @param base  the first one
    static void SetComboBoxStr(TextList& list, int count, const std::wstring& unit, int base);
    /// Six numbers of satellites from @p base on.
    static void SetMinSVsStr(TextList& list, int base);
    /// 0 to 23. @param flag  0 a duration, else hours of the day
    static void SetSvHourStr(TextList& list, int flag);
    /// 0 to 59 minutes.
    static void SetSvMinuteStr(TextList& list);
    /// Not to use, to use.
    static void SetSvEnableStr(TextList& list);
};

} // namespace fieldcore
