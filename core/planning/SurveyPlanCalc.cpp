#include "core/planning/SurveyPlanCalc.h"

#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/AlmanacTime.h"
#include "core/platform/Folders.h"

#include <cassert>
#include <cstddef>
#include <optional>
#include <vector>

namespace fieldcore {

CSurveyPlanCalc::CSurveyPlanCalc()
{
    for (std::size_t i = 0; i < m_satellites.size(); ++i) {
        m_satellites[i] = CAlmanacSatellite(static_cast<int>(i) + 1);
    }
}

bool CSurveyPlanCalc::DownloadAlmanac(CCommand& command, std::size_t& size)
{
    return AlmanacStore(Folders().Program()).Download(command, size) == AlmanacResult::Done;
}

bool CSurveyPlanCalc::CommitAlmanac(std::size_t size)
{
    return AlmanacStore(Folders().Program()).Commit(size, {AlmanacOrigin::Receiver, {}}) ==
           AlmanacResult::Done;
}

bool CSurveyPlanCalc::LoadAlmanac()
{
    return LoadAlmanac(AlmanacPath(Folders().Program()));
}

CGPSTime CSurveyPlanCalc::GetAlmanacTime() const
{
    return AlmanacTime(*this);
}

bool CSurveyPlanCalc::LoadAlmanac(std::span<const std::uint8_t> content)
{
    for (CAlmanacSatellite& satellite : m_satellites) {
        satellite.ClearRecord();
    }
    m_source = {HasNominal(content) ? AlmanacOrigin::Nominal : AlmanacOrigin::Unknown, {}};
    bool taken = false;
    for (; content.size() >= kAlmanacRecordSize; content = content.subspan(kAlmanacRecordSize)) {
        const unsigned index = content[0] - 1U;
        if (index < m_satellites.size()) {
            m_satellites[index].SetRecord(content.first<kAlmanacRecordSize>());
            taken = true;
        }
    }
    return taken;
}

bool CSurveyPlanCalc::LoadAlmanac(const std::filesystem::path& file)
{
    const std::vector<std::uint8_t> content = ReadAlmanacFile(file);
    const bool taken = LoadAlmanac(content);
    m_source = LoadAlmanacSource(file, content);
    return taken;
}

void CSurveyPlanCalc::SetCurtain(const ObstructionCurtain& curtain)
{
    m_curtain = curtain;
    m_limits = SkyLimits(m_maskRad, m_curtain);
}

void CSurveyPlanCalc::SetElMask(double maskRad)
{
    m_maskRad = maskRad;
    m_limits = SkyLimits(m_maskRad, m_curtain);
}

int CSurveyPlanCalc::IsValid(int index) const
{
    return IsIndex(index) ? GetSatellite(index).IsValid() : 0;
}

void CSurveyPlanCalc::SetUse(int index, int use)
{
    if (IsIndex(index)) {
        m_satellites[static_cast<std::size_t>(index)].SetUse(use);
    }
}

CAlmanacSatellite& CSurveyPlanCalc::Prepared(int index)
{
    CAlmanacSatellite& satellite = m_satellites[static_cast<std::size_t>(index)];
    satellite.SetObserver(m_frame);
    satellite.SetTime(m_epoch);
    return satellite;
}

bool CSurveyPlanCalc::ComputeSatellite(int index)
{
    return IsIndex(index) && Prepared(index).Compute();
}

int CSurveyPlanCalc::TestVisibility(int index)
{
    return IsIndex(index) && Prepared(index).TestVisibility(m_limits) ? 1 : 0;
}

int CSurveyPlanCalc::IsVisible(int index) const
{
    return IsIndex(index) ? GetSatellite(index).IsVisible() : 0;
}

const CAlmanacSatellite& CSurveyPlanCalc::GetSatellite(int index) const
{
    assert(IsIndex(index));
    return m_satellites[static_cast<std::size_t>(index)];
}

std::uint8_t CSurveyPlanCalc::CountVisible()
{
    int count = 0;
    for (int i = 0; i < kSatellites; ++i) {
        count += TestVisibility(i);
    }
    return static_cast<std::uint8_t>(count);
}

DopValues CSurveyPlanCalc::ComputeDop()
{
    if (CountVisible() < kSatellitesForDop) {
        return kNoDop;
    }
    DopSums sums;
    for (const CAlmanacSatellite& satellite : m_satellites) {
        if (satellite.IsVisible() != 0) {
            const EastNorthUp local = m_frame.ToLocal(satellite.GetPosition());
            const double range = local.Range();
            sums.Add(local.east / range, local.north / range, local.up / range);
        }
    }
    if (const std::optional<DopValues> values = sums.Solve()) {
        return *values;
    }
    std::array<Ecef, kSatellites> positions;
    std::size_t count = 0;
    for (const CAlmanacSatellite& satellite : m_satellites) {
        if (satellite.IsVisible() != 0) {
            positions[count++] =
                PositionOf(OrbitOf(satellite.GetOrbit().Elements()), AlmanacOrbit::CountOf(m_epoch))
                    .value_or(satellite.GetPosition());
        }
    }
    return ReferenceDop(m_frame.Origin(), std::span(positions).first(count));
}

} // namespace fieldcore
