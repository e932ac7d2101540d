#include "core/platform/PortNames.h"

#include "core/platform/FolderEntries.h"
#include "core/platform/NumberText.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestName = 4095; // the system takes no longer path

constexpr std::string_view kBlanks = " \t";

char AsciiUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// @param prefix  in capitals
bool StartsWithAnyCase(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char want, char have) { return want == AsciiUpper(have); });
}

bool HasControlCharacter(std::string_view text)
{
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; });
}

std::string_view WithoutBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The number of "3" or "3:", nothing if it is no COM number.
std::optional<int> ComNumberOf(std::string_view text)
{
    if (text.ends_with(':')) {
        text.remove_suffix(1);
    }
    const std::optional<int> number = NumberOf<int>(text);
    return number && *number >= 1 && *number <= PortNames::kMaxCom ? number : std::nullopt;
}

/// The device itself, behind all links; the path as it is if there is nothing.
fs::path Resolved(const fs::path& path)
{
    std::error_code error;
    fs::path resolved = fs::canonical(path, error);
    return error ? path : resolved;
}

PortNameResult Fault(PortNameFault why, std::string text)
{
    return {std::nullopt, why, std::move(text)};
}

PortNameResult Found(NamedPort port)
{
    return {std::move(port), PortNameFault::None, {}};
}

} // namespace

PortNames::PortNames(SystemRoots roots) : m_roots(std::move(roots)) {}

bool PortNames::Assign(int com, const std::string& path)
{
    if (com < 1 || com > kMaxCom || !fs::path(path).is_absolute()) {
        return false;
    }
    m_assigned[com] = StablePath(path);
    return true;
}

std::string PortNames::DevicePath(int com) const
{
    const auto assigned = m_assigned.find(com);
    return assigned != m_assigned.end()
               ? assigned->second
               : (m_roots.dev / ("ttyS" + std::to_string(com - 1))).string();
}

std::optional<int> PortNames::ComNumber(const std::string& path) const
{
    const fs::path device = Resolved(path);
    for (const auto& [com, assigned] : m_assigned) {
        if (Resolved(assigned) == device) {
            return com;
        }
    }
    constexpr std::string_view kBuiltIn = "ttyS";
    const std::string name = device.filename().string();
    const std::optional<int> place =
        name.starts_with(kBuiltIn) ? NumberOf<int>(std::string_view(name).substr(kBuiltIn.size()))
                                   : std::nullopt;
    if (!place || *place < 0 || *place >= kMaxCom) {
        return std::nullopt;
    }
    const int com = *place + 1;
    return Resolved(DevicePath(com)) == device ? std::optional<int>(com) : std::nullopt;
}

PortNameResult PortNames::Parse(std::string_view name) const
{
    constexpr std::string_view kCom = "COM";
    constexpr std::string_view kSimulator = "SIM:";

    if (name.size() > kLongestName) {
        return Fault(PortNameFault::TooLong, "The port name is too long.");
    }
    if (HasControlCharacter(name)) {
        return Fault(PortNameFault::ControlCharacter, "The port name holds a control character.");
    }
    name = WithoutBlanks(name);
    if (name.empty()) {
        return Fault(PortNameFault::Empty,
                     "No port is named. Write COM1, a path such as /dev/ttyUSB0, or sim: for the "
                     "simulator.");
    }
    if (StartsWithAnyCase(name, kSimulator)) {
        return Found({PortKind::Simulator, "", std::string(name.substr(kSimulator.size()))});
    }
    if (name.find('/') != std::string_view::npos) {
        return Found({PortKind::Device, std::string(name), ""});
    }
    if (StartsWithAnyCase(name, kCom)) {
        if (const std::optional<int> com = ComNumberOf(name.substr(kCom.size()))) {
            return Found({PortKind::Device, DevicePath(*com), "", *com});
        }
        return Fault(PortNameFault::NoComNumber,
                     "\"" + std::string(name) +
                         "\" is no port: COM is followed by a number from 1 to " +
                         std::to_string(kMaxCom) + ".");
    }
    return Fault(
        PortNameFault::Unknown,
        "\"" + std::string(name) +
            "\" is no port name. Write COM1, a whole path such as /dev/ttyUSB0, or sim: for the "
            "simulator.");
}

std::string PortNames::StablePath(const std::string& path) const
{
    const fs::path device = Resolved(path);
    std::error_code error;
    std::string stable;
    // An adapter can have two names there; the first in the alphabet is always the same one.
    for (const fs::path& at : FolderEntries(m_roots.dev / "serial/by-id", error)) {
        const std::string name = at.string();
        if (Resolved(name) == device && (stable.empty() || name < stable)) {
            stable = name;
        }
    }
    return stable.empty() ? path : stable;
}

} // namespace fieldcore
