// How does a host check what the surveyor types, count up the names of points, and offer again what
// was typed before? ./example-FieldBook NAME NUMBER ANGLE

#include <fieldcore/core/input/Angles.h>
#include <fieldcore/core/input/Check.h>
#include <fieldcore/core/input/EntryList.h>
#include <fieldcore/core/input/Parts.h>
#include <fieldcore/core/input/StrIncre.h>
#include <fieldcore/core/platform/Utf8.h>

#include <iostream>
#include <string>

/// Says why an input is refused, as a window would show it.
class ConsoleHost : public fieldcore::SilentHost
{
public:
    fieldcore::BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                                     fieldcore::BoxStyle style) override
    {
        std::cout << fieldcore::ToUtf8(caption) << ": " << fieldcore::ToUtf8(text) << "\n";
        return SilentHost::ShowMessage(text, caption, style);
    }
};

int main(int argc, char** argv)
{
    using fieldcore::CParts;
    using fieldcore::ToUtf8;
    const auto typed = [&](int index, const char* otherwise) {
        return fieldcore::FromUtf8(index < argc ? argv[index] : otherwise);
    };
    std::wstring name = typed(1, "A-9");
    const std::wstring height = typed(2, "1.5");
    const std::wstring angle = typed(3, "135-07-04.5");

    ConsoleHost host;
    fieldcore::CCheck check(0.0, 100.0, host);
    check.SetRadMinMax(0, 359);
    constexpr int kTellTheUser = 1;
    if (check.CheckPointName(name, nullptr, kTellTheUser) == 0 ||
        check.CheckNum(height, nullptr, 0, kTellTheUser) == 0 ||
        check.CheckDeg(angle, nullptr, kTellTheUser) == 0) {
        return 1;
    }
    std::cout << "height " << ToUtf8(CParts::Round(CParts::atof(height), 3)) << " m, angle "
              << ToUtf8(fieldcore::RADtoDEGStr(check.GetRad(angle), 1, 5)) << "\n";

    // The entries of other days, this one before them, and the name of the point that comes next.
    constexpr int kKept = 10;
    fieldcore::TextEntries points;
    CParts::ReadRegPointName(points, kKept);
    CParts::StackComboList(points, name, kKept);
    points.Select(0);
    CParts::WriteRegPointName(points, kKept);
    constexpr std::uint8_t kLongest = 16;
    fieldcore::PointNameIncre(name, kLongest);
    std::cout << points.GetCount() << " remembered, next " << ToUtf8(name) << "\n";
}
