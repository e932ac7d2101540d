#pragma once

#include <QComboBox>

namespace fieldcore {

/// A drop-down list whose entries carry codes: what is stored or sent is the code, whatever the
/// order of the list. User-interface thread only.
class CTComboBox : public QComboBox
{
    Q_OBJECT

public:
    /// What GetCode() answers where there is no entry.
    static constexpr int kNoCode = -1;

    /// An empty list.
    explicit CTComboBox(QWidget* parent = nullptr);

    /// @return the index of the new entry, which is the last
    int AddEntry(const QString& text, int code);

    /// The code of the entry that is selected.
    [[nodiscard]] int GetCode() const { return GetCode(currentIndex()); }
    [[nodiscard]] int GetCode(int index) const;
    /// The index of the first entry with that code, -1 if there is none.
    [[nodiscard]] int FindCode(int code) const;
    /// @return 1, or 0 if no entry has the code: then the selection stays
    int SelectCode(int code);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace fieldcore
