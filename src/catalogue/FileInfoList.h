#pragma once

#include "base/Export.h"
#include "catalogue/FileInfo.h"

#include <QObject>
#include <QString>
#include <cstddef>
#include <vector>

namespace Halvern::UI {

/// Lists a whole directory in one call and collapses numbered files into sequences, whose names tell range,
/// step and present runs. FileManager does not block.
///
/// Owns its entries, by value. They have names only: no size, time or directory flag, and no members. Names
/// are UTF-8. The fileName() of a sequence is all of its text, in one of the forms
///
///     x.#.exr 1-4                              frames 1, 2, 3, 4
///     x.#.exr 1-7,2                            every second frame
///     x.####.exr 1-100 ( 1-49  61-100 )        with the runs that are present
///
/// with one "#" for each digit, or a single one if the frame numbers differ in width. A last frame that
/// stands alone after a gap is not listed as a run. If the step becomes smaller in the middle of a run, the
/// gaps before that place are those of the larger step. Only numbers in ASCII digits are joined, because a
/// range cannot tell the others.
///
/// Lives on the GUI thread. After each listing the event loop walks over all entries, one a turn, and
/// fileInfoAvailable() is emitted at the end.
class HVCOREUI_EXPORT FileInfoList : public QObject
{
    Q_OBJECT

public:
    /// An empty list with both switches off.
    FileInfoList();

    /// Whether numbered files are collapsed, from the next fill() on (default: no). Names are then ordered so
    /// that the frames of a sequence stand together. Numbered directories always stay separate.
    void setSequencesEnabled(bool enabled) { m_sequencesEnabled = enabled; }
    /// Whether a sequence with gaps becomes an entry for each present run, from the next fill() on (default:
    /// no): "x.#.exr 1-2" and "x.#.exr 5-9", or the file's own name for a run of one frame.
    void setSplitSequences(bool split) { m_splitSequences = split; }

    /// Replaces the entries by those of the directory @p path, "." and ".." and hidden names included, and
    /// starts the walk. Blocks while it reads.
    ///
    /// Returns the number of names that were read. If @p path cannot be read, the result is negative, the
    /// list is empty, nothing is emitted, and `errno` tells why.
    int fill(const QString& path);

    /// The entries of the last listing, in natural order of their names.
    const std::vector<FileInfo>& entries() const { return m_entries; }
    /// The directory that was listed last, as it was given to fill().
    const QString& path() const { return m_path; }

    /// Reads @p name as a frame: "shot.0042.exr" gives the pattern "shot.####.exr" and the frame 42.
    /// Any decimal digit of Unicode counts by its value. False, with the outputs unspecified, if the name
    /// holds no frame number.
    static bool toFrameName(const QString& name, QString& pattern, int& frame);
    /// Whether two patterns belong to one sequence. If they differ in their number of "#" only, both get one
    /// "#": "f.##.exr" and "f.###.exr" give "f.#.exr".
    static bool makeCommonSequence(QString& a, QString& b);

    /// Begins the walk at the first entry; emits lazyStatFetchNext() if there is one. fill() does this.
    void startLazyStat();

signals:
    /// The walk has passed the last entry.
    void fileInfoAvailable();
    /// The walk is to go on by one entry. The list does that itself in the next turn of the event loop.
    void lazyStatFetchNext();

public slots:
    /// Moves the walk on by one entry and emits lazyStatFetchNext(), or fileInfoAvailable() if that was the
    /// last. Does nothing without entries.
    void onLazyStatFetchNext();

private:
    void queueStep();

    std::vector<FileInfo> m_entries;
    QString m_path;
    bool m_sequencesEnabled = false;
    bool m_splitSequences = false;
    std::size_t m_lazyStatCursor = 0;
    int m_queuedSteps = 0; // announced, and not yet delivered
};

} // namespace Halvern::UI
