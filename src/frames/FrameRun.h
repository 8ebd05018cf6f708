#pragma once

#include "frames/FrameRange.h"

#include <QByteArray>
#include <QString>
#include <vector>

namespace Halvern::UI {

/// What becomes one entry of a FileInfoList: its name in UTF-8, and whether that stands for a sequence.
struct ListedName
{
    QByteArray text;
    bool isSequence = false;
};

/// Numbered files of one pattern that follow each other in a sorted listing, and how they are listed.
class FrameRun
{
public:
    /// No run: it has no names and takes none.
    FrameRun() = default;
    /// A run of one name, read with one "#" for each digit of @p frame.
    FrameRun(const QString& pattern, int frame);

    /// Adds the next name, if its pattern is the same but for the number of "#" and its frame is larger. Else
    /// false, and nothing changes.
    bool take(const QString& pattern, int frame);
    int size() const { return m_size; }

    /// The names under which a run of two or more is listed, in the forms of FileInfoList: a single one, or
    /// with @p split one for each present run.
    std::vector<ListedName> listedNames(bool split) const;

private:
    std::vector<Base::FrameRange> presentRuns() const;
    QString fileNameOf(int frame) const;

    QString m_pattern;
    int m_first = 0;
    int m_last = 0;
    int m_step = 0; // 0 until there are two names
    int m_size = 0;
    std::vector<Base::FrameRange> m_closedRuns; // those before a gap
    int m_openRunStart = 0;
};

} // namespace Halvern::UI
