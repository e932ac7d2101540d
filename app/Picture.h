#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace fieldcore {

class Controller;

/// A screen that a picture is taken of.
struct Picture
{
    QString name; ///< of its files, without size and colours
    std::function<std::unique_ptr<QWidget>()> make;
};
using Pictures = std::vector<Picture>;

// Some of the screens of ScreenPictures, with simulated receivers of their own. The controller must
// outlive what is made. User-interface thread only.

/// The receiver's files, and its recycle bin.
[[nodiscard]] Pictures FilePictures(Controller& controller);
/// The plan in its graphs, with all systems too, what opens from it, and the live sky.
[[nodiscard]] Pictures PlanPictures(Controller& controller);
/// How the receiver is, after an hour that takes some seconds to live through.
[[nodiscard]] Pictures StatusPictures(Controller& controller);
/// The dialogs in front of a receiver with a tilt sensor, the bubble in every state, a levelling
/// step by step, and the texts of a calibration.
[[nodiscard]] Pictures TiltPictures(Controller& controller);

} // namespace fieldcore
