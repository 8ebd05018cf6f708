#pragma once

#include "base/QtVersion.h"
#include "dialog/FilePreview.h"

#include HVCOREUI_DRAWING_SURFACE_HEADER

namespace Halvern::UI {

/// The drawing surface of a preview pane: the place where a picture goes. It draws nothing, so that it stays
/// blank; FilePreview::file() is what there is to draw.
class FilePreview::Preview : public Base::DrawingSurface
{
    Q_OBJECT

public:
    explicit Preview(QWidget* parent);

protected:
    void resizeGL(int width, int height) override;
    void paintGL() override;
};

} // namespace Halvern::UI
