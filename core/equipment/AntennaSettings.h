#pragma once

#include "core/equipment/AntennaCatalogue.h"
#include "core/platform/Assign.h"
#include "core/settings/HostReg.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace fieldcore {

class CCommand;
class KnownSetting;

/// The greatest height that is taken, metres: no pole and no tripod is higher, and a height in
/// centimetres is found out.
inline constexpr double kHighestAntennaM = 100.0;
inline constexpr std::size_t kMaxAntennaSerial = 16; ///< characters

/// @param text  a number of metres
/// @return what is wrong with it, in a few words for beside the text; empty: nothing
[[nodiscard]] std::wstring AntennaHeightFault(const std::wstring& text);

/// @param text  letters, digits and "-" of ASCII; may be empty
/// @return what is wrong with it, in words; empty: nothing
[[nodiscard]] std::wstring AntennaSerialFault(const std::wstring& text);

/// A block of an application file or of logged data; the layouts stand in docs/antenna.md.
struct ApplicationFileDataBlock
{
    std::uint8_t type = 0;
    std::span<const std::uint8_t> data; ///< must outlive the block
};

/// The antenna as such a block has it.
struct AntennaRecord
{
    static constexpr std::uint8_t kBlockType = 0x08;

    std::wstring charCode; ///< without blanks at its end
    std::wstring serial;   ///< as above
    int way = 0;           ///< 0: the height is vertical; else the method's number and 1
    double heightM = 0.0;  ///< as measured
};

/// @return nothing if it is a block of another type, too short, or says what cannot be
[[nodiscard]] std::optional<AntennaRecord> ParseAntennaBlock(const ApplicationFileDataBlock& block);

/// The last antenna in a row of blocks: it holds until the end. What follows a block that is cut
/// off is not looked at.
/// @return a view of @p blocks; nothing if no block has what ParseAntennaBlock() takes
[[nodiscard]] std::optional<ApplicationFileDataBlock>
FindAntennaBlock(std::span<const std::uint8_t> blocks);

/// What an antenna is used for: each has settings of its own.
enum class AntennaRole
{
    Reference,
    Rover,
    RoverSecond, ///< the rover's second form
};

/// The antenna in use, for other screens.
struct AntennaInfo
{
    int type = 0;
    int way = 0;
    AntennaType description; ///< empty if the catalogue does not have the type
    std::wstring methodName;
    AntennaHeight height;
    std::wstring serial;
};

/// The antenna of a station: type, the way in which its height was measured, the height, and the
/// serial number; kept in the settings for each role. Made and changed without a screen; CAntenna
/// is the dialog over it.
///
/// "AntType..." is a type's index in the catalogue, "AntWay..." 0 for a vertical height or a
/// method's index and 1. Operations answer 1 (done) or 0, setters 1 if the value changed. One
/// thread at a time, together with all others that use the same roots.
class AntennaSettings
{
public:
    /// How many heights and serial numbers are remembered.
    static constexpr int kRemembered = 10;

    /// @param command    channel to the receiver; not owned, may be null: then nothing is taken
    ///                   from it
    /// @param rover      0: reference station
    /// @param reConnect  see SetReConnect()
    AntennaSettings(CCommand* command, int rover, int reConnect);

    // The role.

    int SetRov(int rover) { return Assign(m_rover, rover != 0); }
    /// The rover's second form; wins over SetRov().
    int SetRovf(int second) { return Assign(m_second, second != 0); }
    [[nodiscard]] AntennaRole Role() const;
    void SetRole(AntennaRole role);

    // Values. A type or a way that the catalogue does not have is kept as it is, since any other
    // would be another antenna: it has no name and its height is not reduced. ChoiceFault() says
    // so.

    [[nodiscard]] int GetAntTypeFlag() const { return m_type; }
    int SetAntTypeFlag(int type);
    [[nodiscard]] int GetAntWayFlag() const { return m_way; }
    int SetAntWayFlag(int way) { return Assign(m_way, way); }
    /// What the user has to choose before the values are stored: a type, or a way to measure it.
    /// Without a catalogue no type can be chosen.
    /// @return string-table number of the request; 0: nothing
    [[nodiscard]] int ChoiceFault() const;
    /// Height as measured, metres; out of its range it becomes the nearest one.
    [[nodiscard]] double GetAntInputH() const { return m_inputM; }
    /// The same as text: three decimals, four where they are needed.
    [[nodiscard]] std::wstring GetAntInputStr() const;
    /// Rounded to 0.1 mm. What is no number is not taken.
    int SetAntInputH(double heightM);
    [[nodiscard]] const std::wstring& GetAntSN() const { return m_serial; }
    /// What is no serial number, see AntennaSerialFault(), is not taken.
    int SetAntSN(const std::wstring& serial);
    /// The number of the antenna: its type's code.
    [[nodiscard]] int GetAntNo() const;
    [[nodiscard]] const AntennaType& Type() const { return m_description; }
    /// Whether the receiver is asked for its antenna when the dialog opens: it was connected anew.
    [[nodiscard]] int GetReConnect() const { return m_reConnect ? 1 : 0; }
    int SetReConnect(int reConnect) { return Assign(m_reConnect, reConnect != 0); }

    // Settings.

    /// Brings the catalogue up to date, see AntennaCatalogue::Update(). Nothing else here does.
    int CheckReg() { return m_catalogue.Update(); }
    /// Type and way of the role, and what the catalogue says of the type.
    int ReadRegAntPrm();
    int WriteRegAntType() const;
    int WriteRegAntWay() const;
    /// All of the role: as above, with the height and serial number that were last used.
    int ReadRegAnt();
    /// Stores all of it together, height and serial number as the first of those remembered.
    int WriteRegAnt();

    /// Heights that were stored before, as texts, the last one first.
    [[nodiscard]] const std::vector<std::wstring>& RememberedHeights() const { return m_heights; }
    [[nodiscard]] const std::vector<std::wstring>& RememberedSerials() const { return m_serials; }

    // The catalogue.

    [[nodiscard]] int GetMaxCount() const { return m_catalogue.GetMaxCount(); }
    [[nodiscard]] const AntennaCatalogue& Catalogue() const { return m_catalogue; }
    /// @param name  left as it is on failure, when R and V become 0
    /// @return 0 if there is no such method
    int GetMeasMethod(int type, int method, double& radiusM, double& verticalM,
                      std::wstring& name) const;
    /// The vertical height of a measured one, metres; see ReduceAntennaHeight(). With way 0, and
    /// with a method that is not there, it is the measured one.
    [[nodiscard]] double GetAntCalcH(double measuredM, int type, int way) const;
    [[nodiscard]] double GetAntCalcH() const { return GetAntCalcH(m_inputM, m_type, m_way); }
    /// The same with all that led to it.
    [[nodiscard]] AntennaHeight Height(double measuredM, int type, int way) const;

    /// @return index of the type with that antenna number; -1 if there is none
    [[nodiscard]] int GetAntTypeFromAntNo(int number) const;
    /// @return the code of the type with that index; 0 if there is none
    [[nodiscard]] long GetAntTypeFromAntFlag(int type) const;
    /// @param receiverType  number of a receiver's type; an antenna that is built into it has it
    ///                      for a code
    /// @return index of the type; -1 if there is none
    [[nodiscard]] int GetInternalAntTypeFromRecvType(std::uint32_t receiverType) const;

    // For other screens. "Ex" reads what is stored for the role, whatever stands here.

    [[nodiscard]] std::wstring GetAntTypeStr() const { return m_description.name; }
    [[nodiscard]] std::wstring GetAntTypeStrEx() const;
    /// Name of a way: of the vertical height, of the antenna's base for a method without a name;
    /// empty if the catalogue does not have it.
    [[nodiscard]] std::wstring GetAntWayStr(int type, int way) const;
    [[nodiscard]] std::wstring GetAntWayStr() const { return GetAntWayStr(m_type, m_way); }
    /// Metres with three decimals; empty if none is stored.
    [[nodiscard]] std::wstring GetAntHEx() const;
    [[nodiscard]] double GetAntHExD() const; ///< 0 if none is stored
    /// Empty if the antenna has none, also where others are remembered.
    [[nodiscard]] std::wstring GetAntSNEx() const;
    /// @return 1 if a height is stored for the role
    [[nodiscard]] int GetAntFlag() const;
    /// @return GetAntFlag(); without a height all else is there
    int GetAntInfo(AntennaInfo& info) const;
    /// The height as measured and as reduced, in one line of words; "--" in place of a height that
    /// is not stored.
    [[nodiscard]] std::wstring GetAntLine() const;

    // The antenna from elsewhere. What is taken stands here, and is not stored yet. If the
    // catalogue does not have the antenna nothing changes.

    enum class Taken
    {
        Yes,
        NoAnswer,  ///< no connection, or no such data
        NotListed, ///< SourceCode() says what it is called
    };
    /// Type and serial number of the connected receiver's antenna; one that is built in is found
    /// by the receiver's own type. What cannot be a serial number counts as none.
    Taken TakeFromReceiver();
    /// The last antenna in logged data.
    int GetAntInfoFromLoggingData(std::span<const std::uint8_t> blocks);
    int SetAntInfo(const ApplicationFileDataBlock& block);
    /// What the last source called its antenna.
    [[nodiscard]] const std::wstring& SourceCode() const { return m_sourceCode; }

private:
    [[nodiscard]] const wchar_t* RoleName() const;
    /// The method of a way. A type that the catalogue does not have has none, although the values
    /// of its methods may be there under the name of another's.
    [[nodiscard]] std::optional<AntennaMethod> MethodOf(int type, int way) const;
    /// Those remembered, without what nobody could have typed.
    /// @param setting  the heights or the serial numbers
    [[nodiscard]] std::vector<std::wstring> ReadRemembered(KnownSetting setting) const;
    /// Stores those remembered with @p chosen as the first.
    /// @return false if not all of it could be stored
    [[nodiscard]] bool WriteList(KnownSetting setting, const std::wstring& chosen) const;

    CCommand* const m_command;
    HostReg m_reg;
    AntennaCatalogue m_catalogue;
    bool m_rover;
    bool m_second = false;
    bool m_reConnect;
    int m_type = 0;
    int m_way = 0;
    double m_inputM = 0.0;
    AntennaType m_description;
    std::wstring m_serial;
    std::wstring m_sourceCode;
    std::vector<std::wstring> m_heights;
    std::vector<std::wstring> m_serials;
};

} // namespace fieldcore
