#pragma once

#include <QImage>
#include <QMetaType>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

namespace Halvern::UI {

/// Tells whether a file is the one that was read before: its size, and when it was changed.
struct FileVersion
{
    qint64 size = -1;    ///< In bytes; -1 if nothing is known.
    qint64 modified = 0; ///< In nanoseconds since the epoch.

    bool isKnown() const { return size >= 0; }
    bool operator==(const FileVersion& other) const
    {
        return size == other.size && modified == other.modified;
    }
    bool operator!=(const FileVersion& other) const { return !(*this == other); }
};

/// What a file says about its picture. Texts are empty if it does not say.
struct PictureDescription
{
    QSize fullSize;         ///< Of the file's display window, in its own pixels.
    QRect dataWindow;       ///< Where the file has pixels, from the top left corner of the display window.
    double pixelAspect = 1; ///< A pixel's width, divided by its height.
    QStringList channels;   ///< "R", "G", "B", "A", "diffuse.R": in the order of the file.
    QString depth;          ///< "8 bit", "10 bit", "half float", "float".
    QString compression;    ///< "zip".
    QString colourSpace;    ///< "sRGB", "linear", "Cineon log", or a name of the OCIO configuration.
    QString timeCode;       ///< "01:02:03:04".
    QString font;           ///< The name of the font of which the picture is a sample; empty for a picture.
    double frameRate = 0;   ///< Frames a second; 0 if the file does not say.
};

/// A picture that was read from a file to be shown in a room of some size. A value that is cheap to copy.
struct Picture : PictureDescription
{
    QString path;
    QSize room;          ///< What it was to fit into, in pixels.
    FileVersion version; ///< Of the file, when it was read.
    /// Fits the room, with square pixels; never enlarged. Colours are ready to be shown, and multiplied by
    /// alpha (QImage::Format_RGBA8888_Premultiplied).
    QImage image;
};

} // namespace Halvern::UI

Q_DECLARE_METATYPE(Halvern::UI::Picture)
