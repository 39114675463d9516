#include "batch/ShowJob.h"

#include "jobs/GivenJob.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>

#include <unistd.h>

QString showJob(const QString& path)
{
    const QString name = QStringLiteral("drovik");
    QString program =
        QStandardPaths::findExecutable(name, {QCoreApplication::applicationDirPath()});
    if (program.isEmpty())
        program = QStandardPaths::findExecutable(name);
    if (program.isEmpty())
        return QStringLiteral("The window cannot be started: there is no drovik beside "
                              "drovik-batch or in PATH.");
    qputenv(givenJobVariable, QFile::encodeName(QFileInfo(path).absoluteFilePath()));
    const QByteArray file = QFile::encodeName(program);
    execl(file.constData(), file.constData(), static_cast<char*>(nullptr));
    return QStringLiteral("The window cannot be started: %1: %2")
        .arg(program, qt_error_string(errno));
}
