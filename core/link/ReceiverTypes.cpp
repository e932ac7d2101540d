#include "core/link/ReceiverTypes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace fieldcore {

namespace {

using enum ReceiverFamily;

constexpr double kNeverSupported = 9.99;

constexpr ReceiverType kTypes[] = {
    {2010, Oldest, true, 1.0, nullptr},
    {2020, Oldest, true, 1.0, nullptr},
    {2030, Oldest, true, 1.3, nullptr},
    {2040, Oldest, false, kNeverSupported, nullptr},
    {2050, Oldest, false, kNeverSupported, nullptr},
    {3010, Pica, true, 1.23, nullptr},
    {3011, Lark, true, 1.0, nullptr},
    {3012, Lark, true, 1.0, L"Corvane VX1 GNSS"},
    {3015, Lark, true, 1.0, L"Corvane VX5"},
    {3017, Lark, true, 1.0, L"Corvane VX1"},
    {3020, Pica, true, 2.03, nullptr},
    {3021, Lark, true, 1.0, nullptr},
    {3022, Lark, true, 1.0, L"Corvane VX2 GNSS"},
    {3024, Lark, true, 1.0, L"Corvane VX4"},
    {3026, Lark, true, 1.0, L"Corvane VX3"},
    {3028, Lark, true, 2.03, L"Corvane VX2"},
    {3030, Lark, true, 1.0, L"Corvane VX7"},
    {3032, Lark, true, 1.0, L"Corvane VX8"},
    {3034, Lark, true, 1.0, L"Corvane VX4"},
    {3036, Lark, true, 1.0, L"Corvane VX3"},
    {3038, Lark, true, 1.0, L"Corvane VX4"},
    {3040, Lark, true, 1.0, L"Corvane VX3"},
    {3042, Lark, true, 1.0, L"Corvane VX3"},
    {3044, Lark, true, 1.0, L"Corvane VX2 GNSS"},
    {3046, Lark, true, 1.0, L"Corvane VX2s"},
    {3050, Lark, true, 1.0, L"Corvane BaseVX6"},
    {3051, Lark, true, 1.0, L"Corvane VX9s"},
};

/// Type codes of the options, and the type numbers that they stand for.
using TypeCode = std::pair<std::uint8_t, std::uint32_t>;
constexpr TypeCode kTypeCodes[] = {
    {1, 2010},   {2, 2010},   {3, 2010},   {4, 2010},   {5, 2010},   {6, 2050},   {7, 2020},
    {8, 2010},   {9, 2040},   {24, 2030},  {27, 3020},  {31, 3017},  {' ', 3028}, {',', 3022},
    {'0', 3034}, {'2', 3012}, {'3', 3026}, {'4', 3044}, {'5', 3036}, {'@', 3021}, {'E', 3011},
    {'G', 3022}, {'L', 3050}, {'P', 3040}, {'d', 3030}, {'r', 3024}, {'s', 3015}, {136, 3046},
    {151, 3042}, {152, 3038}, {168, 3051},
};
constexpr std::uint32_t kOtherCodes = 3010;
constexpr std::uint16_t kModelWordOf3032 = 310;

} // namespace

std::span<const ReceiverType> AllReceiverTypes()
{
    return kTypes;
}

const ReceiverType* FindReceiverType(std::uint32_t number)
{
    const auto* row = std::ranges::find(kTypes, number, &ReceiverType::number);
    return row != std::end(kTypes) ? row : nullptr;
}

double MinimumNavVersion(std::uint32_t typeNumber)
{
    const ReceiverType* type = FindReceiverType(typeNumber);
    return type != nullptr ? type->minimumNav : kNeverSupported;
}

std::uint32_t TypeNumberOfCode(std::uint8_t typeCode, std::uint16_t modelWord)
{
    if (typeCode == 0 && modelWord == kModelWordOf3032) {
        return 3032;
    }
    const auto* row = std::ranges::find(kTypeCodes, typeCode, &TypeCode::first);
    return row != std::end(kTypeCodes) ? row->second : kOtherCodes;
}

void SupportedTypeFlags::Set(std::uint32_t typeNumber, int flag)
{
    const ReceiverType* type = FindReceiverType(typeNumber);
    if (type != nullptr && type->canBeSupported) {
        m_flags[typeNumber] = flag;
    }
}

int SupportedTypeFlags::Get(std::uint32_t typeNumber) const
{
    const auto flag = m_flags.find(typeNumber);
    return flag != m_flags.end() ? flag->second : 0;
}

void SupportedTypeFlags::SetAll()
{
    for (const ReceiverType& type : kTypes) {
        Set(type.number, 1);
    }
}

} // namespace fieldcore
