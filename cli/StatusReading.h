#pragma once

#include "cli/Failure.h"
#include "cli/Report.h"

#include "core/equipment/BatteryWatch.h"
#include "core/equipment/ReceiverFields.h"
#include "core/equipment/ReceiverQuestions.h"

#include <optional>

namespace fieldcore::cli {

class PortSession;

/// Reads how the receiver is, once or again and again.
class StatusReader
{
public:
    /// @param session  with its port open, outlives the reader
    explicit StatusReader(PortSession& session);

    /// Asks for all of it. What a receiver refuses is left out; silence and a lost link are not.
    /// @return why it failed; nothing if there is a new reading
    [[nodiscard]] std::optional<Failure> Read();

    /// The last reading: nothing in it is older than its begin, but who the receiver is.
    [[nodiscard]] const Receiver& Reading() const { return m_reading; }
    /// The controller's clocks at its end.
    [[nodiscard]] const StatusView& View() const { return m_view; }

private:
    PortSession& m_session;
    ReceiverQuestions m_questions;
    BatteryWatch m_watch;
    Receiver m_reading;
    StatusView m_view;
};

/// The fields of a receiver that have this place, a value a line.
void AddFields(Report& report, const Receiver& receiver, ReceiverField::Place place);
/// How the receiver is.
void AddStatus(Report& report, const Receiver& receiver);
/// How old each answer was at @p now of the clock that they are timed by.
void AddAges(Report& report, const Receiver& receiver, Clock::Duration now);
/// Model, numbers, firmware and options of a receiver.
void AddIdentity(Report& report, const ReceiverIdentity& identity);

} // namespace fieldcore::cli
