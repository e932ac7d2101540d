#pragma once

#include "app/Picture.h"

#include <vector>

namespace fieldcore {

class Controller;

/// The dialogs in front of the connected receiver, the bubble in every state, a levelling step by
/// step, and the texts of a calibration.
/// @param controller  must outlive what is made
[[nodiscard]] std::vector<Picture> TiltScreens(Controller& controller);

} // namespace fieldcore
