#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace fieldcore {

class Controller;

/// A screen of the tilt sensor or the tracking settings, for pictures.
struct TiltScreen
{
    QString name;
    std::function<std::unique_ptr<QWidget>()> make;
};

/// The dialogs in front of the connected receiver, the bubble in every state, a levelling step by
/// step, and the texts of a calibration.
/// @param controller  must outlive what is made
[[nodiscard]] std::vector<TiltScreen> TiltScreens(Controller& controller);

} // namespace fieldcore
