#include "core/link/Identification.h"

#include "core/input/Parts.h"
#include "core/link/LayoutReader.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <limits>
#include <string>

namespace fieldcore {

namespace {

constexpr std::size_t kModelDigits = 4;

// What ends each field, in turn.
constexpr std::array<wchar_t, 12> kDelimiters{L',', L';', L',', L',', L',', L',',
                                              L',', L',', L',', L';', L',', L','};
using Fields = std::array<std::wstring, kDelimiters.size()>;

/// Takes the next field off @p text: delimiters in front of it are skipped, the one behind it
/// goes with it.
std::wstring NextField(std::wstring_view& text, wchar_t delimiter)
{
    text.remove_prefix(std::min(text.find_first_not_of(delimiter), text.size()));
    const std::size_t length = std::min(text.find(delimiter), text.size());
    std::wstring field(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
    return field;
}

std::uint32_t Number(const std::wstring& text)
{
    constexpr long long kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(
        std::clamp(std::wcstoll(text.c_str(), nullptr, 10), 0LL, kMost));
}

std::uint8_t ParityCode(wchar_t letter)
{
    return letter == L'E' ? 2 : letter == L'O' ? 1 : 0;
}

} // namespace

std::optional<IdentificationRecord> ParseIdentification(FrameReader frame)
{
    LayoutReader in(frame, 0x6E);
    if (!in.Fits()) {
        return std::nullopt;
    }
    std::wstring text;
    in.Read(text);
    std::wstring_view rest = text;
    Fields fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i] = NextField(rest, kDelimiters[i]);
        if (fields[i].empty()) {
            return std::nullopt;
        }
    }
    const std::uint32_t port = Number(fields[3]);
    const std::uint32_t byteSize = Number(fields[6]);
    if (port >= std::numeric_limits<std::uint8_t>::max() ||
        byteSize > std::numeric_limits<std::uint8_t>::max()) {
        return std::nullopt;
    }
    IdentificationRecord record;
    record.typeNumber = TypeNumberOfModel(fields[1]);
    record.port = static_cast<std::uint8_t>(port + 1);
    record.baudRate = Number(fields[4]);
    record.byteSize = static_cast<std::uint8_t>(byteSize);
    record.stopBits = Number(fields[7]) == 2 ? 2 : 0;
    record.parity = ParityCode(fields[8].front());
    record.flowControl = fields[9].front() != L'F';
    record.version = CParts::atof(fields[11]);
    return record;
}

std::uint32_t TypeNumberOfModel(std::wstring_view model)
{
    const std::wstring_view digits = model.substr(0, kModelDigits);
    const bool numeric =
        digits.size() == kModelDigits &&
        std::all_of(digits.begin(), digits.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
    if (numeric) {
        return Number(std::wstring(digits));
    }
    if (model == L"VX2") {
        return 3028;
    }
    if (model == L"VX1") {
        return 3017;
    }
    return model == L"VX1-GNSS" ? 3012 : 3010;
}

} // namespace fieldcore
