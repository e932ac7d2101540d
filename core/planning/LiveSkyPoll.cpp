#include "core/planning/LiveSkyPoll.h"

#include "core/planning/AlmanacFile.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

// Where the words of the satellite data tell who is used in the position.
constexpr std::size_t kUsedGpsWord = 6;
constexpr std::size_t kUsedGlonassTriple = 6;

LiveSkyPoll::State StateOf(const CCommand& command)
{
    using State = LiveSkyPoll::State;
    switch (ClassOf(command.Fault())) {
    case FaultClass::Gone:
        return command.IsPortOpen() == 0 ? State::NotConnected : State::LinkLost;
    case FaultClass::Silent:
        return State::Silent;
    case FaultClass::Cancelled:
        return State::Cancelled;
    default:
        return command.Fault() == CommandFault::Refused ? State::Refused : State::Damaged;
    }
}

} // namespace

LiveSkyPoll::LiveSkyPoll(const Clock& clock, std::filesystem::path folder)
    : m_clock(clock), m_folder(std::move(folder))
{
    m_now.state = State::Waiting;
    LoadAlmanac();
}

void LiveSkyPoll::LoadAlmanac()
{
    m_now.hasAlmanac = m_calc.LoadAlmanac(AlmanacPath(m_folder));
}

void LiveSkyPoll::ForgetReceiver()
{
    m_hasFrames = true;
    m_hasGlonass = true;
    m_noUsedSince.reset();
    m_noTimeSince.reset();
    m_siteAskedAt.reset();
    m_site.reset();
}

bool LiveSkyPoll::Poll(CCommand& command)
{
    m_command = &command;
    if (command.IsPortOpen() == 0) {
        ForgetReceiver();
        m_now.state = State::NotConnected;
        return true;
    }
    LiveSky::Reading reading;
    if (!ReadLists(reading)) {
        m_now.state = StateOf(command);
        return false;
    }
    const Clock::Duration readAt = m_clock.Steady();
    command.Hear([&](Receiver& known) {
        known.tracked = {reading.tracked, readAt};
        known.inView = m_hasFrames
                           ? std::optional(TimedValue<SatelliteList>{reading.inView, readAt})
                           : std::nullopt;
    });
    ReadUsed(reading);
    Predict(reading);
    m_now.sky.Take(reading, readAt);
    m_now.state = State::Good;
    return true;
}

bool LiveSkyPoll::ReadLists(LiveSky::Reading& reading)
{
    if (m_hasFrames) {
        if (m_command->RequestSvList(reading.inView, SatelliteListForm::InView) == 1) {
            return m_command->RequestSvList(reading.tracked, SatelliteListForm::Tracked) == 1;
        }
        // Older receivers know the list in one frame only; some answer with that whatever the
        // request says. A damaged answer may look the same, so that is no lasting verdict.
        const CommandFault fault = m_command->Fault();
        if (ClassOf(fault) != FaultClass::Answered) {
            return false;
        }
        m_hasFrames = fault != CommandFault::Refused;
    }
    return m_command->RequestSvList(reading.tracked) == 1;
}

void LiveSkyPoll::ReadUsed(LiveSky::Reading& reading)
{
    const Clock::Duration now = m_clock.Steady();
    if (m_noUsedSince && now - *m_noUsedSince < kRarely) {
        return;
    }
    m_noUsedSince.reset();
    SatelliteDataReply data;
    if (m_command->RequestSvData(data, m_hasGlonass) == 0) {
        if (m_hasGlonass && ClassOf(m_command->Fault()) == FaultClass::Answered) {
            m_hasGlonass = false; // the next round asks for less
        } else {
            m_noUsedSince = now;
        }
        return;
    }
    reading.usedGps = data.words[kUsedGpsWord];
    if (m_hasGlonass) {
        reading.usedGlonass = data.triples[kUsedGlonassTriple];
    }
}

void LiveSkyPoll::Predict(LiveSky::Reading& reading)
{
    const Clock::Duration now = m_clock.Steady();
    if (!m_now.hasAlmanac || (m_noTimeSince && now - *m_noTimeSince < kRarely)) {
        return;
    }
    m_noTimeSince.reset();
    if (!m_siteAskedAt || now - *m_siteAskedAt >= kRarely) {
        m_siteAskedAt = now;
        SiteReply site;
        m_site.reset();
        if (m_command->RequestSite(site) == 1) {
            m_site = Observer{site.latitudeRad, site.longitudeRad, site.heightM};
        }
    }
    if (!m_site) {
        return;
    }
    GpsTimeReply time;
    if (m_command->RequestGpsTime(time) == 0) {
        m_noTimeSince = now;
        return;
    }
    m_calc.SetObserver(*m_site);
    m_calc.SetTime(time.week, time.secondsOfWeek);
    for (int i = 0; i < CSurveyPlanCalc::kSatellites; ++i) {
        if (m_calc.TestVisibility(i) == 1) {
            const CAlmanacSatellite& satellite = m_calc.GetSatellite(i);
            reading.predicted.push_back(
                {i + 1, {satellite.GetAzimuth(), satellite.GetElevation()}});
        }
    }
}

int LiveSkyTextId(LiveSkyPoll::State state)
{
    switch (state) {
    case LiveSkyPoll::State::NotConnected:
        return text::kSkyNotConnected;
    case LiveSkyPoll::State::Waiting:
        return text::kSkyWaiting;
    case LiveSkyPoll::State::Silent:
        return text::kSkySilent;
    case LiveSkyPoll::State::Damaged:
        return text::kSkyDamaged;
    case LiveSkyPoll::State::Refused:
        return text::kSkyRefused;
    case LiveSkyPoll::State::LinkLost:
        return text::kSkyLinkLost;
    case LiveSkyPoll::State::Cancelled:
        return text::kSkyCancelled;
    case LiveSkyPoll::State::Good:
        break;
    }
    return 0;
}

} // namespace fieldcore
