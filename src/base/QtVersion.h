#pragma once

#include <QMouseEvent>
#include <QWheelEvent>

class QGLWidget;
class QOpenGLWidget;

/// What differs between Qt 5 and Qt 6, and between their releases. No other file of src tests the version.
namespace Halvern::Base {

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#define HVCOREUI_DRAWING_SURFACE_HEADER <QOpenGLWidget>
using DrawingSurface = QOpenGLWidget;
inline QPointF positionOf(const QMouseEvent& event)
{
    return event.position();
}
#else
#define HVCOREUI_DRAWING_SURFACE_HEADER <QGLWidget>
using DrawingSurface = QGLWidget;
inline QPointF positionOf(const QMouseEvent& event)
{
    return event.localPos();
}
#endif

inline QPointF positionOf(const QWheelEvent& event)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    return event.position();
#else
    return event.posF();
#endif
}

} // namespace Halvern::Base
