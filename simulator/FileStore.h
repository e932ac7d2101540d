#pragma once

#include "simulator/Frame.h"
#include "simulator/ReceiverFile.h"
#include "simulator/Scenario.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace fieldcore::simulator {

/// The receiver's memory for files: what is in it, and what deleting and recovering do to that.
/// Firmware before 3.7 moves a deleted file to the recycle bin, where a Lark gives it another
/// extension; 3.7 and later delete it for good. One thread.
class FileStore
{
public:
    struct Entry
    {
        ReceiverFile file;
        std::uint16_t index = 0; ///< by which a Pica names it; never kNoIndex
    };

    /// Controllers send this index when they do not find a file.
    static constexpr std::uint16_t kNoIndex = 255;

    explicit FileStore(const Scenario& scenario);

    [[nodiscard]] const std::vector<Entry>& Entries() const { return m_entries; }
    /// A file that is not in the recycle bin; null if there is none.
    [[nodiscard]] const ReceiverFile* Find(std::string_view name) const;
    [[nodiscard]] std::vector<ReceiverFile> Matching(std::string_view pattern) const;

    // All of them: false is a NAK, and nothing has changed.
    [[nodiscard]] bool Delete(std::uint16_t index);
    [[nodiscard]] bool Delete(std::string_view name);
    [[nodiscard]] bool Recover(std::uint16_t index);
    [[nodiscard]] bool Recover(std::string_view name);

    /// Free memory, tenths, 0 to 10.
    [[nodiscard]] int FreeTenths() const;

private:
    using Place = std::vector<Entry>::iterator;

    template <typename Predicate>
    Place FindIf(Predicate predicate);
    [[nodiscard]] Place FindName(std::string_view name, bool deleted);
    [[nodiscard]] bool DeleteAt(Place place);
    [[nodiscard]] bool RecoverAt(Place place);
    [[nodiscard]] std::int64_t UsedBytes() const;

    const bool m_isPica;
    const bool m_hasBin;
    const std::int64_t m_capacity; // bytes
    std::vector<Entry> m_entries;
    std::int64_t m_other = 0; // bytes that no file of ours uses
};

} // namespace fieldcore::simulator
