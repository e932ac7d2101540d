#include "cli/Command.h"
#include "cli/Options.h"

#include "core/link/FrameDescriber.h"
#include "core/platform/Utf8.h"
#include "simulator/ExchangeRecord.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <optional>
#include <ostream>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace fieldcore::cli {

namespace {

using Kind = DescribedBytes::Kind;

struct TraceOptions
{
    std::string file;
    bool brief = false;
};

std::string HexByte(std::uint8_t byte)
{
    return fmt::format("0x{:02X}", byte);
}

// In the order of Kind.
constexpr std::array kKindCodes{"frame", "ack", "nak", "break", "line", "piece", "stray"};

std::string NameOf(const DescribedBytes& bytes)
{
    return WordedOr(Translated(bytes.name), bytes.title);
}

/// Several meanings, or a name behind its number.
std::string EachTranslated(const std::string& english, std::string_view separator)
{
    std::string words = Translated(english);
    const std::size_t at = english.find(separator);
    if (words == english && at != std::string::npos) {
        words = Translated(english.substr(0, at)) + std::string(separator) +
                EachTranslated(english.substr(at + separator.size()), separator);
    }
    return words;
}

/// With the unit in the language of the run.
std::string ValueWords(const Value& value)
{
    const std::string all = value.Words();
    const std::string words = all.starts_with('(') ? Translated(all) : all; // not the receiver's
    const std::string& unit = value.Unit();
    return unit.empty() ? words : words.substr(0, words.size() - unit.size()) + Translated(unit);
}

std::string KindWords(const DescribedBytes& bytes)
{
    switch (bytes.kind) {
    case Kind::Frame:
        return HexByte(*bytes.type) + " " + NameOf(bytes);
    case Kind::Ack:
        return "ACK";
    case Kind::Nak:
        return "NAK";
    case Kind::Break:
        return "BREAK";
    case Kind::Line:
        return Worded(text::kTraceLine);
    case Kind::Piece:
        return Worded(text::kTracePiece) +
               (bytes.type ? ", " + HexByte(*bytes.type) + " " + NameOf(bytes) : std::string());
    case Kind::Stray:
        break;
    }
    return Worded(text::kTraceStray);
}

Value Checksum(const DescribedBytes& bytes)
{
    if (bytes.kind != Kind::Frame) {
        return Value::Unknown();
    }
    return bytes.checksumGood
               ? Term("good", text::kTraceChecksumGood)
               : Term("bad", {text::kTraceChecksumBad,
                              {HexByte(bytes.checksum), HexByte(bytes.expectedChecksum)}});
}

/// The time at the start of a log line, minutes and seconds of an hour; empty if there is none, or
/// only the text that is the same in every line.
std::string TimeOf(const std::string& line)
{
    static const std::regex kTime(R"(\d{1,2}:\d{1,2}\.\d{1,3}(?= |$))");
    std::smatch time;
    const bool isTime =
        std::regex_search(line, time, kTime, std::regex_constants::match_continuous);
    return isTime && time.str() != "00:1.000" ? time.str() : std::string();
}

/// One thing that went over the line, as a report of its own.
Report ReportOf(std::int64_t line, const std::string& time, Direction direction,
                const DescribedBytes& bytes)
{
    Report report;
    report.Add("line", Value::Integer(line));
    report.Add("time", time.empty() ? Value::Unknown() : Value::Text(time));
    report.Add("direction", Value::Text(std::string(direction == Direction::Sent ? "Tx" : "Rx")));
    report.Add("kind", Value::Text(std::string(kKindCodes[static_cast<std::size_t>(bytes.kind)])));
    report.Add("type", bytes.type ? Value::Text(HexByte(*bytes.type)) : Value::Unknown());
    report.Add("name", Value::Text(bytes.name));
    report.Add("length", Value::Integer(static_cast<std::int64_t>(bytes.length), "bytes"));
    report.Add("checksum", Checksum(bytes));
    report.Add("fault", Value::Text(bytes.fault));
    Report::Table table{"fields"};
    for (const DescribedField& field : bytes.fields) {
        table.rows.push_back(
            {{"offset", "", Value::Integer(static_cast<std::int64_t>(field.offset))},
             {"name", "", Value::Text(field.name)},
             {"value", "", field.value},
             {"unit", "", Value::Text(field.value.Unit())},
             {"meaning", "", Value::Text(field.meaning)}});
    }
    report.AddTable(std::move(table));
    return report;
}

std::string PaddedLeft(const std::string& number, std::size_t width)
{
    return std::string(width - std::min(width, number.size()), ' ') + number;
}

std::string FieldWords(const std::vector<DescribedField>& fields)
{
    std::size_t nameWidth = 0;
    for (const DescribedField& field : fields) {
        nameWidth = std::max(nameWidth, DisplayWidth(EachTranslated(field.name, ". ")));
    }
    std::string text;
    for (const DescribedField& field : fields) {
        text += PaddedLeft(std::to_string(field.offset), 7) + "  " +
                Padded(EachTranslated(field.name, ". "), nameWidth + 2) + ValueWords(field.value);
        text += field.meaning.empty()
                    ? ""
                    : "  (" + Printable(EachTranslated(field.meaning, ", ")) + ")";
        text += "\n";
    }
    return text;
}

/// Goes through a log line by line. Text is written as it comes, so that a long log needs no
/// memory; a JSON document is complete only at the end.
class Tracer
{
public:
    Tracer(const Context& context, bool brief) : m_context(context), m_brief(brief) {}

    void Take(const std::string& line)
    {
        ++m_line;
        simulator::RecordedBytes piece;
        std::string error;
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            return;
        }
        if (!simulator::ParseLogLine(line, piece, error)) {
            ++m_damagedLines;
            TellDamage(error);
            return;
        }
        const Direction direction = piece.direction == simulator::Direction::ToReceiver
                                        ? Direction::Sent
                                        : Direction::Received;
        m_time = TimeOf(line);
        for (DescribedBytes& bytes : DescribeBytes(direction, piece.bytes)) {
            const bool isLine = bytes.kind == Kind::Line;
            if (direction == Direction::Sent) {
                m_awaitsLine = isLine;
            } else if (isLine && !m_awaitsLine) {
                bytes.fault = Worded(text::kTraceNoLineBefore);
            }
            Tell(direction, bytes);
        }
    }

    /// @param failure  why not all of the log was read, if so
    Ending Finish(const std::optional<Failure>& failure)
    {
        m_report.Add("exchanged", Value::Integer(m_told));
        m_report.Add("faults", Value::Integer(m_faults));
        m_report.Add("damagedLines", Value::Integer(m_damagedLines));
        if (failure || m_told == 0) {
            return m_context.output.Failed(
                failure ? *failure : FileFailure(text::kSayNoExchange, text::kSayNoExchangeHint),
                m_context.output.IsJson() ? &m_report : nullptr);
        }
        const ExitCode code = m_context.output.Done(m_report, "");
        m_context.output.Note(
            {text::kSayExchanged,
             {std::to_string(m_told), std::to_string(m_faults), std::to_string(m_damagedLines)}});
        return code;
    }

private:
    void TellDamage(const std::string& error)
    {
        if (m_context.output.IsJson()) {
            Report entry;
            entry.Add("line", Value::Integer(m_line));
            entry.Add("kind", Value::Text(std::string("damaged-line")));
            entry.Add("fault", Value::Text(error));
            m_report.AddEntry("entries", std::move(entry));
            return;
        }
        *m_context.world.out << PaddedLeft(std::to_string(m_line), 5) << "  "
                             << m_context.output.Painted(Worded(text::kTraceDamaged), Colour::Red)
                             << Printable(Translated(error)) << "\n";
    }

    void Tell(Direction direction, const DescribedBytes& bytes)
    {
        ++m_told;
        m_faults += bytes.IsFault() ? 1 : 0;
        if (m_context.output.IsJson()) {
            m_report.AddEntry("entries", ReportOf(m_line, m_time, direction, bytes));
            return;
        }
        std::string text = PaddedLeft(std::to_string(m_line), 5) + "  " +
                           (m_time.empty() ? "" : Padded(m_time, 9) + "  ") +
                           (direction == Direction::Sent ? "Tx  " : "Rx  ") + KindWords(bytes) +
                           Worded(bytes.length == 1 ? text::kTraceByte : text::kTraceBytes,
                                  {std::to_string(bytes.length)});
        if (bytes.kind == Kind::Frame) {
            text += Worded(
                text::kTraceThen,
                {m_context.output.Painted(Checksum(bytes).Words(),
                                          bytes.checksumGood ? Colour::Plain : Colour::Red)});
        }
        if (!bytes.fault.empty()) {
            text += "; " + m_context.output.Painted(Translated(bytes.fault), Colour::Red);
        }
        *m_context.world.out << text << "\n" << (m_brief ? "" : FieldWords(bytes.fields));
    }

    const Context& m_context;
    const bool m_brief;
    Report m_report;
    std::string m_time;        // of the line, or empty
    bool m_awaitsLine = false; // what was sent last was a line of text
    std::int64_t m_line = 0;
    std::int64_t m_told = 0;
    std::int64_t m_faults = 0;
    std::int64_t m_damagedLines = 0;
};

/// What is named may have no lines and no end. The longest line that a log has is a read of 5120
/// bytes, three characters each.
constexpr std::size_t kMaxLine = 65536;

/// Takes @p in line by line to its end, or until nobody wants more.
/// @return why it could not be read to its end
std::optional<Failure> Read(const Context& context, std::istream& in, const std::string& name,
                            Tracer& tracer)
{
    std::vector<char> buffer(kMaxLine + 1);
    std::int64_t lines = 0;
    while (!context.world.StopRequested() && *context.world.out &&
           in.getline(buffer.data(), kMaxLine + 1)) {
        const std::streamsize terminator = in.eof() ? 0 : 1; // is counted
        tracer.Take({buffer.data(), static_cast<std::size_t>(in.gcount() - terminator)});
        ++lines;
    }
    const std::string next = std::to_string(lines + 1);
    if (World::HasFailed(in)) {
        return FileFailure({text::kSayReadTo, {name, next}});
    }
    if (in.fail() && !in.eof()) {
        return FileFailure({text::kSayLineTooLong, {name, next}});
    }
    return std::nullopt;
}

Ending Run(const Context& context, const TraceOptions& options)
{
    std::ifstream file;
    const bool fromStdin = options.file == "-";
    if (!fromStdin) {
        file.open(options.file, std::ios::binary);
        // A folder opens and cannot be read.
        if (!file || (file.peek() == std::ifstream::traits_type::eof() && file.bad())) {
            return FileFailure({text::kSayNotRead, {options.file}}, text::kSayTraceHint);
        }
        file.clear();
    }
    Tracer tracer(context, options.brief);
    const auto failure = fromStdin ? Read(context, *context.world.in, "stdin", tracer)
                                   : Read(context, file, options.file, tracer);
    return context.world.StopRequested()
               ? context.output.Failed(RequestFailure(CommandFault::Cancelled, ""))
               : tracer.Finish(failure);
}

} // namespace

Command AddTraceCommand(CLI::App& program)
{
    return AddCommand<TraceOptions>(
        program, {"trace", text::kHelpTrace,
                  [](CLI::App& parser, TraceOptions& options) {
                      AddText(parser, "file", options.file, "FILE", text::kOptTrace)->required();
                      AddFlag(parser, "--brief", options.brief, text::kOptBrief);
                  },
                  Run});
}

} // namespace fieldcore::cli
