#include "simulator/FileStore.h"

#include "simulator/FileNames.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr long kFirstWithoutBin = 370; // firmware, hundredths

bool IsDeleted(const FileStore::Entry& entry)
{
    return entry.file.state == FileState::Deleted;
}

} // namespace

FileStore::FileStore(const Scenario& scenario)
    : m_isPica(FamilyOf(scenario.typeNumber) == Family::Pica),
      m_hasBin(std::lround(scenario.navVersion * 100.0) < kFirstWithoutBin),
      m_capacity(std::int64_t{scenario.memoryMb} << 20U)
{
    std::uint16_t index = 0;
    for (ReceiverFile& file : FilesAtStart(scenario)) {
        index = static_cast<std::uint16_t>(index + 1);
        if (index == kNoIndex) {
            ++index;
        }
        m_entries.push_back({std::move(file), index});
    }
    if (scenario.freeMemoryTenths) {
        m_other = m_capacity * (10 - *scenario.freeMemoryTenths) / 10 - UsedBytes();
    }
}

std::int64_t FileStore::UsedBytes() const
{
    std::int64_t used = 0;
    for (const Entry& entry : m_entries) {
        used += entry.file.size;
    }
    return used;
}

int FileStore::FreeTenths() const
{
    const std::int64_t free = m_capacity - m_other - UsedBytes();
    const std::int64_t tenths = m_capacity == 0 ? 0 : free * 10 / m_capacity;
    return static_cast<int>(std::clamp<std::int64_t>(tenths, 0, 10));
}

template <typename Predicate>
FileStore::Place FileStore::FindIf(Predicate predicate)
{
    return std::find_if(m_entries.begin(), m_entries.end(), predicate);
}

FileStore::Place FileStore::FindName(std::string_view name, bool deleted)
{
    return FindIf(
        [&](const Entry& entry) { return entry.file.name == name && IsDeleted(entry) == deleted; });
}

const ReceiverFile* FileStore::Find(std::string_view name) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.file.name == name && !IsDeleted(entry);
    });
    return found == m_entries.end() ? nullptr : &found->file;
}

std::vector<ReceiverFile> FileStore::Matching(std::string_view pattern) const
{
    std::vector<ReceiverFile> files;
    for (const Entry& entry : m_entries) {
        if (FitsPattern(entry.file.name, pattern)) {
            files.push_back(entry.file);
        }
    }
    return files;
}

bool FileStore::Delete(std::uint16_t index)
{
    return DeleteAt(FindIf([&](const Entry& entry) { return entry.index == index; }));
}

bool FileStore::Delete(std::string_view name)
{
    const Place live = FindName(name, false);
    return DeleteAt(live != m_entries.end() ? live : FindName(name, true));
}

bool FileStore::DeleteAt(Place place)
{
    if (place == m_entries.end() || place->file.locked || place->file.state == FileState::Open) {
        return false;
    }
    std::optional<std::string> inBin;
    if (m_hasBin && !IsDeleted(*place)) {
        inBin = m_isPica ? place->file.name : NameInBin(place->file.name);
    }
    if (!inBin) {
        m_entries.erase(place);
        return true;
    }
    place->file.name = *inBin;
    if (!m_isPica) {
        // The recycle bin keeps one file of a name: the one that comes last.
        const Place older = FindName(*inBin, true);
        place->file.state = FileState::Deleted;
        if (older != m_entries.end()) {
            m_entries.erase(older);
        }
        return true;
    }
    place->file.state = FileState::Deleted;
    return true;
}

bool FileStore::Recover(std::uint16_t index)
{
    return RecoverAt(FindIf([&](const Entry& entry) { return entry.index == index; }));
}

bool FileStore::Recover(std::string_view name)
{
    return RecoverAt(FindName(name, true));
}

bool FileStore::RecoverAt(Place place)
{
    if (place == m_entries.end() || !IsDeleted(*place) || place->file.locked) {
        return false;
    }
    if (!m_isPica) {
        std::string name = NameOutOfBin(place->file.name);
        if (FindName(name, false) != m_entries.end()) {
            return false; // another file has taken its name
        }
        place->file.name = std::move(name);
    }
    place->file.state = FileState::Live;
    return true;
}

} // namespace fieldcore::simulator
