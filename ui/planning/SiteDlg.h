#pragma once

#include "core/host/Host.h"
#include "core/planning/SiteInput.h"
#include "ui/controls/Dialog.h"

#include <array>
#include <filesystem>

class QLabel;
class QLineEdit;

namespace fieldcore {

/// Name and coordinates of one site. OK stores it in the site file; what is wrong is told below the
/// fields, and the field has the focus. User-interface thread only.
class SiteDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param folder  of the site file
    /// @param name    the site to change; empty: a new one
    /// @param input   what stands in the fields at first
    SiteDlg(std::filesystem::path folder, std::wstring name, const SiteInput& input,
            QWidget* parent = nullptr);

    /// The site as it was stored, after DoModal() has returned kOk.
    [[nodiscard]] const ListedSite& Site() const { return m_site; }

protected:
    bool OnClose(int result) override;

private:
    void ShowFault(SiteField field, const QString& text);

    const std::filesystem::path m_folder;
    const std::wstring m_name;
    ListedSite m_site;
    std::array<QLineEdit*, 4>
        m_fields; // owned by the dialog, as is the next; in order of SiteField
    QLabel* m_fault;
};

} // namespace fieldcore
