#include "cli/AlmanacReport.h"
#include "cli/Command.h"
#include "cli/FileCatalogue.h"
#include "cli/PlanReport.h"
#include "cli/PlanRequest.h"
#include "cli/PortSession.h"
#include "cli/ScratchFolder.h"
#include "cli/StatusReading.h"

#include "core/link/Connect.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"
#include "simulator/ExchangeRecord.h"
#include "simulator/FaultRule.h"
#include "simulator/ReceiverFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace fieldcore::cli {

namespace {

constexpr std::uint8_t kStatusRequest = 0x08;
constexpr std::size_t kTypeAt = 2; // in a frame

/// How often the controller has sent a request of a type, by what the simulator received.
std::size_t TimesReceived(const simulator::Simulator& simulator, std::uint8_t type)
{
    const auto record = simulator.Record();
    const auto count = std::count_if(record.begin(), record.end(), [type](const auto& piece) {
        return piece.direction == simulator::Direction::ToReceiver &&
               piece.bytes.size() > kTypeAt && piece.bytes[kTypeAt] == type;
    });
    return static_cast<std::size_t>(count);
}

/// Whether a file is here as it is in the simulator, byte by byte.
bool IsSameAsIn(const simulator::Simulator& simulator, const std::string& name,
                const std::filesystem::path& file)
{
    for (const simulator::ReceiverFile& original : simulator.Files()) {
        if (original.name == name) {
            std::vector<std::uint8_t> expected(original.size);
            simulator::ReadFileContent(original, 0, expected);
            return ReadWholeFile(file, original.size + 1) == expected;
        }
    }
    return false;
}

/// The guided session. Each part tells what it is about to do, does it, and shows what came.
class Demo
{
public:
    Demo(const Context& context, PortSession& session) : m_context(context), m_session(session) {}

    Ending Run()
    {
        Heading(text::kDemoConnect);
        if (const auto failure = m_session.Connect()) {
            return Fail(*failure);
        }
        Say(Worded(text::kDemoConnected, {m_session.Target().devicePath}));
        for (const auto part : {&Demo::Identify, &Demo::ShowStatus, &Demo::FetchFile,
                                &Demo::SurviveFault, &Demo::MakePlan}) {
            if (const auto failure = (this->*part)()) {
                return Fail(*failure);
            }
        }
        Heading(text::kDemoNext);
        Say(Worded(text::kDemoTry));
        return m_context.output.Done(m_report, "");
    }

private:
    void Say(const std::string& text)
    {
        if (!m_context.output.IsJson()) {
            *m_context.world.out << text.substr(0, text.find_last_not_of('\n') + 1) << "\n"
                                 << std::flush;
        }
    }
    void Heading(int id)
    {
        Say((m_isFirst ? "" : "\n") + m_context.output.Painted(Worded(id), Colour::Green));
        m_isFirst = false;
    }
    Ending Fail(const Failure& failure)
    {
        return m_context.output.Failed(failure, m_context.output.IsJson() ? &m_report : nullptr);
    }

    std::optional<Failure> Identify()
    {
        Heading(text::kDemoIdentify);
        CConnect connect(m_session.Command(), 0); // its port is open: it asks nothing
        connect.SupportAllTypes();
        if (connect.CheckRecvType() == 0) {
            return m_session.RequestFailed();
        }
        Report& identity = m_report.AddSection("identity");
        AddIdentity(identity, connect.Identity());
        Say(identity.Words() + Worded(text::kDemoIdentified));
        return std::nullopt;
    }

    std::optional<Failure> ShowStatus()
    {
        Heading(text::kDemoStatus);
        StatusReader reader(m_session);
        if (auto failure = reader.Read()) {
            return failure;
        }
        Report& status = m_report.AddSection("status");
        AddStatus(status, reader.Reading());
        Say(status.Words());
        return std::nullopt;
    }

    std::optional<Failure> FetchFile()
    {
        Heading(text::kDemoFiles);
        FileCatalogue catalogue(m_session);
        if (auto failure = catalogue.List(false)) {
            return failure;
        }
        FilePlan all;
        if (auto failure = catalogue.Choose({}, all)) {
            return failure;
        }
        const DirectoryListingData* smallest = nullptr; // that has anything in it
        for (const PlannedFile& file : all.files) {
            if (file.record.size > 0 && file.outcome == FileOutcome::Planned &&
                (smallest == nullptr || file.record.size < smallest->size)) {
                smallest = &file.record;
            }
        }
        if (smallest == nullptr) {
            return Failure{ExitCode::Failed, "no-files", text::kSayNoFiles};
        }
        const std::string name = ToUtf8(smallest->Name());
        Say(Worded(text::kDemoSmallest,
                   {std::to_string(all.files.size()), name, std::to_string(smallest->size)}));
        const ScratchFolder folder;
        CCommand& command = m_session.Command();
        if (command.DownloadFile(folder.Path(), smallest->Name(), smallest->size) !=
            smallest->size) {
            return command.Fault() != CommandFault::None
                       ? m_session.RequestFailed()
                       : FileFailure(
                             {text::kSayNotWritten, {name, Reason(command.GetFileError())}});
        }
        if (!IsSameAsIn(*m_session.GetSimulator(), name, folder.Path() / name)) {
            return Failure{ExitCode::Failed, "file-differs", text::kDemoDiffers};
        }
        Say(Worded(text::kDemoSame));
        Report& files = m_report.AddSection("files");
        files.Add("fileCount", Value::Integer(static_cast<std::int64_t>(all.files.size())));
        files.Add("fetched", Value::Text(name));
        files.Add("sizeBytes", Value::Integer(smallest->size, "B"));
        return std::nullopt;
    }

    std::optional<Failure> SurviveFault()
    {
        Heading(text::kDemoFault);
        Say(Worded(text::kDemoDamages));
        simulator::Simulator& simulator = *m_session.GetSimulator();
        simulator::FaultRule damage;
        damage.kind = simulator::FaultKind::Corrupt;
        damage.requestType = kStatusRequest;
        damage.count = 1;
        simulator.AddFault(damage);
        const std::size_t before = TimesReceived(simulator, kStatusRequest);
        StatusReply status;
        const bool answered = m_session.Command().RequestStatus(status) == 1;
        const std::size_t times = TimesReceived(simulator, kStatusRequest) - before;
        if (!answered) {
            return m_session.RequestFailed();
        }
        if (times < 2) {
            return Failure{ExitCode::Failed, "fault-not-seen", text::kDemoNotSeen};
        }
        Report& fault = m_report.AddSection("fault");
        fault.Add("timesSent", Value::Integer(static_cast<std::int64_t>(times)));
        Say(Worded(text::kDemoSurvived,
                   {std::to_string(times), std::to_string(status.batteryPercent),
                    std::to_string(status.satellitesTracked)}));
        return std::nullopt;
    }

    std::optional<Failure> MakePlan()
    {
        Heading(text::kDemoPlan);
        Say(Worded(text::kDemoPlanned));
        const ScratchFolder folder; // not over the almanac of the user
        if (folder.Path().empty()) {
            return FileFailure(text::kSayNoScratch);
        }
        AlmanacStore store(folder.Path());
        const AlmanacResult result = store.Update(m_session.Command());
        if (result != AlmanacResult::Done) {
            return result == AlmanacResult::BrokenOff
                       ? m_session.RequestFailed()
                       : AlmanacFailure(result, store, AlmanacPath(folder.Path()));
        }
        PlanOptions options;
        options.sites = {"東京都千代田区"};
        options.almanac = AlmanacPath(folder.Path());
        options.noCurtain = true;
        options.from = 6;
        options.hours = 12;
        PlanRequest request;
        if (auto failure = Resolve(options, m_context.world, PlanSettings{}, false, request)) {
            return failure;
        }
        ObservationPlan plan;
        if (auto failure = LoadSky(options, request, plan)) {
            return failure;
        }
        plan.Calc().SetObserver(request.sites.front().observer);
        plan.Period() = {request.dates.front(), request.settings.startHour, request.settings.hours};
        plan.Compute();
        m_report.AddEntry("plans", PlanReport(plan, request.sites.front(), request, std::nullopt));
        Say(PlanWords(plan, request.sites.front(), request, std::nullopt));
        return std::nullopt;
    }

    const Context& m_context;
    PortSession& m_session;
    Report m_report;
    bool m_isFirst = true;
};

Ending Run(const Context& context, const PortOptions& options)
{
    PortSession session(context, options);
    return Demo(context, session).Run();
}

} // namespace

Command AddDemoCommand(CLI::App& program)
{
    return AddCommand<PortOptions>(program, {"demo", text::kHelpDemo,
                                             [](CLI::App& parser, PortOptions& options) {
                                                 options.port = "sim:lark";
                                                 options.AddSessionTo(parser);
                                             },
                                             Run});
}

} // namespace fieldcore::cli
