#include <QApplication>
#include <QLabel>
#include <catalogue/FileInfo.h>
#include <dialog/FCPreviewInfo.h>
#include <dialog/FileDialog.h>
#include <iostream>

using namespace Halvern::UI;

// Any widget with this slot can be the preview. FilePreview is one with a frame slider.
class FirstFrame : public QLabel
{
    Q_OBJECT

public slots:
    void fileSelected(const Halvern::UI::FileInfo& info, QDir dir)
    {
        const QString path = dir.filePath(QString::fromUtf8(info.displayName()));
        const FCPreviewInfo shown(path, 0); // the frame of the sequence nearest to 0
        setPixmap(QPixmap(shown.path));
        std::cout << "shows " << shown.path.toStdString() << std::endl;
    }
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    FileDialog dialog;
    dialog.setSequencesEnabled(true);
    dialog.setPreviewWidget(new FirstFrame); // the browser owns it from now on
    dialog.exec();
}

#include "preview.moc"
