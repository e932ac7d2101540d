#include "core/equipment/AntennaInput.h"

#include "core/input/Parts.h"
#include "core/resources/StringTable.h"

#include <algorithm>

namespace fieldcore {

namespace {

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

} // namespace

CCheck AntennaHeightCheck(Host& host)
{
    return {0.0, kHighestAntennaM, host};
}

std::wstring AntennaHeightFault(const std::wstring& text)
{
    const bool isNumber = CCheck().CheckNum(text, nullptr, 0, 0) == 1;
    if (!isNumber || std::none_of(text.begin(), text.end(), IsDigit)) {
        return Text(text::kAntennaBadHeight);
    }
    if (AntennaHeightCheck().CheckNum(text, nullptr, 0, 0) == 1) {
        return {};
    }
    return CParts::atof(text) < 0.0 ? Text(text::kAntennaNegativeHeight)
                                    : FormatText(text::kAntennaHighHeight, kHighestAntennaM);
}

std::wstring AntennaSerialFault(const std::wstring& text)
{
    const bool isGood =
        text.size() <= kMaxAntennaSerial && std::all_of(text.begin(), text.end(), [](wchar_t c) {
            return IsDigit(c) || c == L'-' || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
        });
    return isGood ? std::wstring()
                  : FormatText(text::kAntennaBadSerial, static_cast<int>(kMaxAntennaSerial));
}

} // namespace fieldcore
