from conftest import rows
from PyQt5.QtCore import QChildEvent, QEvent, QMimeData, QObject, QPoint, QPointF, Qt, QTimerEvent
from PyQt5.QtGui import (QActionEvent, QContextMenuEvent, QDragEnterEvent, QDragLeaveEvent, QDragMoveEvent, QDropEvent,
                         QFocusEvent, QInputMethodEvent, QKeyEvent, QMouseEvent, QMoveEvent)
from PyQt5.QtTest import QTest
from PyQt5.QtWidgets import QAction, QLineEdit

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
    edit = browser.findChild(QLineEdit, "filenameEdit")
    before = edit.text()
    QTest.keyClick(edit, Qt.Key_Down)
    assert edit.text() != before, "the native eventFilter() moves in the list"
    edit.setFocus()
    key = QKeyEvent(QEvent.KeyPress, Qt.Key_Return, Qt.NoModifier)
    browser.event(key)
    assert key.isAccepted(), "the native keyPressEvent() ends Return"
    QTest.keyClick(browser, Qt.Key_F5)
    drop = (QPoint(), Qt.CopyAction, QMimeData(), Qt.LeftButton, Qt.NoModifier)
    mouse = (QPointF(), Qt.LeftButton, Qt.LeftButton, Qt.NoModifier)
    for event in [*(QMouseEvent(QEvent.Type(kind), *mouse) for kind in range(QEvent.MouseButtonPress, QEvent.KeyPress)),
                  QEvent(QEvent.Enter), QEvent(QEvent.Leave), QEvent(QEvent.User), QEvent(QEvent.StyleChange),
                  QFocusEvent(QEvent.FocusIn), QFocusEvent(QEvent.FocusOut), QInputMethodEvent(), QTimerEvent(1),
                  QChildEvent(QEvent.ChildPolished, QObject(browser)), QMoveEvent(QPoint(), QPoint()),
                  QActionEvent(QEvent.ActionChanged, QAction(browser)), QDragEnterEvent(*drop), QDragMoveEvent(*drop),
                  QDragLeaveEvent(), QDropEvent(QPointF(), *drop[1:]),
                  QContextMenuEvent(QContextMenuEvent.Mouse, QPoint())]:
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
    QTest.mouseClick(browser, Qt.LeftButton)
    browser.adjustSize()
    printed = capfd.readouterr().err
    assert "SystemExit: leaving" in printed and "ZeroDivisionError" in printed and "QSize in this context" in printed
