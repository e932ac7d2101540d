#include "core/tilt/GPSPrm.h"

namespace fieldcore {

int CGPSPrm::SetSurveyType(std::uint32_t surveyType, int rover)
{
    const int isAnotherType = Assign(m_surveyType, surveyType);
    return Assign(m_rover, rover) | isAnotherType;
}

double CGPSPrm::GetPDOPMaskData(int raw) const
{
    // A tighter limit would stop surveys that the receiver can still carry out.
    constexpr double kFloor = 7.0;
    return raw == 0 && m_pdopMask < kFloor ? kFloor : m_pdopMask;
}

} // namespace fieldcore
