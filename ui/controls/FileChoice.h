#pragma once

#include <QString>
#include <QWidget>

#include <filesystem>

namespace fieldcore {

/// Asks for a file with a dialog whose buttons and labels are Japanese, whatever language Qt
/// speaks. User-interface thread only.
/// @param save       for writing; one that exists is asked about
/// @param suggested  with its folder
/// @param filter     as QFileDialog has it: "CSV (*.csv)"
/// @return empty if the user has cancelled
[[nodiscard]] std::filesystem::path ChooseFile(QWidget* parent, bool save, const QString& caption,
                                               const std::filesystem::path& suggested,
                                               const QString& filter);

/// Lets Qt's own texts, such as the question before a file is replaced, be Japanese, if Qt's
/// translation is installed. Once a program, after the first page: it reads a file.
/// @return whether it is
bool UseJapaneseTextsOfQt();

} // namespace fieldcore
