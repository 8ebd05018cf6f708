from conftest import QTest, rows
from qt import QtCore, QtGui, QtWidgets

from _HvMirefoldCoreUI import Halvern

VIRTUALS = """event eventFilter timerEvent childEvent customEvent connectNotify disconnectNotify setVisible sizeHint
    mousePressEvent mouseReleaseEvent mouseDoubleClickEvent mouseMoveEvent keyPressEvent keyReleaseEvent
    focusInEvent focusOutEvent enterEvent leaveEvent paintEvent moveEvent resizeEvent closeEvent contextMenuEvent
    actionEvent dragEnterEvent dragMoveEvent dragLeaveEvent dropEvent showEvent hideEvent changeEvent metric
    initPainter inputMethodEvent focusNextPrevChild""".split()


def test_overrides_are_called_and_reach_the_native_handlers(open_browser):
    called = set()

    def noting(name):
        def override(self, *arguments):
            called.add(name)
            return getattr(Halvern.UI.FileBrowser, name)(self, *arguments)
        return override

    browser = open_browser(kind=type("Noting", (Halvern.UI.FileBrowser,), {name: noting(name) for name in VIRTUALS}))
    assert "notes.txt" in rows(browser), "the native showEvent() lists"
    edit = browser.findChild(QtWidgets.QLineEdit, "filenameEdit")
    before = edit.text()
    QTest.keyClick(edit, QtCore.Qt.Key.Key_Down)
    assert edit.text() != before, "the native eventFilter() moves in the list"
    edit.setFocus()
    kinds, left = QtCore.QEvent.Type, QtCore.Qt.MouseButton.LeftButton
    unmodified, place = QtCore.Qt.KeyboardModifier.NoModifier, QtCore.QPointF()
    key = QtGui.QKeyEvent(kinds.KeyPress, QtCore.Qt.Key.Key_Return, unmodified)
    browser.event(key)
    assert key.isAccepted(), "the native keyPressEvent() ends Return"
    QTest.keyClick(browser, QtCore.Qt.Key.Key_F5)
    drop = (QtCore.QPoint(), QtCore.Qt.DropAction.CopyAction, QtCore.QMimeData(), left, unmodified)
    mouse = (kinds.MouseButtonPress, kinds.MouseButtonRelease, kinds.MouseButtonDblClick, kinds.MouseMove)
    action = (getattr(QtGui, "QAction", None) or QtWidgets.QAction)(browser)
    for event in [*(QtGui.QMouseEvent(kind, place, place, left, left, unmodified) for kind in mouse),
                  QtGui.QEnterEvent(place, place, place), *(QtCore.QEvent(kind) for kind in (
                      kinds.Leave, kinds.User, kinds.StyleChange)),
                  QtGui.QFocusEvent(kinds.FocusIn), QtGui.QFocusEvent(kinds.FocusOut), QtGui.QInputMethodEvent(),
                  QtCore.QTimerEvent(1), QtCore.QChildEvent(kinds.ChildPolished, QtCore.QObject(browser)),
                  QtGui.QMoveEvent(QtCore.QPoint(), QtCore.QPoint()), QtGui.QActionEvent(kinds.ActionChanged, action),
                  QtGui.QDragEnterEvent(*drop), QtGui.QDragMoveEvent(*drop), QtGui.QDragLeaveEvent(),
                  QtGui.QDropEvent(place, *drop[1:]),
                  QtGui.QContextMenuEvent(QtGui.QContextMenuEvent.Reason.Mouse, QtCore.QPoint(), QtCore.QPoint())]:
        browser.event(event)
    browser.focusNextChild()
    browser.windowTitleChanged.disconnect(browser.windowTitleChanged.connect(print))
    browser.adjustSize()
    browser.grab()
    browser.close()
    assert set(VIRTUALS) - called == set()


def test_errors_in_overrides_do_not_end_the_process(open_browser, capfd):
    def leave(*_):
        raise SystemExit("leaving")

    overrides = {"resizeEvent": leave, "mousePressEvent": lambda *_: 1 // 0, "sizeHint": lambda _: "big"}
    browser = open_browser(kind=type("Raising", (Halvern.UI.FileBrowser,), overrides))
    QTest.mouseClick(browser, QtCore.Qt.MouseButton.LeftButton)
    browser.adjustSize()
    printed = capfd.readouterr().err
    assert "SystemExit: leaving" in printed and "ZeroDivisionError" in printed and "QSize" in printed
