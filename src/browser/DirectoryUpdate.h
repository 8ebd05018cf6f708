#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

namespace Halvern::UI {

class FileManager;
class KnownFiles;

/// Reads a directory again into a catalogue of its own, beside the one that is shown. The model that owns it
/// takes the catalogue over when it is complete. While updates follow each other, the memory of the entries
/// is kept for the next one.
class DirectoryUpdate : public QObject
{
    Q_OBJECT

public:
    /// @p assumeZeroPadding: see FileManager::setAssumeZeroPadding().
    explicit DirectoryUpdate(bool assumeZeroPadding);
    ~DirectoryUpdate() override;

    /// Begins to read @p path again, of which @p known is shown. For @p namesOrdered see
    /// FileManager::setNamesOrdered(). If nothing can begin, the update ends at once.
    void begin(const std::string& path, KnownFiles known, bool namesOrdered);
    /// From begin() on until ended().
    bool isRunning() const { return m_isRunning; }
    /// Changes with each begin() and each repeatSteps().
    unsigned number() const { return m_number; }
    /// Ends an update that is running without a result. Waits for the worker's present call to the file
    /// system.
    void abandon();
    /// What was read.
    FileManager& manager() { return *m_manager; }
    /// Whether the files, their kinds, sizes and times are the known ones. Then manager() has none of them.
    bool isUnchanged() const;
    /// Calls @p step in the next turn of the event loop, unless the update ends before. If @p step throws
    /// `std::bad_alloc`, the update fails.
    void inNextTurn(std::function<void()> step);
    /// Drops the steps that were to come, and emits filesRead() again if it was due already.
    void repeatSteps();
    /// Makes @p manager the one that was read, without connections. The one that it was dies with finish():
    /// its entries do, the object is kept for the next update.
    void exchange(std::unique_ptr<FileManager>& manager);
    /// Ends the update.
    void finish() { end(0); }
    /// Why the last update failed: an error number of the system, 0 if it succeeded.
    int error() const { return m_error; }
    /// Forgets the error of the last update.
    void forgetError() { m_error = 0; }

signals:
    /// All names and attributes were read: the steps may begin.
    void filesRead();
    /// @p milliseconds after begin(); once for each update.
    void ended(int milliseconds, bool succeeded);

private:
    void listen();
    void noteArrivals(bool areNamesComplete);
    void beginSteps();
    void end(int error, bool isComplete = true);

    std::unique_ptr<FileManager> m_manager;
    QElapsedTimer m_timer;
    QTimer m_releaseTimer; // for the memory of the entries
    unsigned m_number = 0; // of the update's steps
    bool m_isRunning = false;
    bool m_namesComplete = false;
    bool m_isRead = false;
    int m_error = 0;
};

} // namespace Halvern::UI
