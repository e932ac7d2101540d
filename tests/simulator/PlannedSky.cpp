#include "tests/simulator/PlannedSky.h"

#include "core/planning/SurveyPlanCalc.h"

#include <numbers>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

} // namespace

PlannedSky::PlannedSky(const std::filesystem::path& almanac, double latitudeDeg,
                       double longitudeDeg, double heightM)
    : m_calc(std::make_unique<CSurveyPlanCalc>())
{
    EXPECT_TRUE(m_calc->LoadAlmanac(almanac));
    m_calc->SetObserver({latitudeDeg * kDegree, longitudeDeg * kDegree, heightM});
}

PlannedSky::~PlannedSky() = default;

void PlannedSky::SetTime(int week, double sowS)
{
    m_calc->SetTime(week, sowS);
}

std::vector<PlannedSatellite> PlannedSky::Above(double maskDeg)
{
    m_calc->SetElMask(maskDeg * kDegree);
    std::vector<PlannedSatellite> above;
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        if (m_calc->TestVisibility(index) != 0) {
            const CAlmanacSatellite& satellite = m_calc->GetSatellite(index);
            above.push_back(
                {index + 1, satellite.GetAzimuth() / kDegree, satellite.GetElevation() / kDegree});
        }
    }
    return above;
}

double PlannedSky::Pdop()
{
    return m_calc->ComputeDop().pdop;
}

} // namespace fieldcore::simulator::test
