#pragma once

#include "base/Export.h"

#include <QWidget>
#include <set>
#include <vector>

class QPainter;
struct ScaleNumber;

/// A frame number. The whole 32-bit range can be used.
using FrameNumber = qint32;

/// A timeline of one line. It shows a part of a frame range, which the user zooms and pans, a play head, an
/// in and an out point, key frames and cached frames.
///
/// The mouse. The scale lies from 10 pixels after the left edge to 10 pixels before the right edge.
/// - The left button scrubs the head. With Control it moves the nearer of in and out point, with Alt it pans.
/// - The right or middle button selects a range to zoom into. A click emits sliderRangeReset(). With Alt it
///   zooms: 96 pixels to the left or down double the view.
/// - No context menu opens, not even that of a parent, unless the host sets another contextMenuPolicy().
/// - The wheel zooms about the frame under the mouse, one step for each event.
/// - Without a button the frame under the mouse is marked.
///
/// The keyboard. The slider takes the focus by Tab, not by a click.
/// - Left and Right move the head by one frame, Page Down and Page Up by ten. Home and End move it to the
///   first and last frame to play, or in view if the in and out marks are hidden.
/// - I and O move the in and the out point to the head, if their marks are shown.
/// - "+" and "-" zoom about the head. Alt with Left or Right pans by a tenth of the view. F emits
///   sliderRangeReset().
///
/// "The view" is the visible range, "the play range" lies from the in to the out point, and "the frame range"
/// is the whole range. Setters emit nothing, except setScrubbing(): the other signals report what the user
/// did. A slot of any signal may delete the slider. All sliders share the drag in progress, the colours and
/// the key frames. A disabled slider is drawn in its palette's text colour. The tooltip lists the mouse
/// actions. GUI thread only. The slider is 31 pixels high and as wide as its layout allows.
class HVCOREUI_EXPORT FrameSlider : public QWidget
{
    Q_OBJECT

public:
    /// Makes a slider with a view of 0 to 100, a play range of 10 to 100, the frame range 0 to 0 and the head
    /// at 0. If @p showGlobalKeys is true, it shows the key frames of SetKeys(). @p parent owns the slider.
    FrameSlider(bool showGlobalKeys, QWidget* parent);
    ~FrameSlider() override;

    FrameNumber value() const { return m_value; } ///< The frame of the play head.
    FrameNumber viewStart() const { return m_viewStart; }
    FrameNumber viewEnd() const { return m_viewEnd; }
    int inPoint() const { return m_inPoint; }
    int outPoint() const { return m_outPoint; }
    int frameFirst() const { return m_frameFirst; }
    int frameLast() const { return m_frameLast; }

    /// Moves the head. The view grows to show it. Returns false if the head is there already.
    bool setValue(FrameNumber v);
    /// Sets the view to @p start to @p end, without ordering them. Returns false if it is the view already.
    bool range(FrameNumber start, FrameNumber end);
    /// Sets the play range, without ordering it. Returns false if nothing changes.
    bool setinout(int in, int out);
    /// Sets the frame range; the order of the arguments does not matter. The play range and the view become
    /// the same range. With setKeepInOut() the play range stays, and only the first call sets the view, to
    /// the play range. Returns false if nothing changes.
    bool set_frame_range(int a, int b);

    /// Shows the play range.
    bool zoomToPlayRange() { return range(m_inPoint, m_outPoint); }
    /// Shows the whole frame range.
    bool zoomToSubrange() { return range(m_frameFirst, m_frameLast); }
    /// Sets the present view again, which changes nothing. Returns false.
    bool zoomToRange() { return range(m_viewStart, m_viewEnd); }

    /// The first frame to play: the in point, if it is strictly inside the view or setKeepInOut() is on, else
    /// the first frame in view.
    int first_frame() const;
    /// The last frame to play, likewise.
    int last_frame() const;

    /// Always false.
    bool isLocked() const { return false; }
    /// Sets whether the head is being dragged, and emits scrubbingChanged() on a change.
    void setScrubbing(bool scrubbing);
    /// Hides the in and out marks (default: shown). Home, End, I and O then don't use them.
    void setHideInOut(bool hide);
    /// Keeps the play range when the frame range changes (default: off), see set_frame_range().
    void setKeepInOut(bool keep);
    /// Moves the scale to the right by @p pixels (default: 0). A negative number counts as 0.
    void setMargin(int pixels);
    /// Sets the cached frames, which are shown in the lower row of marks (default: none).
    void setCacheFrames(const std::set<int>& frames);

    /// The pixel of a frame. viewStart() is at 10, viewEnd() 10 pixels before the right edge. In a view of
    /// one frame every frame is at 10. The result is limited to a billion pixels to either side.
    int valueToMouse(double v) const;
    /// The frame of a pixel, with its fraction.
    double mouseToValue(int x) const;
    /// The pixel at which the frame after @p v begins, the right edge of @p v. At the end of the view it is
    /// the end of the scale. Frames before the view count as its first frame.
    int valuePlusOneToMouse(double v) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Hooks for hosts that store the state of a slider. Both do nothing.
    void load_from_knobs() {}
    void store_to_knobs() {}

    /// Colours are packed, see rgb0toQColor(). Each slider uses them from its next paint on. The default 0 is
    /// black, and on a dark background the palette's text colour.
    static void SetHeadColour(quint32 colour) { s_headColour = colour; }
    /// Default: 0xd3431dff.
    static void SetInOutColour(quint32 colour) { s_inOutColour = colour; }
    /// Default: 0x276ad1ff. On a key frame the head has this colour too.
    static void SetKeyframeColour(quint32 colour) { s_keyColour = colour; }
    /// Default: 0x436043ff.
    static void SetCacheframeColour(quint32 colour) { s_cacheColour = colour; }
    /// Sets the key frames of all sliders (default: none). Each slider uses them from its next paint on.
    static void SetKeys(const std::set<int>& keys);

signals:
    /// The user moved the head to @p value, or released it there.
    void sliderMoved(int value);
    /// The user zoomed or panned the view, or is selecting a range, which becomes the view at the end.
    void sliderRangeChanged();
    /// The user moved the in or the out point.
    void sliderInOutChanged();
    /// The user clicked with the right or middle button, or pressed F. The host may reset the view.
    void sliderRangeReset();
    /// The user pressed (true) or released (false) the head. Hiding or disabling the slider, a modal box and
    /// a popup end the drag too. The signal is then emitted in the next turn of the event loop.
    void scrubbingChanged(bool scrubbing);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    /// Called by each paint before the key rows are drawn. Subclasses that fill cacheFrames or _keys on
    /// demand override it, without calling this one.
    virtual void prepareKeys();

    /// Draws the frames of @p frames from @p from to @p to as marks two pixels high, in the pixel rows @p row
    /// and below. Neighbouring frames join into one mark. Frames outside the painted band may be left out.
    void drawKeyframes(int from, int to, int row, QPainter& painter, const QColor& colour,
                       const std::set<int>& frames) const;

    std::set<int> cacheFrames;
    static inline std::set<int> _keys;
    /// The object that stores the settings of this slider, null by default; not owned, and not used. If it is
    /// set, the scale outside the frame range is black.
    const QObject* settingsOwner = nullptr;

private:
    class Painting;
    class Accessible;

    enum class DragMode
    {
        Idle,
        Hovering,
        Scrubbing,
        Selecting,
        Zooming,
        Panning,
        MovingIn,
        MovingOut
    };

    int frameUnderMouse(int x) const;
    int nearestFrame(int x) const;
    DragMode modeOfPress(const QMouseEvent& event) const;
    DragMode pointAt(int x) const;
    void takeMouse(DragMode mode);
    static DragMode giveMouse();
    void loseMouse();
    void drag(QPoint mouse);
    void zoom(QPoint mouse);
    void movePoint(int frame);
    void endSelection(QPoint mouse);
    void hover(int x);
    QRect hoverBand() const;
    ScaleNumber numberAbove(FrameNumber frame, int x) const;
    QFont numberFont() const;
    void drawKeys(QPainter& painter, const QColor& cacheColour, const QColor& keyColour);
    template <typename Frames>
    void drawMarks(int from, int to, int row, QPainter& painter, const QColor& colour,
                   const Frames& frames) const;
    void setView(qint64 start, qint64 end);
    void pan(qint64 frames);
    void zoomAbout(double frame, int steps);
    void moveHead(qint64 frame);
    void initAccessibility();
    void announceValue();

    int m_frameFirst = 0;
    int m_frameLast = 0;
    int m_inPoint = 10;
    int m_outPoint = 100;
    int m_margin = 0;
    bool m_keepInOut = false;
    bool m_zoomOnFirstRange = true;
    bool m_hideInOut = false;
    bool m_showGlobalKeys;
    bool m_scrubbing = false;
    FrameNumber m_viewStart = 0;
    FrameNumber m_viewEnd = 100;
    FrameNumber m_value = 0;
    // The frames of setCacheFrames() and SetKeys(), sorted: a large std::set is slow to search.
    std::vector<int> m_cacheList;
    static inline std::vector<int> s_keyList;
    bool m_setsAreAsSet = false; // false if a subclass overrides prepareKeys(), which may change the sets

    static inline quint32 s_headColour = 0;
    static inline quint32 s_inOutColour = 0xd3431dff;
    static inline quint32 s_keyColour = 0x276ad1ff;
    static inline quint32 s_cacheColour = 0x436043ff;

    // One mouse drags one slider at a time.
    static inline DragMode s_dragMode = DragMode::Idle;
    static inline FrameSlider* s_dragged = nullptr; // the slider of s_dragMode, null while idle
    static inline int s_hoverX = 0;
    // The state at the press: the pixel, its frame without and with its fraction, and the view.
    static inline QPoint s_pressed;
    static inline FrameNumber s_pressedFrame = 0;
    static inline double s_pressedValue = 0;
    static inline FrameNumber s_pressedStart = 0;
    static inline FrameNumber s_pressedEnd = 0;
    static inline FrameNumber s_selectEnd = 0;
};
