#pragma once

#include "core/equipment/AntennaSettings.h"
#include "ui/controls/Dialog.h"

class QBoxLayout;
class QLabel;
class QPushButton;

namespace fieldcore {

class AntennaDrawing;
class CTComboBox;
class RoleLabel;

/// The antenna of a station: its type, how its height is measured, the height and the serial
/// number, with a drawing of what is measured. The vertical height follows what is typed. OK stores
/// it for the role, unless a type or method has to be chosen before: see ChoiceFault().
/// User-interface thread only.
///
/// Opening reads the settings of the role; what a host has set before is forgotten then.
class CAntenna : public Dialog, public AntennaSettings
{
    Q_OBJECT

public:
    /// @param command    channel to the receiver; not owned, must outlive the dialog
    /// @param rover      0: reference station
    /// @param reConnect  not 0: the receiver is asked for its antenna when the dialog opens
    CAntenna(CCommand* command, int rover, int reConnect, QWidget* parent = nullptr);

    /// Lets the user choose the role, too.
    void OfferRoles();

    /// Shows the values as they stand here, stored or not, when the dialog is open.
    void ShowValues() { DoDataExchange(false); }

    /// Fills the list of types, with the chosen one selected.
    void SetAntType();
    /// Fills the list of ways to measure the chosen type, with the chosen one selected.
    void SetAntWay();

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// Height and serial number from the controls, or all values to them.
    void DoDataExchange(bool fromControls);
    /// Whether the controls show what they showed when the role was read.
    [[nodiscard]] bool IsUnchanged() const;
    void ShowHeight();
    void ChooseType();
    void ChooseWay();
    void ReadRole();
    void AskReceiver(bool isWanted);
    bool Stay(const std::wstring& fault, QWidget* field);

    CTComboBox* m_role; // owned by the dialog, as are all that follow
    QLabel* m_roleLabel;
    CTComboBox* m_antennaType;
    CTComboBox* m_antennaWay;
    CTComboBox* m_height;
    CTComboBox* m_serial;
    AntennaDrawing* m_drawing;
    QLabel* m_how;
    RoleLabel* m_vertical;
    RoleLabel* m_warning;
    QPushButton* m_ask;
    QBoxLayout* m_body;

    /// What the role had when it was read.
    struct Read
    {
        int type = 0;
        int way = 0;
        QString height;
        QString serial;
    } m_read;
};

} // namespace fieldcore
