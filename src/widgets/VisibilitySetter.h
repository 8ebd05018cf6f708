#pragma once

#include "base/Export.h"

#include <QPointer>
#include <QWidget>
#include <vector>

namespace Halvern::UI {

/// Collects which widgets are to be shown and hidden while a tree of disclosure buttons is walked, and then
/// shows and hides them at once.
///
/// Only the order of recording counts, never the addresses of the widgets. Widgets are borrowed; one that is
/// destroyed before its turn is passed over. GUI thread only.
class HVCOREUI_EXPORT VisibilitySetter
{
public:
    /// Notes that @p widget, which must not be null, is to be visible or hidden. A later note for the same
    /// widget replaces an earlier one and takes its own, later place.
    void record(QWidget* widget, bool visible);

    /// Hides every widget that is recorded as hidden and then shows every widget that is recorded as visible,
    /// each in the order of recording. A widget that is in the wanted state already is not touched.
    ///
    /// Hidden means QWidget::isHidden(): a widget that merely waits for its window to be shown counts as
    /// visible.
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
