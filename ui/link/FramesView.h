#pragma once

#include "ui/controls/Dialog.h"
#include "ui/link/FramesModel.h"

#include <QTimer>

#include <filesystem>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTableView;

namespace fieldcore {

/// A page of the frames that go over the line while they do: each with its time, way and meaning,
/// to be filtered, held, and saved as an exchange log. User-interface thread only.
class FramesView : public Dialog
{
    Q_OBJECT

public:
    /// @param history  not owned, must outlive the page; whoever has the channel fills it
    explicit FramesView(FrameHistory& history, QWidget* parent = nullptr);

    /// Shows what is new. Called five times a second while the page is seen and not held.
    void Refresh();
    /// Saves the frames that are shown; says so when it fails.
    /// @return 1 if they were saved
    int Save(const std::filesystem::path& file);

    [[nodiscard]] FramesModel& Model() { return m_model; }

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void Build();
    void AskAndSave();
    void ApplyFilter();
    void Hold(bool on);
    void ShowCount();
    void ShowDetail();

    FramesModel m_model;
    QTimer m_timer;
    QTableView* m_table; // owned by the page, as are all that follow
    QComboBox* m_show;
    QLineEdit* m_search;
    QLabel* m_count;
    QPlainTextEdit* m_detail;
    QPushButton* m_hold;
    QPushButton* m_save;
    QPushButton* m_clear;
};

} // namespace fieldcore
