#pragma once

#include <QString>
#include <QWidget>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace fieldcore {

class Controller;
class MainWindow;

// Pictures of every screen of the controller. The controller must outlive what is made.
// User-interface thread only.

/// A screen that a picture is taken of, as it is when it has just been opened.
struct Picture
{
    const char* name; ///< of its files, without size and colours
    std::function<std::unique_ptr<QWidget>()> make;
};
using Pictures = std::vector<Picture>;

/// Every screen but the window itself.
[[nodiscard]] Pictures AllPictures(Controller& controller);
/// Some of them: the plan in its graphs, with all systems too, what opens from it, and the live
/// sky.
[[nodiscard]] Pictures PlanPictures(Controller& controller);
/// Some of them: what shows the values, the files and the tilt of a receiver, with simulated ones
/// of their own.
[[nodiscard]] Pictures ReceiverPictures(Controller& controller);

/// Connects, writes the pictures as PNG, in both sizes and colours, and disconnects. Says on the
/// standard output what came of it.
/// @param folder  is made if it is not there
/// @param stop    whether it should end before the next picture
/// @return an exit code: 0; 3 if the port cannot be used; 7 if it was stopped; 8 if the folder or a
/// picture cannot be written
int WritePictures(
    Controller& controller, MainWindow& window, const QString& folder,
    const std::function<bool()>& stop = [] { return false; });

/// Processes events until @p isDone, or @p patience is at its end.
void WaitUntil(const std::function<bool()>& isDone,
               std::chrono::milliseconds patience = std::chrono::seconds(5));

} // namespace fieldcore
