// Lists a directory with its sequences collapsed, one entry on each line.
//
// Exit status: 0, or 2 for a directory that cannot be read or a wrong option.

#include "catalogue/FileInfoList.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cerrno>
#include <cstring>
#include <iostream>

namespace {

int fail(const std::string& message)
{
    std::cerr << "seqls: " << message << std::endl;
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromUtf8(argv[i]));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Lists a directory with numbered files collapsed into sequences."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption expanded(QStringLiteral("expanded"), QStringLiteral("List every file."));
    const QCommandLineOption split(QStringLiteral("split"),
                                   QStringLiteral("List each present run of a sequence on its own."));
    parser.addOptions({expanded, split});
    parser.addPositionalArgument(QStringLiteral("directory"), QStringLiteral("The directory to list."),
                                 QStringLiteral("DIRECTORY"));
    const bool understood = parser.parse(arguments);
    if (parser.isSet(help)) {
        std::cout << parser.helpText().toStdString();
        return 0;
    }
    if (!understood)
        return fail(parser.errorText().toStdString());
    if (parser.positionalArguments().size() != 1)
        return fail("one directory is to be named");

    const QString directory = parser.positionalArguments().first();
    Halvern::UI::FileInfoList list;
    list.setSequencesEnabled(!parser.isSet(expanded));
    list.setSplitSequences(parser.isSet(split));
    if (list.fill(directory) < 0)
        return fail("cannot read " + directory.toStdString() + ": " + std::strerror(errno));
    for (const Halvern::UI::FileInfo& entry : list.entries()) {
        // A name may contain a line end, which would make two entries of one.
        const QByteArray line = QByteArray(entry.fileName()).replace('\n', "\\n");
        if (line == "." || line == "..")
            continue;
        std::cout << line.constData() << '\n';
    }
    return 0;
}
