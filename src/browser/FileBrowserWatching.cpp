// Keeps the rows of a watched folder up to date.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"

namespace Halvern::UI {

namespace {

std::string pathOf(const FileBrowser::DirectoryModel& model)
{
    return model.directory().absolutePath().toStdString();
}

} // namespace

void FileBrowser::setWatched(bool watched)
{
    d->m_watched = watched;
    d->watchIfShown();
}

bool FileBrowser::isWatched() const
{
    return d->m_watched;
}

void FileBrowser::Private::initWatch()
{
    QObject::connect(&m_shownState, &ShownState::changed, q, [this] { watchIfShown(); });
    QObject::connect(&m_watch, &DirectoryWatch::changed, m_model, [this] {
        if (!m_model->update(m_watch.changedNames()))
            m_watch.endRead(0, false);
    });
    QObject::connect(m_model, &DirectoryModel::updated, &m_watch, &DirectoryWatch::endRead);
    // Rows are also empty while an evaluator is asked, which reads nothing.
    QObject::connect(m_model, &DirectoryModel::readStarted, &m_watch, [this] {
        if (m_model->isReading())
            m_watch.beginRead(pathOf(*m_model));
    });
}

void FileBrowser::Private::watchIfShown()
{
    m_watch.setActive(m_watched && m_shownState.isShown());
}

// Tells the watch when the list is complete, and of a folder that could not be opened.
void FileBrowser::Private::noteReading()
{
    if (m_watch.path() != pathOf(*m_model))
        m_watch.beginRead(pathOf(*m_model));
    const bool failed = m_model->readError() != 0;
    if (!m_model->isReading() && !m_model->isUpdating() && (failed || m_model->hasAllAttributes()))
        m_watch.endRead(0, !failed);
}

} // namespace Halvern::UI
