#pragma once

#include <QWidget>

#include <memory>

namespace fieldcore {

class CCommand;
class Clock;
class Host;
namespace simulator {
class Simulator;
}

/// The screens of the receiver's files for pictures of them: with a simulated receiver of their
/// own, which has a recycle bin. User-interface thread only.
class FilePictures
{
public:
    /// @param host, clock  must outlive the object
    FilePictures(Host& host, const Clock& clock);
    ~FilePictures();
    FilePictures(const FilePictures&) = delete;
    FilePictures& operator=(const FilePictures&) = delete;

    // Each listed and ready to be shown.

    /// @param page  0 live files, 1 recycle bin
    [[nodiscard]] std::unique_ptr<QWidget> Sheet(unsigned page);
    /// In the middle of a download.
    [[nodiscard]] std::unique_ptr<QWidget> Progress();
    [[nodiscard]] std::unique_ptr<QWidget> Destination();
    [[nodiscard]] static std::unique_ptr<QWidget> Error();

private:
    std::unique_ptr<simulator::Simulator> m_simulator;
    std::unique_ptr<CCommand> m_command;
};

} // namespace fieldcore
