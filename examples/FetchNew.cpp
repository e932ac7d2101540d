// How are those files fetched that are not here yet?   ./example-FetchNew PORT FOLDER

#include <fieldcore/core/equipment/FileRunner.h>
#include <fieldcore/core/equipment/ReceiverFiles.h>
#include <fieldcore/core/host/Host.h>
#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/platform/Utf8.h>
#include <fieldcore/simulator/UseSimulator.h>

#include <cstdio>

/// The window of a listing: is told of each file, and of the end.
struct Window : fieldcore::MessageTarget
{
    explicit Window(fieldcore::ReceiverFiles& listed) : files(listed) {}
    void Post(unsigned, std::intptr_t wParam, std::intptr_t lParam) override
    {
        files.OnRecvFileList(wParam, lParam);
    }
    fieldcore::ReceiverFiles& files;
};

int main(int argc, char** argv)
{
    fieldcore::UseSimulator();
    fieldcore::CCommand receiver;
    fieldcore::ReceiverFiles files(receiver);
    fieldcore::FileRows rows;
    files.SetRows(&rows);
    fieldcore::FilePlan plan;
    plan.folder = argc > 2 ? argv[2] : "fetched";
    plan.makesFolder = true;
    files.SetFetchedFolders({plan.folder});
    Window window(files);
    if (receiver.OpenPort(argc > 1 ? argv[1] : "sim:") == 0 || files.OpenConnected() == 0 ||
        files.GetFileData(window) == 0) {
        std::fprintf(stderr, "%s\n", receiver.LastError().c_str());
        return 1;
    }
    for (int row = 0; row < rows.Count(); ++row) {
        files.AddTo(plan, rows.At(row).record);
    }
    plan.LeaveOutFetched();
    fieldcore::FileRunner::Surroundings around;
    around.ended = [](const fieldcore::PlannedFile& file) {
        std::printf("%s: %s\n", fieldcore::ToUtf8(file.record.Name()).c_str(),
                    file.HasFailed() ? fieldcore::ToUtf8(file.CauseText()).c_str() : "done");
    };
    fieldcore::FileRunner(files, plan, around).Run();
    std::printf("%d new files\n", plan.Count(fieldcore::FileOutcome::Done));
    return plan.Failed() == nullptr ? 0 : 1;
}
