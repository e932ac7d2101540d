#include "simulator/FileNames.h"

#include "simulator/Models.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fieldcore::simulator {

namespace {

constexpr int kSecondPica = 3020;

struct Renaming
{
    std::string_view live;
    std::string_view deleted;
};

// The newer extension .Q02 has no form of its own for a deleted file.
constexpr std::array kRenamings{Renaming{".Q00", ".Q0D"}, Renaming{".Q01", ".Q1D"}};

/// Whether the receiver makes files of the newer format: from firmware 4.43 on, but for the types
/// that never learnt it and for the code of type 3022 that always could.
bool HasNewerFormat(const Scenario& scenario)
{
    constexpr std::array kNever{3021, 3024, 3026, 3036, 3044};
    constexpr int kAlways = 71;  // type code
    constexpr long kSince = 443; // hundredths
    return scenario.options.fileNaming &&
           (scenario.typeCode == kAlways ||
            (std::lround(scenario.navVersion * 100.0) >= kSince &&
             std::find(kNever.begin(), kNever.end(), scenario.typeNumber) == kNever.end()));
}

std::string WithEnd(std::string_view name, std::string_view end)
{
    return std::string(name.substr(0, name.size() - end.size())) + std::string(end);
}

} // namespace

Family FamilyOf(int typeNumber)
{
    if (typeNumber == kFirstPica || typeNumber == kSecondPica) {
        return Family::Pica;
    }
    return typeNumber < kFirstPica ? Family::Oldest : Family::Lark;
}

std::string_view Extension(const Scenario& scenario, bool deleted)
{
    if (HasNewerFormat(scenario)) {
        return ".Q02";
    }
    const bool isFirst = scenario.navVersion >= 1.0 && scenario.navVersion < 2.0;
    const Renaming& renaming = kRenamings[isFirst ? 0 : 1];
    return deleted ? renaming.deleted : renaming.live;
}

std::string_view BaseName(std::string_view name)
{
    return name.substr(0, name.find('.'));
}

std::optional<std::string> NameInBin(std::string_view name)
{
    for (const Renaming& renaming : kRenamings) {
        if (name.ends_with(renaming.live)) {
            return WithEnd(name, renaming.deleted);
        }
    }
    return std::nullopt;
}

std::string NameOutOfBin(std::string_view name)
{
    for (const Renaming& renaming : kRenamings) {
        if (name.ends_with(renaming.deleted)) {
            return WithEnd(name, renaming.live);
        }
    }
    return std::string(name);
}

bool FitsPattern(std::string_view name, std::string_view pattern)
{
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos) {
        return name == pattern;
    }
    const std::string_view start = pattern.substr(0, star);
    if (!name.starts_with(start)) {
        return false;
    }
    const std::string_view rest = pattern.substr(star + 1);
    for (std::size_t from = start.size(); from <= name.size(); ++from) {
        if (FitsPattern(name.substr(from), rest)) {
            return true;
        }
    }
    return false;
}

} // namespace fieldcore::simulator
