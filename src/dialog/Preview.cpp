#include "dialog/Preview.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace Halvern::UI {

FilePreview::Preview::Preview(QWidget* parent)
    : QGLWidget(parent)
{
    setMinimumSize(512, 256);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

// A buffer that nobody draws into shows what was on the screen before.
void FilePreview::Preview::glDraw()
{
    makeCurrent();
    if (isValid() && QOpenGLContext::currentContext())
        QOpenGLContext::currentContext()->functions()->glClear(GL_COLOR_BUFFER_BIT);
    QGLWidget::glDraw();
}

void FilePreview::Preview::resizeGL(int /*width*/, int /*height*/) {}

void FilePreview::Preview::paintGL() {}

} // namespace Halvern::UI
