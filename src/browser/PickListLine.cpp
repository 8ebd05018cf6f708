#include "browser/PickListLine.h"

#include "browser/FileBrowser.h"

#include <QMouseEvent>

namespace Halvern::UI {

PickListLine::PickListLine(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    hide();
}

void PickListLine::showPaths(const QStringList& paths)
{
    constexpr int MostLines = 30; // that a screen shows
    setVisible(!paths.isEmpty());
    setText(FileBrowser::tr("%1 in the pick list").arg(paths.size()));
    QStringList lines = paths.mid(0, MostLines);
    if (paths.size() > MostLines)
        lines.append(FileBrowser::tr("and %1 more").arg(paths.size() - MostLines));
    for (QString& line : lines)
        line = line.toHtmlEscaped();
    // A plain text that looks like HTML would be taken for it.
    setToolTip(QLatin1String("<p style='white-space:pre'>") + lines.join(QLatin1String("<br>")) +
               QLatin1String("</p>"));
}

void PickListLine::mousePressEvent(QMouseEvent* event)
{
    emit menuRequested(mapToGlobal(event->pos()));
}

} // namespace Halvern::UI
