#pragma once

#include <QByteArray>
#include <QTemporaryDir>
#include <initializer_list>

/// Makes the files that a test needs. Names are bytes, passed to the system unchanged.
namespace SampleFiles {

/// Makes one file of @p size bytes in @p folder; false if the system refuses it.
bool make(const QString& folder, const QByteArray& name, int size = 0);

/// Makes empty files, and folders of the names that end in "/"; false at the first that the system refuses.
bool make(const QString& folder, std::initializer_list<const char*> names);

/// The same for the names that the printf pattern @p pattern gives for the frames @p first to @p last.
bool makeFrames(const QString& folder, const char* pattern, int first, int last);

/// Writes the file @p path; false if the system refuses it.
bool write(const QString& path, const QByteArray& contents);
/// What the file @p path holds; empty if the system does not tell.
QByteArray read(const QString& path);

} // namespace SampleFiles

/// A temporary folder with files and folders in it, as make() makes them.
class SampleFolder : public QTemporaryDir
{
public:
    SampleFolder(std::initializer_list<const char*> names = {});
    /// With the frames @p first to @p last of @p pattern.
    SampleFolder(const char* pattern, int first, int last);
};
