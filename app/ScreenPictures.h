#pragma once

#include "app/Picture.h"

#include <functional>

namespace fieldcore {

class MainWindow;

/// Pictures of every screen of the controller, in both sizes and colours. User-interface thread
/// only.
class ScreenPictures
{
public:
    /// @param controller, window  must outlive the object
    ScreenPictures(Controller& controller, MainWindow& window);

    /// Connects, writes the pictures as PNG and disconnects. Says on the standard output what came
    /// of it.
    /// @param folder  is made if it is not there
    /// @param stop    whether it should end before the next picture
    /// @return an exit code: 0; 3 if the port cannot be used; 7 if it was stopped; 8 if the folder
    /// or a picture cannot be written
    int Write(
        const QString& folder, const std::function<bool()>& stop = [] { return false; });

    /// Every screen but the window itself, as it is when it has just been opened.
    [[nodiscard]] Pictures All();

private:
    Controller& m_controller;
    MainWindow& m_window;
};

} // namespace fieldcore
