#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

namespace fieldcore {

/// A screen that a picture is taken of.
struct Picture
{
    QString name; ///< of its files, without size and colours
    std::function<std::unique_ptr<QWidget>()> make;
};

} // namespace fieldcore
