#include "core/link/ReceiverTypes.h"

#include <algorithm>
#include <array>

namespace fieldcore {

namespace {

using enum ReceiverFamily;

constexpr double kNeverSupported = 9.99;

constexpr std::array kTypes{
    ReceiverType{2010, Oldest, true, 1.0, nullptr},
    ReceiverType{2020, Oldest, true, 1.0, nullptr},
    ReceiverType{2030, Oldest, true, 1.3, nullptr},
    ReceiverType{2040, Oldest, false, kNeverSupported, nullptr},
    ReceiverType{2050, Oldest, false, kNeverSupported, nullptr},
    ReceiverType{3010, Pica, true, 1.23, nullptr},
    ReceiverType{3011, Lark, true, 1.0, nullptr},
    ReceiverType{3012, Lark, true, 1.0, L"Corvane VX1 GNSS"},
    ReceiverType{3015, Lark, true, 1.0, L"Corvane VX5"},
    ReceiverType{3017, Lark, true, 1.0, L"Corvane VX1"},
    ReceiverType{3020, Pica, true, 2.03, nullptr},
    ReceiverType{3021, Lark, true, 1.0, nullptr},
    ReceiverType{3022, Lark, true, 1.0, L"Corvane VX2 GNSS"},
    ReceiverType{3024, Lark, true, 1.0, L"Corvane VX4"},
    ReceiverType{3026, Lark, true, 1.0, L"Corvane VX3"},
    ReceiverType{3028, Lark, true, 2.03, L"Corvane VX2"},
    ReceiverType{3030, Lark, true, 1.0, L"Corvane VX7"},
    ReceiverType{3032, Lark, true, 1.0, L"Corvane VX8"},
    ReceiverType{3034, Lark, true, 1.0, L"Corvane VX4"},
    ReceiverType{3036, Lark, true, 1.0, L"Corvane VX3"},
    ReceiverType{3038, Lark, true, 1.0, L"Corvane VX4"},
    ReceiverType{3040, Lark, true, 1.0, L"Corvane VX3"},
    ReceiverType{3042, Lark, true, 1.0, L"Corvane VX3"},
    ReceiverType{3044, Lark, true, 1.0, L"Corvane VX2 GNSS"},
    ReceiverType{3046, Lark, true, 1.0, L"Corvane VX2s"},
    ReceiverType{3050, Lark, true, 1.0, L"Corvane BaseVX6"},
    ReceiverType{3051, Lark, true, 1.0, L"Corvane VX9s"},
};

struct TypeCode
{
    std::uint8_t code;
    std::uint32_t number;
};

constexpr std::array kTypeCodes{
    TypeCode{1, 2010},   TypeCode{2, 2010},   TypeCode{3, 2010},   TypeCode{4, 2010},
    TypeCode{5, 2010},   TypeCode{6, 2050},   TypeCode{7, 2020},   TypeCode{8, 2010},
    TypeCode{9, 2040},   TypeCode{24, 2030},  TypeCode{27, 3020},  TypeCode{31, 3017},
    TypeCode{' ', 3028}, TypeCode{',', 3022}, TypeCode{'0', 3034}, TypeCode{'2', 3012},
    TypeCode{'3', 3026}, TypeCode{'4', 3044}, TypeCode{'5', 3036}, TypeCode{'@', 3021},
    TypeCode{'E', 3011}, TypeCode{'G', 3022}, TypeCode{'L', 3050}, TypeCode{'P', 3040},
    TypeCode{'d', 3030}, TypeCode{'r', 3024}, TypeCode{'s', 3015}, TypeCode{136, 3046},
    TypeCode{151, 3042}, TypeCode{152, 3038}, TypeCode{168, 3051},
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
    return row != kTypes.end() ? row : nullptr;
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
    const auto* row = std::ranges::find(kTypeCodes, typeCode, &TypeCode::code);
    return row != kTypeCodes.end() ? row->number : kOtherCodes;
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
