#include "core/tilt/GPSPrm.h"

namespace fieldcore {

void CGPSPrm::SetSurveyType(std::uint32_t surveyType, int rover)
{
    m_surveyType = surveyType;
    m_rover = rover;
}

double CGPSPrm::GetPDOPMaskData(int raw) const
{
    // A tighter limit would stop surveys that the receiver can still carry out.
    constexpr double kFloor = 7.0;
    return raw == 0 && m_pdopMask < kFloor ? kFloor : m_pdopMask;
}

} // namespace fieldcore
