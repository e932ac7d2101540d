#pragma once

#include "core/host/Host.h"
#include "core/settings/HostReg.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

/// One way to measure the height of an antenna: from the mark on the ground to some point of the
/// antenna. Where that point is, seen from the axis of the antenna and from its phase centre.
struct AntennaMethod
{
    double radiusM = 0.0;   ///< R, horizontal distance of the point from the axis
    double verticalM = 0.0; ///< V, height of the phase centre above the point
    std::wstring name{};
};

/// A method as the catalogue has it: R, V, a number that does not count, and the name in double
/// quotes, with commas between. A number that is missing or not finite is 0, a missing name empty;
/// a comma ends a field, within the quotes too. A name without quotes is taken as it stands.
[[nodiscard]] AntennaMethod ParseAntennaMethod(std::wstring_view text);

/// How a measured height became a vertical one.
enum class AntennaReduction
{
    None,    ///< it is vertical, and used as it is
    Unknown, ///< used as it is, too: the catalogue does not have its method
    Upright, ///< measured straight up to a point on the axis: V is added
    Slant,   ///< the slant distance to a point off the axis
    TooShort ///< a slant distance that is not longer than the radius: taken for an upright one
};

/// A height as it was measured, and what it was reduced to.
struct AntennaHeight
{
    double measuredM = 0.0; ///< H
    double verticalM = 0.0; ///< from the mark to the phase centre
    double squareM2 = 0.0;  ///< H * H - R * R; 0 if nothing was reduced
    AntennaMethod method;   ///< that was used; R = V = 0 if nothing was reduced
    AntennaReduction reduction = AntennaReduction::None;

    /// Whether a method was used.
    [[nodiscard]] bool IsReduced() const
    {
        return reduction != AntennaReduction::None && reduction != AntennaReduction::Unknown;
    }
};

/// Vertical height: sqrt(H * H - R * R) + V, by Pythagoras on the slant distance H; H + V where
/// the root is not of a positive number. Not contracted: the same bits on every machine.
/// @param measuredM  H, metres; one that is no number gives no number
[[nodiscard]] AntennaHeight ReduceAntennaHeight(double measuredM, const AntennaMethod& method);

/// @param folder  the program's folder
[[nodiscard]] std::filesystem::path AntennaFilePath(const std::filesystem::path& folder);

/// What a catalogue file is known by: the local time of its last change and its size,
/// "2026/1/9 08:05:03 2048"; "00/00/00 00:00:00 0" for one that cannot be read.
[[nodiscard]] std::wstring AntennaFileStamp(const std::filesystem::path& folder);

/// One type of antenna as the catalogue file describes it; texts as they stand there.
struct AntennaFileType
{
    std::wstring name;
    std::wstring charCode;
    std::wstring code;
    std::vector<std::wstring> methods;
};

/// The types of a catalogue file, in its order. Any bytes may be given to it. It is gone through
/// twice, however many types and methods it has.
/// @param bytes  a profile file: code page 932, or UTF-8 or UTF-16 with a byte order mark
[[nodiscard]] std::vector<AntennaFileType> ReadAntennaFile(std::string bytes);

/// The bytes of the catalogue that comes with the program, core/equipment/GAntenna.ini.
[[nodiscard]] std::span<const std::uint8_t> SampleAntennas();
/// Writes the catalogue that comes with the program, if there is no catalogue file yet.
/// @return 1 if a file is there now, else 0
int InstallSampleAntennas(const std::filesystem::path& folder);

/// A type of antenna.
struct AntennaType
{
    std::wstring name;
    std::wstring charCode; ///< what receivers call it; two blanks if it has none
    long code = 0;
};

/// The antennas that there are: the text file "GAntenna.ini" of the program's folder and the copy
/// of it in the settings, from which all is read. See docs/antenna.md for the file.
///
/// Types count from 0 and so do their methods. The settings keep method m of type n under m and n
/// written one behind the other: where that is the same for two of them, as for 1 of 11 and 11 of
/// 1, the one of the later type counts for both.
///
/// One thread at a time, together with all others that use the same roots.
class AntennaCatalogue
{
public:
    /// How many types of antennas a catalogue has at most.
    static constexpr int kMaxTypes = 64;
    static constexpr int kMaxMethods = 64; ///< of a type
    /// Below HostBasePath().
    static constexpr const wchar_t* kKey = L"GPS\\Antenna\\List";

    /// That of the program's folder. @param roots  must outlive the object
    explicit AntennaCatalogue(SettingsRoots& roots);

    /// Brings the settings up to date if the file is not the one that they were made of: its stamp
    /// is another, or its FileIdentity(), which sees what happens within a second. They change as a
    /// whole or not at all. A file of more than 16 MB has no antennas.
    /// @param host  shows its wait cursor meanwhile
    /// @return 0 if the settings could not be written: they are as before
    int Update(Host& host = DefaultHost());

    /// The number of types, 0 to kMaxTypes.
    [[nodiscard]] int GetMaxCount() const;

    /// @return nothing if there is no such type
    [[nodiscard]] std::optional<AntennaType> Type(int type) const;

    /// @return nothing if there is no such method, or it is empty
    [[nodiscard]] std::optional<AntennaMethod> Method(int type, int method) const;

    /// How many methods a type has, counted to the first that is not there.
    [[nodiscard]] int MethodCount(int type) const;

    /// The first type of that code.
    [[nodiscard]] std::optional<int> FindCode(long code) const;
    /// The first type that receivers call @p charCode, blanks at its end not counted. Blank codes
    /// are nobody's.
    [[nodiscard]] std::optional<int> FindCharCode(std::wstring_view charCode) const;

private:
    [[nodiscard]] std::wstring Read(const wchar_t* name, int type) const;
    /// The first type that has such a value.
    template <typename IsIt>
    [[nodiscard]] std::optional<int> Find(const wchar_t* name, IsIt isIt) const;

    const std::filesystem::path m_folder;
    HostReg m_reg; // opens keys, and makes none
};

} // namespace fieldcore
