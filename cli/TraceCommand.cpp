#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/Wording.h"

#include "core/link/FrameDescriber.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "simulator/ExchangeRecord.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

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
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%02X", byte);
    return text.data();
}

const char* KindCode(Kind kind)
{
    switch (kind) {
    case Kind::Frame:
        return "frame";
    case Kind::Ack:
        return "ack";
    case Kind::Nak:
        return "nak";
    case Kind::Break:
        return "break";
    case Kind::Line:
        return "line";
    case Kind::Piece:
        return "piece";
    case Kind::Stray:
        break;
    }
    return "stray";
}

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

std::string NameWords(const DescribedField& field)
{
    return EachTranslated(field.name, ". ");
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
    const std::string time = line.substr(0, std::min(line.find(' '), std::size_t{10}));
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned thousandths = 0;
    int end = 0;
    const int count =
        std::sscanf(time.c_str(), "%2u:%2u.%3u%n", &minutes, &seconds, &thousandths, &end);
    const bool isTime = count == 3 && static_cast<std::size_t>(end) == time.size() &&
                        time.find_first_not_of("0123456789:.") == std::string::npos;
    return isTime && time != "00:1.000" ? time : std::string();
}

/// One thing that went over the line, as a report of its own.
Report ReportOf(std::int64_t line, const std::string& time, Direction direction,
                const DescribedBytes& bytes)
{
    Report report;
    report.Add("line", text::kLabelLine, Value::Integer(line));
    report.Add("time", text::kLabelTime, time.empty() ? Value::Unknown() : Value::Text(time));
    report.Add("direction", text::kLabelDirection,
               Value::Text(std::string(direction == Direction::Sent ? "Tx" : "Rx")));
    report.Add("kind", text::kLabelKind, Value::Word(KindCode(bytes.kind), KindWords(bytes)));
    report.Add("type", text::kLabelType,
               bytes.type ? Value::Text(HexByte(*bytes.type)) : Value::Unknown());
    report.Add("name", text::kLabelName, Value::Text(bytes.name));
    report.Add("length", text::kLabelLength,
               Value::Integer(static_cast<std::int64_t>(bytes.length), "bytes"));
    report.Add("checksum", text::kLabelChecksum, Checksum(bytes));
    report.Add("fault", text::kLabelFault, Value::Text(bytes.fault));
    Report::Table table{
        "fields", {{"offset", ""}, {"name", ""}, {"value", ""}, {"unit", ""}, {"meaning", ""}}};
    for (const DescribedField& field : bytes.fields) {
        table.rows.push_back({Value::Integer(static_cast<std::int64_t>(field.offset)),
                              Value::Text(field.name), field.value, Value::Text(field.value.Unit()),
                              Value::Text(field.meaning)});
    }
    report.AddTable(std::move(table));
    return report;
}

std::string FieldWords(const std::vector<DescribedField>& fields)
{
    std::size_t nameWidth = 0;
    for (const DescribedField& field : fields) {
        nameWidth = std::max(nameWidth, DisplayWidth(NameWords(field)));
    }
    std::string text;
    for (const DescribedField& field : fields) {
        const std::string offset = std::to_string(field.offset);
        text += std::string(offset.size() < 7 ? 7 - offset.size() : 0, ' ') + offset + "  " +
                Padded(NameWords(field), nameWidth + 2) + ValueWords(field.value);
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
        m_report.Add("exchanged", text::kLabelExchanged, Value::Integer(m_told));
        m_report.Add("faults", text::kLabelFaults, Value::Integer(m_faults));
        m_report.Add("damagedLines", text::kLabelDamagedLines, Value::Integer(m_damagedLines));
        if (failure) {
            return m_context.output.Failed(*failure,
                                           m_context.output.IsJson() ? &m_report : nullptr);
        }
        if (m_told == 0) {
            return m_context.output.Failed(
                FileFailure(text::kSayNoExchange, text::kSayNoExchangeHint),
                m_context.output.IsJson() ? &m_report : nullptr);
        }
        const ExitCode code = m_context.output.Done(m_report, "");
        m_context.output.Note(
            {text::kSayExchanged,
             {std::to_string(m_told), std::to_string(m_faults), std::to_string(m_damagedLines)}});
        return code;
    }

private:
    [[nodiscard]] std::string LineNumber() const
    {
        const std::string number = std::to_string(m_line);
        return std::string(number.size() < 5 ? 5 - number.size() : 0, ' ') + number + "  ";
    }

    void TellDamage(const std::string& error)
    {
        if (m_context.output.IsJson()) {
            Report entry;
            entry.Add("line", text::kLabelLine, Value::Integer(m_line));
            entry.Add("kind", text::kLabelKind, Value::Text(std::string("damaged-line")));
            entry.Add("fault", text::kLabelFault, Value::Text(error));
            m_report.AddEntry("entries", std::move(entry));
            return;
        }
        *m_context.world.out << LineNumber()
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
        std::string text = LineNumber() + (m_time.empty() ? "" : Padded(m_time, 9) + "  ") +
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
    const std::optional<Failure> failure = fromStdin
                                               ? Read(context, *context.world.in, "stdin", tracer)
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
