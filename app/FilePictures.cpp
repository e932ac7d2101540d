#include "app/FilePictures.h"

#include "core/equipment/FileDestination.h"
#include "core/equipment/FilePlan.h"
#include "core/link/Command.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
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

} // namespace

FilePictures::FilePictures(Host& host, const Clock& clock)
    : m_command(std::make_unique<CCommand>(CCommand::Surroundings{&host, &clock, nullptr, nullptr}))
{
    std::string error;
    const auto scenario = simulator::LoadScenario("lettered-power", error);
    if (scenario) {
        m_simulator = std::make_unique<simulator::Simulator>(*scenario, clock);
        if (m_simulator->Start(error)) {
            m_command->OpenPort(m_simulator->PortPath());
        }
    }
}

FilePictures::~FilePictures() = default;

std::unique_ptr<QWidget> FilePictures::Sheet(unsigned page)
{
    auto sheet = std::make_unique<CRecvFileMan>(m_command.get(), 0, nullptr, nullptr, page);
    sheet->Open();
    sheet->show();
    sheet->GetFileData();
    QCoreApplication::processEvents();
    return sheet;
}

std::unique_ptr<QWidget> FilePictures::Progress()
{
    auto sheet = Sheet(0);
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

std::unique_ptr<QWidget> FilePictures::Destination()
{
    constexpr std::uint64_t kBytes = 1134965;
    constexpr std::uint32_t kRate = 115200;
    return std::make_unique<DestinationPicture>(FileDestination(kBytes, 1, kRate));
}

std::unique_ptr<QWidget> FilePictures::Error()
{
    PlannedFile file;
    file.outcome = FileOutcome::DiskFull;
    const std::wstring words = FormatText(text::kFileFailure, Text(text::kDownloadFailed),
                                          L"A0314B00.Q01", file.CauseText().c_str());
    return std::make_unique<MessageDlg>(ToQt(words), UiText(text::kDownloadFailedCaption),
                                        BoxStyle{BoxButtons::Ok, BoxIcon::Stop});
}

} // namespace fieldcore
