#pragma once

#include "base/Export.h"

#include <QPointer>
#include <QWidget>
#include <vector>

namespace Halvern::UI {

/// Records which widgets of a tree of disclosure buttons are to be shown and hidden, and then does it.
///
/// Widgets are handled in the order of recording. They are not owned. GUI thread only.
class HVCOREUI_EXPORT VisibilitySetter
{
public:
    /// Records that @p widget, which must not be null, is to be visible or hidden. A later record of the same
    /// widget replaces the earlier one, also in the order.
    void record(QWidget* widget, bool visible);

    /// Hides all widgets recorded as hidden, then shows all widgets recorded as visible. A widget that is in
    /// the recorded state already is not touched. "Hidden" means QWidget::isHidden(), so a widget in a window
    /// that is not shown may count as visible.
    void apply() const;

private:
    struct Wanted
    {
        QPointer<QWidget> widget;
        bool visible;
    };

    std::vector<Wanted> m_wanted;
};

} // namespace Halvern::UI
