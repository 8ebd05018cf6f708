#pragma once

#include "browser/DirectoryModel.h"
#include "browser/FileBrowser.h"
#include "browser/FilesList.h"
#include "browser/FilesMenu.h"
#include "browser/ProxyModel.h"
#include "widgets/FilePathEdit.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QtTest>

/// A shown browser with sequences collapsed, driven by its controls as a user does.
class BrowserWindow
{
public:
    using FileBrowser = Halvern::UI::FileBrowser;

    explicit BrowserWindow(const QString& folder)
    {
        browser.setSequencesEnabled(true);
        browser.setDirectory(QDir(folder), false, true);
        browser.resize(900, 600);
        browser.show();
        QApplication::setActiveWindow(&browser);
    }

    template <class Widget = QPushButton>
    Widget* control(const char* name) const
    {
        return browser.findChild<Widget*>(QLatin1String(name));
    }
    FileBrowser::FilesList* list() const { return browser.findChild<FileBrowser::FilesList*>(); }
    FileBrowser::FilesMenu* menu() const { return browser.findChild<FileBrowser::FilesMenu*>(); }
    FileBrowser::DirectoryModel* model() const { return browser.findChild<FileBrowser::DirectoryModel*>(); }
    FileBrowser::ProxyModel* proxy() const { return browser.findChild<FileBrowser::ProxyModel*>(); }
    FilePathEdit* edit() const { return browser.findChild<FilePathEdit*>(); }

    /// The names as the list shows them.
    QStringList rows() const
    {
        QStringList names;
        for (int row = 0; row < proxy()->rowCount(); ++row)
            names.append(proxy()->index(row, 0).data().toString());
        return names;
    }
    QModelIndex row(const QString& name) const { return proxy()->index(int(rows().indexOf(name)), 0); }

    QPoint place(const QString& name) const { return list()->visualRect(row(name)).center(); }
    void clickRow(const QString& name, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                  Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(list()->viewport(), button, modifiers, place(name));
    }
    /// Moves the mouse over a row. The display server tells the list of it when it comes to it, and not at
    /// all while the window is being mapped.
    void hover(const QString& name)
    {
        const auto isHovered = [&] {
            QTest::mouseMove(list()->viewport(), place(name) + QPoint(1, 0));
            QTest::mouseMove(list()->viewport(), place(name));
            return row(name).isValid() && model()->hoveredRow() == proxy()->mapToSource(row(name)).row();
        };
        QTRY_VERIFY(isHovered());
    }
    void focusList()
    {
        QApplication::setActiveWindow(&browser);
        list()->setFocus();
        QTRY_VERIFY(list()->hasFocus());
    }
    /// Types into the emptied filename field.
    void type(const QString& text)
    {
        edit()->selectAll();
        QTest::keyClicks(edit(), text);
    }

    FileBrowser browser;
};
