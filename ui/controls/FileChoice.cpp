#include "ui/controls/FileChoice.h"

#include "core/resources/StringTable.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QPushButton>
#include <QTranslator>

namespace fieldcore {

namespace {

class FileDialog : public QFileDialog
{
public:
    using QFileDialog::QFileDialog;

protected:
    void accept() override
    {
        const QStringList files = selectedFiles();
        const QFileInfo file(files.isEmpty() ? QString() : files.constFirst());
        if (acceptMode() == AcceptSave && file.isFile()) {
            const BoxStyle style{BoxButtons::YesNo, BoxIcon::Exclamation, BoxAnswer::No};
            const std::wstring name = file.fileName().toStdWString();
            MessageDlg question(ToQt(FormatText(text::kFileReplace, name.c_str())), windowTitle(),
                                style, this);
            if (question.Ask() != BoxAnswer::Yes) {
                return;
            }
        }
        QFileDialog::accept();
    }
};

/// A handheld has no room for what nobody needs.
void MakeNarrow(const QFileDialog& dialog)
{
    for (const char* const name : {"forwardButton", "listModeButton", "detailModeButton"}) {
        if (auto* const button = dialog.findChild<QWidget*>(QString::fromLatin1(name))) {
            button->hide();
        }
    }
    for (auto* const button : dialog.findChildren<QPushButton*>()) {
        button->setIcon({});
    }
    for (auto* const box : dialog.findChildren<QComboBox*>()) {
        box->setMinimumWidth(2 * TouchStyle::kTarget); // what is longer is elided
    }
}

} // namespace

std::filesystem::path ChooseFile(QWidget* parent, bool save, const QString& caption,
                                 const std::filesystem::path& suggested, const QString& filter)
{
    const QFileInfo start(QFile::decodeName(suggested.c_str()));
    FileDialog dialog(parent, caption, start.path(), filter);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setLabelText(QFileDialog::Accept, UiText(save ? text::kFileSave : text::kFileOpen));
    dialog.setLabelText(QFileDialog::Reject, UiText(text::kButtonCancel));
    dialog.setLabelText(QFileDialog::FileName, UiText(text::kFileName));
    dialog.setLabelText(QFileDialog::FileType, UiText(text::kFileType));
    dialog.setLabelText(QFileDialog::LookIn, UiText(text::kFileFolder));
    if (save) {
        dialog.setDefaultSuffix(start.suffix()); // here, so that it asks before replacing a file
    }
    dialog.setOption(QFileDialog::DontUseNativeDialog);  // which has its own words
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // it asks in ours
    dialog.selectFile(start.fileName());
    MakeNarrow(dialog);
    if (parent != nullptr) {
        constexpr QSize kLargest(800, 640);
        dialog.resize(parent->window()->size().boundedTo(kLargest));
        FitOnScreen(dialog);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    return QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString();
}

bool UseJapaneseTextsOfQt()
{
    if (CurrentLanguage() != Language::Japanese) {
        return false;
    }
    auto* const translator = new QTranslator(QCoreApplication::instance());
    return translator->load(QStringLiteral("qtbase_ja"),
                            QLibraryInfo::path(QLibraryInfo::TranslationsPath)) &&
           QCoreApplication::installTranslator(translator);
}

} // namespace fieldcore
