#include "core/planning/SkyRecorder.h"

#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacTime.h"
#include "core/platform/Degrees.h"
#include "core/platform/WholeFile.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kFirstFix = 2; // single
constexpr std::chrono::seconds kTogether{10};
/// Below this, dB-Hz, a satellite is hardly seen directly.
constexpr double kFaint = 30.0;
/// Some satellite reaches this with an antenna that is well.
constexpr double kWell = 40.0;
constexpr int kLeastTracked = 4;
/// An almanac of some weeks is better than this, and the receiver tells whole degrees.
constexpr double kFitsDeg = 4.0;
/// Of one satellite: more than a pass has.
constexpr std::size_t kMostWaiting = 1500;
constexpr int kKeepRounds = SkyRecorder::kKeepAfter / SkyRecord::kNoteInterval;

/// The strongest signal; 0 if none is told.
double Strength(const ListedSatellite& satellite)
{
    return std::max(*std::ranges::max_element(satellite.signals), 0.0);
}

bool IsFaint(const ListedSatellite& satellite)
{
    const double strength = Strength(satellite);
    return strength > 0.0 && strength < kFaint;
}

SkyDirection DirectionOf(const ListedSatellite& satellite)
{
    return {RadiansOf(satellite.azimuthDeg), RadiansOf(satellite.elevationDeg)};
}

double DegreesBetween(const SkyDirection& a, const SkyDirection& b)
{
    const double cosine =
        std::sin(a.elevationRad) * std::sin(b.elevationRad) +
        std::cos(a.elevationRad) * std::cos(b.elevationRad) * std::cos(a.azimuthRad - b.azimuthRad);
    return DegreesOf(std::acos(std::clamp(cosine, -1.0, 1.0)));
}

bool IsGps(const ListedSatellite& satellite)
{
    return satellite.system == ListedSatellite::Gps && satellite.number >= 1 &&
           satellite.number <= kMaxPrn;
}

std::size_t IndexOf(const ListedSatellite& satellite)
{
    return static_cast<std::size_t>(satellite.number - 1);
}

bool IsPlace(const SiteReply& site)
{
    return std::abs(site.latitudeRad) <= std::numbers::pi / 2 &&
           std::abs(site.longitudeRad) <= std::numbers::pi && std::isfinite(site.heightM);
}

} // namespace

SkyRecorder::~SkyRecorder()
{
    Keep();
}

void SkyRecorder::Use(const std::filesystem::path& folder, unsigned connection)
{
    const std::scoped_lock lock(m_mutex);
    m_told = Told{folder, connection};
    m_now = {}; // that was elsewhere
}

void SkyRecorder::Begin(const Told& told)
{
    Keep();
    m_folder = told.folder;
    m_ignored = told.connection;
    m_almanac.clear();
    m_record.reset();
    m_unkept = 0;
    const std::scoped_lock lock(m_mutex);
    m_now = {};
}

SkyRecorder::Now SkyRecorder::GetNow() const
{
    const std::scoped_lock lock(m_mutex);
    return m_now;
}

void SkyRecorder::Publish(State state)
{
    const std::scoped_lock lock(m_mutex);
    m_now.state = state;
    if (!m_told) {
        m_now.record = m_record;
    }
}

void SkyRecorder::Take(const Receiver& heard, unsigned connection)
{
    std::optional<Told> told;
    {
        const std::scoped_lock lock(m_mutex);
        told = std::exchange(m_told, std::nullopt);
    }
    if (told) {
        Begin(*told);
    }
    if (m_folder.empty() || connection <= m_ignored) {
        return;
    }
    if (std::exchange(m_connection, connection) != connection) {
        m_goodSince.reset();
        m_wasTracked.fill(false);
        m_waiting.fill({});
    }
    if (heard.link != LinkState::Connected) {
        m_goodSince.reset();
        Keep();
        Publish(State::NotConnected);
        return;
    }
    if (!heard.tracked || heard.tracked->at == m_takenAt) {
        return;
    }
    m_takenAt = heard.tracked->at;
    Sky sky;
    State state = Judge(heard, sky);
    if (state != State::Noting) {
        m_goodSince.reset();
    } else if (!m_goodSince) {
        m_goodSince = m_takenAt;
    }
    if (state == State::Noting && *m_takenAt - *m_goodSince < kSettling) {
        state = State::Settling;
    }
    if (state == State::Noting &&
        (!m_notedAt || *m_takenAt - *m_notedAt >= SkyRecord::kNoteInterval)) {
        m_notedAt = m_takenAt;
        Note(heard.tracked->value, sky);
        if (m_unkept >= kKeepRounds) {
            Keep();
        }
    }
    Publish(state);
}

/// @param sky  what the almanac has, and whether it is tracked
SkyRecorder::State SkyRecorder::Judge(const Receiver& heard, Sky& sky)
{
    const TimedValue<SatelliteList>& tracked = *heard.tracked;
    if (!heard.position || tracked.at - heard.position->at > kTogether ||
        heard.position->at - tracked.at > kTogether || heard.position->value.fixKind < kFirstFix ||
        !IsPlace(heard.position->value.position)) {
        return State::NoFix;
    }
    const PositionStatusReply& position = heard.position->value;
    const SiteReply& site = position.position;
    const Observer place{site.latitudeRad, site.longitudeRad, site.heightM};
    if (!GoTo(place)) {
        m_goodSince.reset();
    }
    const std::filesystem::path almanac = AlmanacPath(m_folder);
    if (const std::string identity = FileIdentity(almanac); identity != m_almanac) {
        m_almanac = identity;
        static_cast<void>(m_calc.LoadAlmanac(almanac)); // without a file it has none
    }
    constexpr std::uint32_t kLastWeek = 32767;
    const auto week = static_cast<int>(std::min(position.week, kLastWeek));
    const double sowS = position.secondsOfWeek +
                        std::chrono::duration<double>(tracked.at - heard.position->at).count();
    m_calc.SetObserver(place);
    m_calc.SetTime(week, sowS);
    bool hasAny = false;
    for (int i = 0; i < kMaxPrn; ++i) {
        hasAny = hasAny || m_calc.IsValid(i) == 1;
        if (m_calc.TestVisibility(i) == 1) {
            const CAlmanacSatellite& satellite = m_calc.GetSatellite(i);
            sky[static_cast<std::size_t>(i)].direction = {satellite.GetAzimuth(),
                                                          satellite.GetElevation()};
        }
    }
    if (!hasAny) {
        return State::NoAlmanac;
    }
    if (IsAlmanacOld(AlmanacTime(m_calc), CGPSTime(week, sowS))) {
        return State::OldAlmanac;
    }
    if (!Fits(tracked.value, sky)) {
        return State::OtherAlmanac;
    }
    return Hears(tracked.value, sky) ? State::Noting : State::DeafAntenna;
}

/// @return whether the receiver was there already
bool SkyRecorder::GoTo(const Observer& place)
{
    if (m_record && DistanceM(m_record->Place(), place) <= kSamePlaceM) {
        return true;
    }
    Keep();
    m_waiting.fill({}); // seen from elsewhere
    SkyRecords known = LoadSkyRecords(m_folder);
    const auto nearest =
        std::ranges::min_element(known.records, {}, [&place](const SkyRecord& record) {
            return DistanceM(record.Place(), place);
        });
    if (nearest != known.records.end() && DistanceM(nearest->Place(), place) <= kSamePlaceM) {
        m_record = *nearest;
    } else {
        m_record = SkyRecord(place);
    }
    m_unkept = 0;
    const std::scoped_lock lock(m_mutex);
    std::ranges::move(known.setAside, std::back_inserter(m_now.setAside));
    return false;
}

/// Finds the tracked satellites in the sky of the almanac.
/// @return whether they stand where that has them, most of them
bool SkyRecorder::Fits(const SatelliteList& tracked, Sky& sky) const
{
    int fitting = 0;
    int elsewhere = 0;
    for (const ListedSatellite& listed : tracked.satellites) {
        if (!IsGps(listed)) {
            continue;
        }
        Expected& expected = sky[IndexOf(listed)];
        expected.isTracked = true;
        expected.isFaint = IsFaint(listed);
        const bool fits = expected.direction &&
                          DegreesBetween(DirectionOf(listed), *expected.direction) <= kFitsDeg;
        // One that the almanac does not know tells nothing.
        const bool isKnown = m_calc.IsValid(static_cast<int>(IndexOf(listed))) == 1;
        fitting += fits ? 1 : 0;
        elsewhere += isKnown && !fits ? 1 : 0;
    }
    return elsewhere == 0 || fitting > 2 * elsewhere;
}

/// Whether the antenna hears as it should: something well, and not hardly anything of what stands
/// where it has heard before. Another surroundings hides less than an antenna that fails.
bool SkyRecorder::Hears(const SatelliteList& tracked, const Sky& sky) const
{
    double strongest = 0.0;
    for (const ListedSatellite& listed : tracked.satellites) {
        strongest = std::max(strongest, Strength(listed));
    }
    const bool isTold = strongest > 0.0; // else the receiver tells no strengths
    int inOpen = 0;
    int heard = 0;
    for (const Expected& expected : sky) {
        if (expected.direction && m_record->At(*expected.direction) == SkyRecord::Cell::Open) {
            ++inOpen;
            heard += expected.isTracked ? 1 : 0;
        }
    }
    constexpr int kEnoughToTell = 3;
    constexpr int kQuarter = 4;
    return static_cast<int>(tracked.satellites.size()) >= kLeastTracked &&
           (!isTold || strongest >= kWell) &&
           (inOpen < kEnoughToTell || kQuarter * heard >= inOpen);
}

void SkyRecorder::Note(const SatelliteList& tracked, const Sky& sky)
{
    m_record->BeginNotes(m_clock.Utc());
    ++m_unkept;
    for (const ListedSatellite& listed : tracked.satellites) {
        const bool isPredicted = IsGps(listed) && sky[IndexOf(listed)].direction.has_value();
        if (!isPredicted && listed.elevationDeg > 0 && listed.HasDirection() && !IsFaint(listed)) {
            m_record->NoteTracked(DirectionOf(listed));
        }
    }
    for (std::size_t i = 0; i < sky.size(); ++i) {
        const Expected& expected = sky[i];
        if (!expected.direction || expected.isFaint) {
            continue;
        }
        if (expected.isTracked) {
            m_record->NoteTracked(*expected.direction);
            for (const SkyDirection& missed : std::exchange(m_waiting[i], {})) {
                m_record->NoteMissed(missed);
            }
            m_wasTracked[i] = true;
        } else if (m_wasTracked[i]) {
            m_record->NoteMissed(*expected.direction);
        } else if (m_waiting[i].size() < kMostWaiting) {
            m_waiting[i].push_back(*expected.direction);
        }
    }
}

void SkyRecorder::Keep()
{
    if (m_unkept == 0 || m_record->Observed() < kKeepAfter) {
        return;
    }
    m_unkept = 0; // where it cannot be written, it is tried again with the next ones
    const std::error_code fault = SaveSkyRecord(m_folder, *m_record);
    const std::scoped_lock lock(m_mutex);
    m_now.fault = fault;
}

int SkyRecorderTextId(SkyRecorder::State state)
{
    switch (state) {
    case SkyRecorder::State::NotConnected:
        return text::kSkylineNotConnected;
    case SkyRecorder::State::NoFix:
        return text::kSkylineNoFix;
    case SkyRecorder::State::NoAlmanac:
        return text::kSkylineNoAlmanac;
    case SkyRecorder::State::OldAlmanac:
        return text::kSkylineOldAlmanac;
    case SkyRecorder::State::OtherAlmanac:
        return text::kSkylineOtherAlmanac;
    case SkyRecorder::State::DeafAntenna:
        return text::kSkylineDeafAntenna;
    case SkyRecorder::State::Settling:
        return text::kSkylineSettling;
    case SkyRecorder::State::Noting:
        break;
    }
    return 0;
}

} // namespace fieldcore
