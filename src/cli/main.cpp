#include "cli/ListCommand.h"

#include <QByteArrayList>
#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv); // for the system locale and storage information
    QByteArrayList args;
    for (int i = 1; i < argc; ++i)
        args.append(QByteArray(argv[i]));
    return runListCommand(args, stdout, stderr);
}
