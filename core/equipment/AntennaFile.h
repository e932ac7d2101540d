#pragma once

#include <string>
#include <vector>

namespace fieldcore {

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

} // namespace fieldcore
