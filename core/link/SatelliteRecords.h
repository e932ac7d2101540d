#pragma once

#include "core/link/LayoutReader.h"
#include "core/link/SatelliteReplies.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace fieldcore {

/// Goes through a satellite list, reply 0x17, record by record. A view, as FrameReader is.
class SatelliteRecords
{
public:
    /// @param prefix  as FrameLayouts() has it: empty for a list in a single frame
    SatelliteRecords(FrameReader frame, std::string_view prefix);

    /// Whether this is such a list. If not, it has no records.
    [[nodiscard]] bool Fits() const { return m_in.Fits(); }
    // Of a list in several frames:
    [[nodiscard]] int FrameNumber() const { return m_frameNumber; }
    [[nodiscard]] bool IsLast() const { return m_last == 1; }

    /// From the first data byte to the next record.
    [[nodiscard]] std::size_t Offset() const { return m_in.Offset(); }
    /// @return nothing behind the last record, or if the data end in the next one
    std::optional<ListedSatellite> Next();
    /// Whether the records that were read were there as a whole.
    [[nodiscard]] bool IsComplete() const { return m_in.IsComplete(); }

private:
    void ReadText(ListedSatellite& satellite);
    void ReadBinary(ListedSatellite& satellite);

    LayoutReader m_in;
    int m_frameNumber = 0;
    int m_last = 0;
    int m_left = 0; // records
    std::uint8_t m_format = 0;
    bool m_isText = false;
};

} // namespace fieldcore
