#include "app/Picture.h"

#include "app/Controller.h"
#include "core/equipment/FileDestination.h"
#include "core/equipment/FilePlan.h"
#include "core/link/Command.h"
#include "simulator/UseSimulator.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/equipment/RecvFilePage.h"
#include "ui/equipment/RecvFileSaveDlg.h"
#include "ui/equipment/TransferPanel.h"

#include <QCoreApplication>

#include <chrono>

namespace fieldcore {

namespace {

/// The destination dialog with the destination that it shows.
class DestinationPicture : private FileDestination, public CRecvFileSaveDlg
{
public:
    explicit DestinationPicture(const FileDestination& destination)
        : FileDestination(destination), CRecvFileSaveDlg(static_cast<FileDestination&>(*this))
    {}
};

/// Listed. @param page  0 live files, 1 recycle bin
std::unique_ptr<CRecvFileMan> Sheet(CCommand& command, unsigned page)
{
    auto sheet = std::make_unique<CRecvFileMan>(&command, 0, nullptr, nullptr, page);
    sheet->Open();
    sheet->show();
    sheet->GetFileData();
    QCoreApplication::processEvents();
    return sheet;
}

/// In the middle of a download.
std::unique_ptr<QWidget> Progress(CCommand& command)
{
    auto sheet = Sheet(command, 0);
    auto* const page = sheet->findChild<RecvFilePage*>();
    page->List().selectAll();
    page->HideButtons();
    TransferProgress progress;
    progress.file = 2;
    progress.files = 3;
    progress.name = L"A0314B00.Q01";
    progress.fileBytes = 97000;
    progress.fileSize = 182240;
    progress.totalBytes = 145213;
    progress.totalSize = 1134965;
    progress.bytesPerSecond = 11391.0;
    progress.timeLeft = std::chrono::seconds(87);
    sheet->findChild<TransferPanel*>()->Show(progress);
    return sheet;
}

std::unique_ptr<QWidget> Destination()
{
    constexpr std::uint64_t kBytes = 1134965;
    constexpr std::uint32_t kRate = 115200;
    return std::make_unique<DestinationPicture>(FileDestination(kBytes, 1, kRate));
}

std::unique_ptr<QWidget> Error()
{
    PlannedFile file;
    file.outcome = FileOutcome::DiskFull;
    const std::wstring words = FormatText(text::kFileFailure, Text(text::kDownloadFailed),
                                          L"A0314B00.Q01", file.CauseText().c_str());
    return std::make_unique<MessageDlg>(ToQt(words), UiText(text::kDownloadFailedCaption),
                                        BoxStyle{BoxButtons::Ok, BoxIcon::Stop});
}

} // namespace

Pictures FilePictures(Controller& controller)
{
    UseSimulator();
    const auto command = std::make_shared<CCommand>(controller.Command().GetEnvironment());
    command->OpenPort("sim:lettered-power"); // which has a recycle bin
    return {{QStringLiteral("files"), [command] { return Sheet(*command, 0); }},
            {QStringLiteral("files-bin"), [command] { return Sheet(*command, 1); }},
            {QStringLiteral("files-progress"), [command] { return Progress(*command); }},
            {QStringLiteral("files-destination"), Destination},
            {QStringLiteral("files-error"), Error}};
}

} // namespace fieldcore
