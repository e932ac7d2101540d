#pragma once

#include <filesystem>
#include <memory>
#include <vector>

namespace fieldcore {
class CSurveyPlanCalc;
} // namespace fieldcore

namespace fieldcore::simulator::test {

struct PlannedSatellite
{
    int prn;
    double azimuthDeg;
    double elevationDeg;
};

/// The library's plan over an almanac file. It stands apart because the headers of the plan and
/// those of the link cannot be included together.
class PlannedSky
{
public:
    PlannedSky(const std::filesystem::path& almanac, double latitudeDeg, double longitudeDeg,
               double heightM);
    ~PlannedSky();
    PlannedSky(const PlannedSky&) = delete;
    PlannedSky& operator=(const PlannedSky&) = delete;

    void SetTime(int week, double sowS);
    /// Who stands above the mask, in the order of their PRN.
    [[nodiscard]] std::vector<PlannedSatellite> Above(double maskDeg);
    /// Of those of the last Above().
    [[nodiscard]] double Pdop();

private:
    const std::unique_ptr<CSurveyPlanCalc> m_calc;
};

} // namespace fieldcore::simulator::test
