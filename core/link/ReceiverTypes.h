#pragma once

#include <cstdint>
#include <map>
#include <span>

namespace fieldcore {

/// Families of receivers, which differ in their file commands.
enum class ReceiverFamily
{
    Oldest,
    Pica,
    Lark,
};

/// One receiver model that the library knows by its type number.
struct ReceiverType
{
    std::uint32_t number;
    ReceiverFamily family;
    bool canBeSupported;  ///< a host may declare it acceptable
    double minimumNav;    ///< lowest navigation firmware version that is supported
    const wchar_t* model; ///< null: known by its number only
};

/// Every receiver in the table.
[[nodiscard]] std::span<const ReceiverType> AllReceiverTypes();

/// @return null for a number that is in no table
[[nodiscard]] const ReceiverType* FindReceiverType(std::uint32_t number);

/// Lowest navigation firmware version that is supported; 9.99 for an unknown type.
[[nodiscard]] double MinimumNavVersion(std::uint32_t typeNumber);

/// Type number of the type code that the options reply carries.
/// @param modelWord  tells apart the two models of code 0
[[nodiscard]] std::uint32_t TypeNumberOfCode(std::uint8_t typeCode, std::uint16_t modelWord);

/// Which receivers a host accepts. None at first.
class SupportedTypeFlags
{
public:
    /// Numbers that no host can support are ignored.
    void Set(std::uint32_t typeNumber, int flag);
    /// @return 0 for a number that no host can support
    [[nodiscard]] int Get(std::uint32_t typeNumber) const;
    /// Accepts every receiver that can be supported.
    void SetAll();

private:
    std::map<std::uint32_t, int> m_flags; // by type number
};

} // namespace fieldcore
