#pragma once

#include "base/Export.h"

#include <QWidget>
#include <set>
#include <vector>

class QPainter;
struct ScaleNumber;

/// A frame number; the whole 32-bit range is usable.
using FrameNumber = qint32;

/// A timeline of one line: a window onto a frame range that the user zooms and pans, with a play head, an in
/// and an out point, key frames and cached frames.
///
/// The mouse, in the scale of 10 pixels from the left edge to 10 pixels from the right edge:
/// - the left button scrubs the head, with Control it moves the nearer of in and out point, with Alt it pans;
/// - the right or middle button selects a range to zoom into, and a click without a drag asks the host by
///   sliderRangeReset() to reset the view; with Alt it zooms, 96 pixels to the left or down double the view.
///   No context menu opens, not even that of a parent, unless the host sets another contextMenuPolicy();
/// - the wheel zooms about the frame under the mouse, one step for an event;
/// - without a button the frame under the mouse is marked.
///
/// The keyboard, while the slider has the focus, which it takes by Tab and not by a click:
/// - Left and Right move the head by a frame, Page Down and Page Up by ten, Home and End to the first and the
///   last frame to play, or in view while the in and out marks are hidden;
/// - I and O move the in and the out point to the head, while their marks are shown;
/// - "+" and "-" zoom about the head, Alt with Left or Right pans by a tenth of the view, and F asks the host
///   by sliderRangeReset() to reset it.
///
/// All frames are whole numbers. "The view" is what is visible, "the play range" lies from the in to the out
/// point, "the frame range" is all that there is. What a host sets emits nothing; signals tell what the user
/// did. A slot of any of them may delete the slider. The drag in progress is kept once for all sliders, as
/// are the colours and the key frames. A disabled slider is drawn in its palette's text colour. The tooltip
/// tells what the mouse does. GUI thread only; 31 pixels high, and as wide as its layout allows.
class HVCOREUI_EXPORT FrameSlider : public QWidget
{
    Q_OBJECT

public:
    /// A view of 0 to 100, a play range of 10 to 100, an empty frame range and the head at 0. With
    /// @p showGlobalKeys the key frames of SetKeys() are drawn. @p parent owns it.
    FrameSlider(bool showGlobalKeys, QWidget* parent);
    ~FrameSlider() override;

    FrameNumber value() const { return m_value; } ///< The frame of the play head.
    FrameNumber viewStart() const { return m_viewStart; }
    FrameNumber viewEnd() const { return m_viewEnd; }
    int inPoint() const { return m_inPoint; }
    int outPoint() const { return m_outPoint; }
    int frameFirst() const { return m_frameFirst; }
    int frameLast() const { return m_frameLast; }

    /// Moves the head; the view grows to show it. False if it is there already.
    bool setValue(FrameNumber v);
    /// Shows the frames @p start to @p end, which are not put in order. False if they are shown already.
    bool range(FrameNumber start, FrameNumber end);
    /// Sets the play range, which is not put in order. False if nothing changes.
    bool setinout(int in, int out);
    /// Sets the frame range, in either order. It becomes the play range and the view, except while
    /// setKeepInOut() is on: then the play range stays, and only the first call shows it. False if nothing
    /// changes.
    bool set_frame_range(int a, int b);

    /// Shows the play range.
    bool zoomToPlayRange() { return range(m_inPoint, m_outPoint); }
    /// Shows the whole frame range.
    bool zoomToSubrange() { return range(m_frameFirst, m_frameLast); }
    /// Applies the present view again, which changes nothing; always false.
    bool zoomToRange() { return range(m_viewStart, m_viewEnd); }

    /// The first frame to play: the in point where it is strictly inside the view or kept, else the first
    /// frame in view.
    int first_frame() const;
    /// The last frame to play, likewise.
    int last_frame() const;

    /// Always false.
    bool isLocked() const { return false; }
    /// Whether the head is being dragged; emits scrubbingChanged() on a change.
    void setScrubbing(bool scrubbing);
    /// Hides the in and out marks (default: shown); the keys then pass them over.
    void setHideInOut(bool hide);
    /// Keeps the play range when the frame range changes (default: off), see set_frame_range().
    void setKeepInOut(bool keep);
    /// Moves the scale to the right by @p pixels (default: 0); a negative number counts as 0.
    void setMargin(int pixels);
    /// Marks frames as cached, in the lower row of marks; replaces what was set before.
    void setCacheFrames(const std::set<int>& frames);

    /// The pixel of a frame: viewStart() stands at 10, viewEnd() 10 before the right edge. A view of one
    /// frame puts everything at 10. Pixels far outside are cut to the range of a billion either side.
    int valueToMouse(double v) const;
    /// The frame of a pixel, with its fraction.
    double mouseToValue(int x) const;
    /// Where the frame after @p v begins: the right edge of what @p v covers. At the end of the view it is
    /// the end of the scale; frames before the view count as its first.
    int valuePlusOneToMouse(double v) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// For hosts that keep the state of a slider elsewhere; both do nothing.
    void load_from_knobs() {}
    void store_to_knobs() {}

    /// The colours are packed as rgb0toQColor() reads them and show at the next paint of each slider.
    /// 0 by default, which is black, and the palette's text colour on a dark background.
    static void SetHeadColour(quint32 colour) { _headColour = colour; }
    /// 0xd3431dff by default.
    static void SetInOutColour(quint32 colour) { _inOutColour = colour; }
    /// 0x276ad1ff by default. The head takes it too where it stands on a key frame.
    static void SetKeyframeColour(quint32 colour) { _keyframeColour = colour; }
    /// 0x436043ff by default.
    static void SetCacheframeColour(quint32 colour) { _cacheframeColour = colour; }
    /// The key frames of all sliders, shown at the next paint of each; none by default.
    static void SetKeys(const std::set<int>& keys);

signals:
    /// The user moved the head to @p value, or let go of it there.
    void sliderMoved(int value);
    /// The user zoomed or panned the view, or drags over a range to zoom into (the view follows at the end).
    void sliderRangeChanged();
    /// The user moved the in or the out point.
    void sliderInOutChanged();
    /// The user clicked with the right or middle button: the host may set the view that it likes.
    void sliderRangeReset();
    /// The user took hold of the head (true) or let go of it (false). Hiding or disabling the slider, a modal
    /// box and a popup end the drag too; this signal then comes with the next turn of the event loop.
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

    /// Called by each paint before the key rows are drawn, for subclasses that fill cacheFrames or _keys only
    /// when they are needed. They do not call this one.
    virtual void prepareKeys();

    /// Draws the frames of @p frames that lie within @p from and @p to as marks two pixels high, the upper at
    /// the pixel row @p row; neighbouring frames join into one mark. Frames outside the painted band may be
    /// left out.
    void drawKeyframes(int from, int to, int row, QPainter& painter, const QColor& colour,
                       const std::set<int>& frames) const;

    std::set<int> cacheFrames;
    static inline std::set<int> _keys;
    /// What keeps the settings of this slider elsewhere, null (the default) for nothing; borrowed, and never
    /// followed. While set, the scale outside the frame range is blackened.
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
    // The frames of setCacheFrames() and SetKeys() once more: a search of a large std::set is slow.
    std::vector<int> m_cacheList;
    static inline std::vector<int> s_keyList;
    bool m_setsAreAsSet = false; // by those two; a subclass that overrides prepareKeys() may change the sets

    static inline quint32 _headColour = 0;
    static inline quint32 _inOutColour = 0xd3431dff;
    static inline quint32 _keyframeColour = 0x276ad1ff;
    static inline quint32 _cacheframeColour = 0x436043ff;

    // One mouse drags one slider at a time.
    static inline DragMode dragMode = DragMode::Idle;
    static inline FrameSlider* s_dragged = nullptr; // the slider of dragMode, null while idle
    static inline int hoverX = 0;
    // What a press found: the pixel, its frame without and with its fraction, and the view.
    static inline QPoint s_pressed;
    static inline FrameNumber s_pressedFrame = 0;
    static inline double s_pressedValue = 0;
    static inline FrameNumber s_pressedStart = 0;
    static inline FrameNumber s_pressedEnd = 0;
    static inline FrameNumber selectEnd = 0;
};
