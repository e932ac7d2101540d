#include "cli/StatusReading.h"

#include "cli/PortSession.h"

#include "core/equipment/StatusRows.h"
#include "core/link/RecvInfo.h"

#include <chrono>
#include <utility>
#include <vector>

namespace fieldcore::cli {

StatusReader::StatusReader(PortSession& session)
    : m_session(session), m_questions(session.Command())
{}

std::optional<Failure> StatusReader::Read()
{
    Receiver fresh;
    fresh.link = LinkState::Connected;
    fresh.identity = m_reading.identity;
    if (!m_questions.AskStatus(fresh) || !fresh.status ||
        (!m_questions.AskIdentity(fresh) && !m_questions.IsAnswering()) ||
        !m_questions.AskPosition(fresh) || !m_questions.AskTime(fresh) ||
        !m_questions.AskPowerSource(fresh)) {
        return m_session.RequestFailed();
    }
    const auto sourceOf = [](const Receiver& receiver) {
        return receiver.powerSource ? receiver.powerSource->value : 0;
    };
    if (sourceOf(m_reading) != sourceOf(fresh)) {
        m_watch.ForgetTrend(); // another battery
    }
    if (const std::optional<int> percent = BatteryPercent(fresh)) {
        m_watch.Take(*percent, fresh.status->at);
    }
    fresh.trend = m_watch.Trend();
    m_reading = std::move(fresh);
    m_view.now = m_session.GetClock().Steady();
    m_view.utc = m_session.GetClock().Utc();
    return std::nullopt;
}

void AddFields(Report& report, const Receiver& receiver, ReceiverField::Place place)
{
    for (const ReceiverField& field : AllReceiverFields()) {
        if ((field.places & place) != 0) {
            const Value value = ReportField(field, receiver);
            report.Add(field.key, *field.label == '\0' ? "" : WordedOr(field.label, field.textId),
                       value.IsUnknown() ? Value::Text("", Translated(value.Words())) : value);
        }
    }
}

void AddStatus(Report& report, const Receiver& receiver)
{
    AddFields(report, receiver, ReceiverField::Report);
    AddFields(report.AddSection("position", text::kLabelPosition), receiver,
              ReceiverField::PositionReport);
}

void AddAges(Report& report, const Receiver& receiver, Clock::Duration now)
{
    Report& ages = report.AddSection("agesS");
    const auto add = [&](const char* key, const auto& reply) {
        ages.Add(key, reply ? Value::Real(std::chrono::duration<double>(now - reply->at).count(), 3)
                            : Value::Unknown());
    };
    // By the answer that they came with.
    add("status", receiver.status);
    add("time", receiver.time);
    add("position", receiver.position);
    add("powerSource", receiver.powerSource);
}

void AddIdentity(Report& report, const ReceiverIdentity& identity)
{
    Receiver receiver;
    receiver.identity = identity;
    AddFields(report, receiver, ReceiverField::Who);
    const CRecvInfo info(identity);
    std::vector<std::string> options;
    std::string words;
    for (const InstalledOption& option : AllInstalledOptions()) {
        if (option.has(info) != 0) {
            options.emplace_back(option.words);
            words += (words.empty() ? "" : ", ") + WordedOr(option.words, option.textId);
        }
    }
    report.Add("options", text::kLabelOptions, Value::List(std::move(options), std::move(words)));
}

} // namespace fieldcore::cli
