#pragma once

#include "tests/ui/link/Clicks.h"
#include "tests/ui/link/Plugged.h"

namespace fieldcore::testing {

/// Esc on a screen that is a page of the program, or the program itself, and what comes of it.
struct Leaving
{
    int loadWay; ///< of the screen
    int button;  ///< of the question that is clicked; 0: it is not asked
    bool closes;
    bool portStaysOpen;
};

inline constexpr Leaving kLeavings[] = {
    {0, 0, true, true},
    {1, text::kButtonCancel, false, true},
    {1, text::kEndProgram, true, false},
    {1, text::kEndProgramPowerOff, true, false},
};

inline void ExpectLeft(QWidget& screen, const Leaving& row, CCommand& command,
                       const simulator::Simulator& receiver)
{
    SCOPED_TRACE(row.button);
    int asked = 0;
    Surveyor surveyor;
    surveyor.onOther = [&](QWidget& question) {
        ++asked;
        Click(question, row.button);
    };
    QTest::keyClick(&screen, Qt::Key_Escape);
    EXPECT_EQ(asked, row.button != 0 ? 1 : 0);
    EXPECT_EQ(!screen.isVisible(), row.closes);
    EXPECT_EQ(command.IsPortOpen() != 0, row.portStaysOpen);
    const auto requests = receiver.Requests();
    const bool isSwitchedOff = std::any_of(requests.begin(), requests.end(), [](const auto& frame) {
        return frame.size() > 2 && frame[2] == 0x84;
    });
    EXPECT_EQ(isSwitchedOff, row.button == text::kEndProgramPowerOff);
}

} // namespace fieldcore::testing
