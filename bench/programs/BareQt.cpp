// A Qt program with one dialog that ends when it has been painted: the other side of the
// controller's start.

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPaintEvent>
#include <QVBoxLayout>

namespace {

class Painted : public QDialog
{
protected:
    void paintEvent(QPaintEvent* event) override
    {
        QDialog::paintEvent(event);
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Painted dialog;
    auto* const layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(QStringLiteral("観測計画")));
    dialog.resize(480, 640);
    dialog.show();
    return QApplication::exec();
}
