#pragma once

#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/link/Clicks.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/QtHost.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/equipment/RecvFilePage.h"

#include <filesystem>

namespace fieldcore::testing {

/// A host with windows that tells of every breath.
class BreathingHost : public QtHost
{
public:
    using QtHost::QtHost;

    bool Breathe() override
    {
        const bool goesOn = QtHost::Breathe();
        if (onBreath) {
            onBreath();
        }
        return goesOn;
    }

    std::function<void()> onBreath;
};

/// The sheet of a simulated receiver's files, in folders of its own: documents and a card.
class FilesScreen : public ::testing::Test
{
protected:
    ~FilesScreen() override
    {
        sheet.reset();
        SetDefaultHost(nullptr);
    }

    /// @param scenario  a name or a text
    void Connect(const std::string& scenario)
    {
        const bool isText = scenario.find(' ') != std::string::npos;
        model = isText ? ParsedScenario(scenario) : ShippedScenario(scenario);
        receiver = Plugged(*command, model);
    }

    /// Opens the sheet as DoModal() does, without waiting for its end.
    void Show(unsigned startPage = 0, int loadWay = 0, QSize size = {480, 640})
    {
        sheet.reset();
        CRecvFileMan::Surroundings world;
        roots.Use(OwnFolders());
        world.freeBytes = [](const auto&) { return std::uint64_t{1} << 40U; };
        sheet = std::make_unique<CRecvFileMan>(command.get(), loadWay, nullptr, world, nullptr,
                                               startPage);
        ASSERT_EQ(sheet->Open(), ReceiverFiles::Opened);
        sheet->resize(size);
        sheet->show();
        sheet->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(sheet.get()));
        WaitForList();
    }
    void WaitForList() const
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return IsIdle(); }, 30000));
    }
    [[nodiscard]] bool IsIdle() const { return !sheet->IsWorking() && !sheet->IsListing(); }

    [[nodiscard]] RecvFilePage& Page() const
    {
        return dynamic_cast<RecvFilePage&>(*sheet->GetActivePage());
    }
    [[nodiscard]] FileList& List() const { return Page().List(); }
    /// A control of the page in front.
    [[nodiscard]] QWidget* Find(int control) const { return Dialog::FindControl(&Page(), control); }
    void Click(int control) const { QTest::mouseClick(Find(control), Qt::LeftButton); }
    /// Taps a row.
    void Tap(int row) const
    {
        List().scrollTo(List().model()->index(row, 0));
        const QRect place = List().visualRect(List().model()->index(row, FileList::kDate));
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, place.center());
    }
    [[nodiscard]] QString Cell(int row, int column) const
    {
        return List().model()->index(row, column).data().toString();
    }

    [[nodiscard]] std::filesystem::path Documents() const { return home.Path() / "Documents"; }
    [[nodiscard]] std::filesystem::path Card() const { return home.Path() / "card"; }
    bool hasCard = false;
    TemporaryFolder home;
    BreathingHost host;
    simulator::Scenario model;
    std::unique_ptr<simulator::Simulator> receiver;
    SettingsRoots roots{OwnFolders()};
    std::unique_ptr<CCommand> command =
        std::make_unique<CCommand>(Environment{.host = &host, .roots = &roots});
    std::unique_ptr<CRecvFileMan> sheet;

    [[nodiscard]] Folders OwnFolders() const
    {
        FolderSources sources;
        const std::string folder = home.Path().string();
        sources.variable = [folder](const std::string& name) {
            return name == "HOME" ? std::optional<std::string>(folder) : std::nullopt;
        };
        // Where the cards of this user are mounted, seen from /media.
        sources.userName = "../.." + folder;
        if (hasCard) {
            std::filesystem::create_directory(Card());
            sources.mountTable =
                home.Write("mounts", "/dev/sdb1 /media/../.." + Card().string() + " vfat rw 0 0\n");
        }
        return Folders(sources);
    }
};

} // namespace fieldcore::testing
