#include "cli/TiltReport.h"

#include "cli/StatusReading.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"

#include <array>

namespace fieldcore::cli {

namespace {

std::string LineOf(std::string state, std::string tilt, std::string first, std::string second,
                   std::string calibration)
{
    return TableLine({{std::move(state), 17},
                      {std::move(tilt), 14},
                      {std::move(first), 17},
                      {std::move(second), 18},
                      {std::move(calibration), 0}});
}

} // namespace

void AddTilt(Report& report, const Receiver& receiver)
{
    AddFields(report, receiver, ReceiverField::Tilt);
}

std::string TiltLine(const Receiver& receiver)
{
    const auto words = [&receiver](const char* key) {
        return ReportField(FieldOf(key), receiver).Words();
    };
    return LineOf(words("state"), words("tiltDeg"), words("t1Deg"), words("t2Deg"),
                  words("calibration"));
}

std::string TiltHeader()
{
    return LineOf(Worded(text::kHeadState), Worded(text::kHeadTilt), Worded(text::kHeadTilt1),
                  Worded(text::kHeadTilt2), Worded(text::kHeadCalibration));
}

} // namespace fieldcore::cli
