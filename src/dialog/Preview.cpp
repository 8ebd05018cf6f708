#include "dialog/Preview.h"

namespace Halvern::UI {

FilePreview::Preview::Preview(QWidget* parent)
    : QGLWidget(parent)
{
    setMinimumSize(512, 256);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void FilePreview::Preview::resizeGL(int /*width*/, int /*height*/) {}

void FilePreview::Preview::paintGL() {}

} // namespace Halvern::UI
