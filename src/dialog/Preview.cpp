#include "dialog/Preview.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace Halvern::UI {

FilePreview::Preview::Preview(QWidget* parent)
    : Base::DrawingSurface(parent)
{
    setMinimumSize(512, 256);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void FilePreview::Preview::resizeGL(int /*width*/, int /*height*/) {}

// A buffer that nobody draws into shows what was on the screen before.
void FilePreview::Preview::paintGL()
{
    if (isValid() && QOpenGLContext::currentContext())
        QOpenGLContext::currentContext()->functions()->glClear(GL_COLOR_BUFFER_BIT);
}

} // namespace Halvern::UI
