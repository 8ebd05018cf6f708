#include "browser/DirectoryUpdate.h"

#include "browser/DirectoryRows.h"
#include "catalogue/FileManager.h"

#include <QTimer>
#include <cerrno>
#include <new>
#include <utility>

namespace Halvern::UI {

namespace {

bool haveSameAttributes(const FileInfo& a, const FileInfo& b)
{
    return a.size() == b.size() && a.modificationTime() == b.modificationTime() &&
           a.isDirectory() == b.isDirectory();
}

} // namespace

DirectoryUpdate::DirectoryUpdate(bool assumeZeroPadding)
    : m_manager(std::make_unique<FileManager>())
{
    m_manager->setAssumeZeroPadding(assumeZeroPadding);
    listen();
}

DirectoryUpdate::~DirectoryUpdate() = default;

void DirectoryUpdate::listen()
{
    connect(m_manager.get(), &FileManager::refreshList, this, [this] { noteArrivals(true); });
    connect(m_manager.get(), &FileManager::infoUpdated, this, [this] { noteArrivals(m_namesComplete); });
}

void DirectoryUpdate::begin(const std::string& path, bool namesOrdered)
{
    m_isRunning = true;
    ++m_number;
    m_timer.start();
    m_namesComplete = m_isRead = false;
    m_manager->setNamesOrdered(namesOrdered);
    if (!m_manager->readInBackground(path))
        end(m_manager->readError());
}

void DirectoryUpdate::noteArrivals(bool areNamesComplete)
{
    m_namesComplete = areNamesComplete;
    if (!m_isRunning || m_isRead)
        return;
    m_isRead = m_manager->readError() != 0 || (m_namesComplete && m_manager->isInfoComplete());
    if (m_isRead)
        beginSteps();
}

// Not from within the manager's signals, after which it looks at its entries.
void DirectoryUpdate::beginSteps()
{
    inNextTurn([this] {
        if (m_manager->readError() != 0)
            end(m_manager->readError());
        else
            emit filesRead();
    });
}

void DirectoryUpdate::repeatSteps()
{
    ++m_number;
    if (m_isRunning && m_isRead)
        beginSteps();
}

void DirectoryUpdate::inNextTurn(std::function<void()> step)
{
    const auto callStep = [this, number = m_number, step = std::move(step)] {
        if (!m_isRunning || number != m_number)
            return;
        try {
            step();
        } catch (const std::bad_alloc&) {
            end(ENOMEM);
        }
    };
    QTimer::singleShot(0, this, callStep);
}

bool DirectoryUpdate::hasFilesOf(FileManager& manager) const
{
    DirectoryRows before;
    DirectoryRows after;
    manager.buildRunningList(&before.entries, Base::FileHandle::AllFiles);
    m_manager->buildRunningList(&after.entries, Base::FileHandle::AllFiles);
    if (before.entries.size() != after.entries.size())
        return false;
    const RowChanges changes(before.keys(manager), after.keys(*m_manager));
    if (changes.places().size() != before.entries.size())
        return false;
    for (std::size_t i = 0; i < before.entries.size(); ++i) {
        const auto place = static_cast<std::size_t>(changes.places()[i]);
        if (!haveSameAttributes(*before.entries[i], *after.entries[place]))
            return false;
    }
    return true;
}

void DirectoryUpdate::exchange(std::unique_ptr<FileManager>& manager)
{
    for (FileManager* each : {m_manager.get(), manager.get()})
        each->disconnect();
    m_manager.swap(manager);
    listen();
}

void DirectoryUpdate::abandon()
{
    if (m_isRunning)
        end(m_error, false);
}

void DirectoryUpdate::end(int error, bool isComplete)
{
    m_isRunning = false;
    m_error = error;
    m_manager->release();
    emit ended(static_cast<int>(m_timer.elapsed()), isComplete && error == 0);
}

} // namespace Halvern::UI
