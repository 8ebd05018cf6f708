#include "browser/DirectoryUpdate.h"

#include "catalogue/FileManager.h"
#include "catalogue/KnownFiles.h"

#include <cerrno>
#include <new>
#include <utility>

namespace Halvern::UI {

DirectoryUpdate::DirectoryUpdate(bool assumeZeroPadding)
    : m_manager(std::make_unique<FileManager>())
{
    constexpr int LongestPause = 10000; // milliseconds, from an update to the next
    m_manager->setAssumeZeroPadding(assumeZeroPadding);
    m_releaseTimer.setSingleShot(true);
    m_releaseTimer.setInterval(LongestPause);
    connect(&m_releaseTimer, &QTimer::timeout, this, [this] { m_manager->release(); });
    listen();
}

DirectoryUpdate::~DirectoryUpdate() = default;

void DirectoryUpdate::listen()
{
    connect(m_manager.get(), &FileManager::refreshList, this, [this] { noteArrivals(true); });
    connect(m_manager.get(), &FileManager::infoUpdated, this, [this] { noteArrivals(m_namesComplete); });
}

void DirectoryUpdate::begin(const std::string& path, KnownFiles known, bool namesOrdered)
{
    m_isRunning = true;
    ++m_number;
    m_releaseTimer.stop();
    m_timer.start();
    m_namesComplete = m_isRead = false;
    m_manager->setNamesOrdered(namesOrdered);
    if (!m_manager->readAgain(path, std::move(known)))
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

bool DirectoryUpdate::isUnchanged() const
{
    return m_manager->isUnchanged();
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
    m_manager->cleanData();
    m_releaseTimer.start();
    emit ended(static_cast<int>(m_timer.elapsed()), isComplete && error == 0);
}

} // namespace Halvern::UI
