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

/// The parts of a shown browser, which may be in a dialog, driven by their controls as a user does.
class BrowserParts
{
public:
    using FileBrowser = Halvern::UI::FileBrowser;

    /// @p top is the browser or holds it, and may still be under construction.
    explicit BrowserParts(const QWidget& top)
        : m_top(top)
    {
    }

    template <class Widget = QPushButton>
    Widget* control(const char* name) const
    {
        return m_top.findChild<Widget*>(QLatin1String(name));
    }
    FileBrowser::FilesList* list() const { return m_top.findChild<FileBrowser::FilesList*>(); }
    FileBrowser::FilesMenu* menu() const { return m_top.findChild<FileBrowser::FilesMenu*>(); }
    FileBrowser::DirectoryModel* model() const { return m_top.findChild<FileBrowser::DirectoryModel*>(); }
    FileBrowser::ProxyModel* proxy() const { return m_top.findChild<FileBrowser::ProxyModel*>(); }
    FilePathEdit* edit() const { return m_top.findChild<FilePathEdit*>(); }

    /// Whether the folder has been read, with all attributes.
    bool isRead() const
    {
        return model()->isListReady() && !model()->isReading() && model()->hasAllAttributes();
    }
    /// The names as the list shows them.
    QStringList rows() const
    {
        QStringList names;
        for (int row = 0; row < proxy()->rowCount(); ++row)
            names.append(proxy()->index(row, 0).data().toString());
        return names;
    }
    QModelIndex row(const QString& name) const
    {
        return proxy()->index(static_cast<int>(rows().indexOf(name)), 0);
    }

    QPoint place(const QString& name) const { return list()->visualRect(row(name)).center(); }
    void clickRow(const QString& name, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                  Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseClick(list()->viewport(), button, modifiers, place(name));
    }
    /// Selects rows, and no others.
    void select(const QStringList& names) const
    {
        list()->clearSelection();
        for (const QString& name : names)
            list()->selectionModel()->setCurrentIndex(row(name), QItemSelectionModel::Select |
                                                                     QItemSelectionModel::Rows);
    }
    /// Moves the mouse over a row. The display server tells the list of it when it comes to it, and not at
    /// all while the window is being mapped.
    void hover(const QString& name) const
    {
        const auto isHovered = [&] {
            QTest::mouseMove(list()->viewport(), place(name) + QPoint(1, 0));
            QTest::mouseMove(list()->viewport(), place(name));
            return row(name).isValid() && model()->hoveredRow() == proxy()->mapToSource(row(name)).row();
        };
        QTRY_VERIFY(isHovered());
    }
    void focusList() const
    {
        QApplication::setActiveWindow(list()->window());
        list()->setFocus();
        QTRY_VERIFY(list()->hasFocus());
    }
    /// Types into the emptied filename field.
    void type(const QString& text) const
    {
        edit()->selectAll();
        QTest::keyClicks(edit(), text);
    }

private:
    const QWidget& m_top;
};

/// A shown browser with sequences collapsed. If it @p waits, it has read the folder.
class BrowserWindow : public BrowserParts
{
public:
    explicit BrowserWindow(const QString& folder, bool multiple = false, bool waits = true)
        : BrowserParts(browser)
    {
        browser.setSequencesEnabled(true);
        browser.setMultipleSelections(multiple);
        browser.setDirectory(QDir(folder), false, true);
        browser.resize(900, 600);
        browser.show();
        QApplication::setActiveWindow(&browser);
        if (waits)
            QTRY_VERIFY(isRead());
    }

    FileBrowser browser;
};
