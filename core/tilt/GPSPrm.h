#pragma once

#include "core/platform/Assign.h"
#include "core/settings/HostReg.h"

#include <cstdint>

namespace fieldcore {

/// The tracking parameters of one survey, which the host fills and hands around. CParts names the
/// section that each survey type's set is kept under, and lists the values that can be chosen; the
/// record takes any. A setter answers 1 if the value changed. One thread.
class CGPSPrm
{
public:
    /// Every parameter is 0 until the host sets it.
    /// @param roots  must outlive the object and its copies
    explicit CGPSPrm(SettingsRoots& roots = SettingsRoots::Instance()) : m_roots(&roots) {}
    virtual ~CGPSPrm() = default;
    CGPSPrm(const CGPSPrm&) = default;
    CGPSPrm& operator=(const CGPSPrm&) = default;

    /// The settings at the library's own key.
    [[nodiscard]] HostReg Reg() const { return HostReg(*m_roots); }

    /// @param surveyType  one flag, see CParts
    /// @param rover       0: the reference station
    int SetSurveyType(std::uint32_t surveyType, int rover)
    {
        return Assign(m_surveyType, surveyType) | Assign(m_rover, rover);
    }
    [[nodiscard]] std::uint32_t GetSurveyType() const { return m_surveyType; }
    [[nodiscard]] int GetRover() const { return m_rover; }

    /// Recording interval; its unit is the survey's.
    int SetIntervalData(int interval) { return Assign(m_interval, interval); }
    [[nodiscard]] int GetIntervalData() const { return m_interval; }
    /// Elevation mask, degrees.
    int SetElMaskData(int maskDeg) { return Assign(m_elMask, maskDeg); }
    [[nodiscard]] int GetElMaskData() const { return m_elMask; }
    /// Epochs to observe.
    int SetSvEpochData(int epochs) { return Assign(m_svEpoch, epochs); }
    [[nodiscard]] int GetSvEpochData() const { return m_svEpoch; }
    /// Least number of satellites.
    int SetMinSVsData(int satellites) { return Assign(m_minSVs, satellites); }
    [[nodiscard]] int GetMinSVsData() const { return m_minSVs; }

    /// PDOP limit.
    int SetPDOPMaskData(double pdop) { return Assign(m_pdopMask, pdop); }
    /// @param raw  0: the limit that is worked with, which is never below 7.0; else as it was set
    [[nodiscard]] double GetPDOPMaskData(int raw) const
    {
        // A tighter limit would stop surveys that the receiver can still carry out.
        constexpr double kFloor = 7.0;
        return raw == 0 && m_pdopMask < kFloor ? kFloor : m_pdopMask;
    }

    // What is used: 1, or 0.

    int SetL2CData(int used) { return Assign(m_l2c, used); }
    [[nodiscard]] int GetL2CData() const { return m_l2c; }
    int SetMSASData(int used) { return Assign(m_msas, used); }
    [[nodiscard]] int GetMSASData() const { return m_msas; }
    int SetGLONASSData(int used) { return Assign(m_glonass, used); }
    [[nodiscard]] int GetGLONASSData() const { return m_glonass; }
    int SetQZSSData(int used) { return Assign(m_qzss, used); }
    [[nodiscard]] int GetQZSSData() const { return m_qzss; }
    int SetL5Data(int used) { return Assign(m_l5, used); }
    [[nodiscard]] int GetL5Data() const { return m_l5; }
    int SetGalileoData(int used) { return Assign(m_galileo, used); }
    [[nodiscard]] int GetGalileoData() const { return m_galileo; }

private:
    SettingsRoots* m_roots; // not owned
    std::uint32_t m_surveyType = 0;
    int m_rover = 0;
    int m_interval = 0;
    int m_elMask = 0;
    int m_svEpoch = 0;
    int m_minSVs = 0;
    double m_pdopMask = 0.0;
    int m_l2c = 0;
    int m_msas = 0;
    int m_glonass = 0;
    int m_qzss = 0;
    int m_l5 = 0;
    int m_galileo = 0;
};

} // namespace fieldcore
