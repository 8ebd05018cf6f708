#include <QGuiApplication>
#include <QTemporaryDir>
#include <iostream>
#include <pictures/Picture.h>
#include <pictures/PictureReader.h>

using namespace Halvern::UI;

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath("bars.png");
    QImage bars(960, 540, QImage::Format_RGB32);
    bars.fill(Qt::darkCyan);
    bars.save(path);

    PictureReader reader;
    QObject::connect(&reader, &PictureReader::pictureRead, [&](const Picture& picture) {
        picture.image.save(folder.filePath("thumbnail.png"));
        std::cout << picture.fullSize.width() << " pixels wide, thumbnail " << picture.image.width()
                  << std::endl;
        application.quit();
    });
    QObject::connect(&reader, &PictureReader::pictureFailed, [&](const QString&, const QString& reason) {
        std::cerr << reason.toStdString() << std::endl;
        application.exit(1);
    });
    reader.read(path, QSize(480, 480)); // fits into a square of that many pixels
    return application.exec();
}
