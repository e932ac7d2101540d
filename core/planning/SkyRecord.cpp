#include "core/planning/SkyRecord.h"

#include "core/planning/SkyLimits.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/ContentSum.h"
#include "core/platform/Degrees.h"
#include "core/platform/FolderEntries.h"
#include "core/platform/Folders.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <string_view>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMagic = "FCSKYREC";
constexpr std::uint32_t kVersion = 1;
constexpr const char* kEnding = ".sky";
constexpr double kPlaceSteps = 1e7; // in a degree
// Mark, version, place, rounds, time of the last one; the cells and the sum stand behind.
constexpr std::size_t kHead = kMagic.size() + 4 + 2 * 4 + 4 + 8;
constexpr std::size_t kSum = 8;

/// Little-endian, whatever the order of the machine.
template <typename Unsigned>
void Append(std::vector<std::uint8_t>& bytes, Unsigned value)
{
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

/// Takes the value off the front.
template <typename Unsigned>
Unsigned Take(std::span<const std::uint8_t>& bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(Unsigned); i-- > 0;) {
        value = value << 8U | bytes[i];
    }
    bytes = bytes.subspan(sizeof(Unsigned));
    return static_cast<Unsigned>(value);
}

std::int32_t PlaceSteps(double rad)
{
    return static_cast<std::int32_t>(std::lround(DegreesOf(rad) * kPlaceSteps));
}

/// Of one place always the same.
fs::path FileName(const Observer& place)
{
    return std::to_string(PlaceSteps(place.latitudeRad)) + '_' +
           std::to_string(PlaceSteps(place.longitudeRad)) + kEnding;
}

std::vector<fs::path> Files(const fs::path& folder)
{
    std::vector<fs::path> files;
    std::error_code ignored;
    std::ranges::copy_if(FolderEntries(SkyRecordsPath(folder), ignored), std::back_inserter(files),
                         [](const fs::path& file) { return file.extension() == kEnding; });
    return files;
}

} // namespace

SkyRecord::SkyRecord(const Observer& place)
    // As a file has it, so that a record is the same behind it.
    : m_place{RadiansOf(PlaceSteps(place.latitudeRad) / kPlaceSteps),
              RadiansOf(PlaceSteps(place.longitudeRad) / kPlaceSteps), 0.0}
{}

void SkyRecord::BeginNotes(Clock::UtcTime now)
{
    m_rounds += m_rounds < std::numeric_limits<std::uint32_t>::max() ? 1 : 0;
    m_lastNoted = std::chrono::floor<std::chrono::seconds>(now).time_since_epoch().count();
}

Clock::UtcTime SkyRecord::LastNoted() const
{
    return Clock::UtcTime(std::chrono::seconds(m_lastNoted));
}

std::optional<std::size_t> SkyRecord::IndexOf(const SkyDirection& direction)
{
    const double azimuthDeg = DegreesOf(NormalisedAzimuth(direction.azimuthRad));
    const double elevationDeg = DegreesOf(direction.elevationRad);
    if (!std::isfinite(azimuthDeg) || !(elevationDeg >= 0.0 && elevationDeg <= 90.0)) {
        return std::nullopt;
    }
    constexpr double kColumnDeg = 360.0 / kAzimuths;
    const auto column = static_cast<std::size_t>(azimuthDeg / kColumnDeg) % kAzimuths;
    const auto row = std::min<std::size_t>(static_cast<std::size_t>(elevationDeg), kElevations - 1);
    return column * kElevations + row;
}

void SkyRecord::Note(const SkyDirection& direction, std::uint8_t Counts::*count)
{
    const std::optional<std::size_t> index = IndexOf(direction);
    if (!index) {
        return;
    }
    Counts& cell = m_cells[*index];
    if (cell.*count == std::numeric_limits<std::uint8_t>::max()) {
        cell.tracked /= 2;
        cell.missed /= 2;
    }
    ++(cell.*count);
}

SkyRecord::Cell SkyRecord::At(int azimuth, int elevation) const
{
    const Counts& cell = m_cells[static_cast<std::size_t>(azimuth) * kElevations +
                                 static_cast<std::size_t>(elevation)];
    if (cell.tracked == 0 && cell.missed == 0) {
        return Cell::Unknown;
    }
    return cell.tracked > cell.missed ? Cell::Open : Cell::Hidden;
}

SkyRecord::Cell SkyRecord::At(const SkyDirection& direction) const
{
    const std::optional<std::size_t> index = IndexOf(direction);
    return index
               ? At(static_cast<int>(*index) / kElevations, static_cast<int>(*index) % kElevations)
               : Cell::Unknown;
}

std::vector<std::uint8_t> SkyRecord::Bytes() const
{
    std::vector<std::uint8_t> bytes(kMagic.begin(), kMagic.end());
    bytes.reserve(kHead + 2 * m_cells.size() + kSum);
    Append(bytes, kVersion);
    Append(bytes, static_cast<std::uint32_t>(PlaceSteps(m_place.latitudeRad)));
    Append(bytes, static_cast<std::uint32_t>(PlaceSteps(m_place.longitudeRad)));
    Append(bytes, m_rounds);
    Append(bytes, static_cast<std::uint64_t>(m_lastNoted));
    for (const Counts& cell : m_cells) {
        bytes.push_back(cell.tracked);
        bytes.push_back(cell.missed);
    }
    Append(bytes, ContentSum(bytes));
    return bytes;
}

std::optional<SkyRecord> SkyRecord::FromBytes(std::span<const std::uint8_t> bytes)
{
    SkyRecord record;
    if (bytes.size() != kHead + 2 * record.m_cells.size() + kSum ||
        !std::equal(kMagic.begin(), kMagic.end(), bytes.begin())) {
        return std::nullopt;
    }
    std::span<const std::uint8_t> sum = bytes.last(kSum);
    if (Take<std::uint64_t>(sum) != ContentSum(bytes.first(bytes.size() - kSum))) {
        return std::nullopt;
    }
    bytes = bytes.subspan(kMagic.size());
    if (Take<std::uint32_t>(bytes) != kVersion) {
        return std::nullopt;
    }
    const auto degrees = [&bytes] {
        return static_cast<std::int32_t>(Take<std::uint32_t>(bytes)) / kPlaceSteps;
    };
    record.m_place.latitudeRad = RadiansOf(degrees());
    record.m_place.longitudeRad = RadiansOf(degrees());
    record.m_rounds = Take<std::uint32_t>(bytes);
    record.m_lastNoted = static_cast<std::int64_t>(Take<std::uint64_t>(bytes));
    constexpr std::int64_t kEndOfTime = 253'402'300'800; // the year 10000
    if (std::abs(record.m_place.latitudeRad) > std::numbers::pi / 2 ||
        std::abs(record.m_place.longitudeRad) > std::numbers::pi || record.m_lastNoted < 0 ||
        record.m_lastNoted >= kEndOfTime) {
        return std::nullopt;
    }
    for (Counts& cell : record.m_cells) {
        cell.tracked = Take<std::uint8_t>(bytes);
        cell.missed = Take<std::uint8_t>(bytes);
    }
    return record;
}

double DistanceM(const Observer& a, const Observer& b)
{
    constexpr double kEarthM = 6'371'000.0;
    const double turn = std::remainder(b.longitudeRad - a.longitudeRad, 2.0 * std::numbers::pi);
    return kEarthM * std::hypot(b.latitudeRad - a.latitudeRad, turn * std::cos(a.latitudeRad));
}

fs::path SkyRecordsPath(const fs::path& folder)
{
    return folder / "SkyRecords";
}

SkyRecords LoadSkyRecords(const fs::path& folder)
{
    SkyRecords loaded;
    for (const fs::path& file : Files(folder)) {
        constexpr std::size_t kLongest = 1U << 20U;
        const auto content = ReadWholeFile(file, kLongest);
        if (!content) {
            continue; // it may be readable another time
        }
        if (const auto record = SkyRecord::FromBytes(*content)) {
            loaded.records.push_back(*record);
        } else if (const fs::path aside = SetFileAside(file); !aside.empty()) {
            loaded.setAside.push_back(aside.filename().string());
        }
    }
    std::ranges::sort(loaded.records, std::ranges::greater(), &SkyRecord::LastNoted);
    return loaded;
}

std::error_code SaveSkyRecord(const fs::path& folder, const SkyRecord& record)
{
    const fs::path records = SkyRecordsPath(folder);
    if (const std::error_code error = Folders::Create(records)) {
        return error;
    }
    const fs::path name = FileName(record.Place());
    const std::vector<std::uint8_t> bytes = record.Bytes();
    if (const std::error_code error =
            ReplaceFile(records / name, name.string() + ".new", std::as_bytes(std::span(bytes)))) {
        return error;
    }
    std::vector<fs::path> files = Files(folder);
    if (files.size() > kMostSkyRecords) {
        std::error_code ignored;
        std::ranges::sort(files, std::ranges::greater(), [&ignored](const fs::path& file) {
            return fs::last_write_time(file, ignored);
        });
        for (std::size_t i = kMostSkyRecords; i < files.size(); ++i) {
            fs::remove(files[i], ignored);
        }
    }
    return {};
}

} // namespace fieldcore
