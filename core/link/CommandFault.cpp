#include "core/link/CommandFault.h"

#include "core/resources/StringTable.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace fieldcore {

namespace {

using enum CommandFault;

constexpr TerminalFault kNotMade{1, "failed", "The request could not be made.", ""};
constexpr TerminalFault kNotOpen{3, "port-not-opened", "The port is not open.",
                                 "fieldcore-cli doctor"};
constexpr TerminalFault kLost{3, "link-lost", "The port is gone.",
                              "Check the cable or the Bluetooth link, then try again."};
constexpr TerminalFault kNotWritten{1, "not-written", "Nothing could be sent to the receiver.",
                                    "Check the cable and the handshake (--flow)."};
constexpr TerminalFault kNoAnswer{
    4, "no-answer", "The receiver does not answer.",
    "Check that it is on, the cable, and the rate of the port (--baud)."};
constexpr TerminalFault kNak{6, "nak", "The receiver refused the request.",
                             "It does not know the request, or cannot do it now."};
constexpr TerminalFault kDamaged{1, "damaged-answer", "What the receiver answers arrives damaged.",
                                 "Check the cable, and the rate and parity of the port."};
constexpr TerminalFault kOther{
    1, "unexpected-answer", "The receiver answered something else.",
    "Something may be sent over the port besides. Keep what is said with --log FILE and look at it "
    "with fieldcore-cli trace FILE."};
constexpr TerminalFault kCancelled{7, "cancelled", "Cancelled.", ""};

constexpr FaultMeaning kMeanings[] = {
    {None, FaultClass::Answered, "", 0, kNotMade},
    {Busy, FaultClass::Local, "another request is under way", text::kCauseBusy, kNotMade},
    {NotOpen, FaultClass::Gone, "no port is open", text::kCauseNotOpened, kNotOpen},
    {OpenFailed, FaultClass::Gone, "the port could not be opened", text::kCauseNotOpened, kNotOpen},
    {TooLong, FaultClass::Local, "the request does not fit into a frame", text::kCauseNotWritten,
     kNotMade},
    {WriteFailed, FaultClass::Gone, "the request could not be written", text::kCauseNotWritten,
     kNotWritten},
    {TimedOut, FaultClass::Silent, "no answer in time", text::kCauseNoAnswer, kNoAnswer},
    {Refused, FaultClass::Answered, "the receiver refused (NAK)", text::kCauseRefused, kNak},
    {Malformed, FaultClass::Damaged, "the answer was no frame", text::kCauseDamaged, kDamaged},
    {BadChecksum, FaultClass::Damaged, "the answer was damaged (checksum)", text::kCauseDamaged,
     kDamaged},
    {WrongAnswer, FaultClass::Answered,
     "an acknowledgement came for data, or data for an acknowledgement", text::kCauseOtherAnswer,
     kOther},
    {WrongType, FaultClass::Answered, "the answer was of another type or did not fit its layout",
     text::kCauseOtherAnswer, kOther},
    {LinkLost, FaultClass::Gone, "the link is gone", text::kCauseLinkLost, kLost},
    {Cancelled, FaultClass::Cancelled, "cancelled", text::kCauseCancelled, kCancelled},
};

static_assert(std::size(kMeanings) == static_cast<std::size_t>(Cancelled) + 1);

} // namespace

const FaultMeaning& MeaningOf(CommandFault fault)
{
    return *std::ranges::find(kMeanings, fault, &FaultMeaning::fault);
}

const wchar_t* CauseText(CommandFault fault)
{
    const int id = MeaningOf(fault).textId;
    return id == 0 ? L"" : Text(id);
}

} // namespace fieldcore
