#include "core/equipment/AntennaInput.h"

#include "core/resources/StringTable.h"

#include <algorithm>
#include <optional>

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
    const std::optional<double> metres = TypedNumber(text);
    return !metres                       ? Text(text::kAntennaBadHeight)
           : *metres < 0.0               ? Text(text::kAntennaNegativeHeight)
           : *metres <= kHighestAntennaM ? std::wstring()
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
