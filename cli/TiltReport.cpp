#include "cli/TiltReport.h"

#include "cli/StatusReading.h"

#include <array>

namespace fieldcore::cli {

namespace {

struct Column
{
    const char* label;
    std::size_t width;
};

constexpr std::array<Column, 4> kColumns{
    {{"state", 17}, {"tilt", 14}, {"components", 30}, {"calibration", 13}}};

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
    const std::string values[] = {words("state"), words("tiltDeg"),
                                  words("t1Deg") + "  " + words("t2Deg"), words("calibration")};
    std::string line;
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        line += Padded(values[i], kColumns[i].width);
    }
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

std::string TiltHeader()
{
    std::string line;
    for (const Column& column : kColumns) {
        line += Padded(column.label, column.width);
    }
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

} // namespace fieldcore::cli
