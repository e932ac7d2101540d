#include "ui/planning/AlmanacProgress.h"

#include "core/link/Command.h"
#include "core/planning/AlmanacOrbit.h"
#include "core/resources/StringTable.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/UiText.h"

namespace fieldcore {

AlmanacProgress::AlmanacProgress(CCommand& command, CTextProgressCtrl& bar)
    : m_command(command), m_bar(bar), m_began(command.GetClock().Steady())
{
    m_bar.SetRange(0, kMaxPrn);
    m_bar.SetPos(0);
    m_bar.show();
}

AlmanacProgress::~AlmanacProgress()
{
    m_bar.hide();
}

bool AlmanacProgress::Show(int prn)
{
    constexpr int kToJudgeBy = 3; // satellites, before a time is told
    const int done = prn - 1;
    m_bar.SetPos(done);
    const auto lasted = std::chrono::duration_cast<std::chrono::milliseconds>(
        m_command.GetClock().Steady() - m_began);
    if (done < kToJudgeBy) {
        m_bar.SetText(ToQt(FormatText(text::kPlanUpdating, done, kMaxPrn)));
    } else {
        const auto left = lasted * (kMaxPrn - done) / done;
        const auto seconds = std::chrono::ceil<std::chrono::seconds>(left);
        m_bar.SetText(ToQt(
            FormatText(text::kPlanUpdatingLeft, done, kMaxPrn, static_cast<int>(seconds.count()))));
    }
    return m_command.GetHost().Breathe();
}

} // namespace fieldcore
