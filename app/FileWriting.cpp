#include "app/FileWriting.h"

#include "app/FourPs.h"
#include "app/GraphMenu.h"
#include "system/SafeFile.h"

#include <QFileInfo>

namespace
{

bool isSameFile(const QString& path, const QString& other)
{
    const QString place = QFileInfo(path).canonicalFilePath();
    return !place.isEmpty() && place == QFileInfo(other).canonicalFilePath();
}

WriteOutcome written(const QString& path, const QByteArray& bytes)
{
    SafeFile file(path);
    if (!file.open())
        return WriteOutcome::CannotOpen;
    return file.write(bytes.constData(), bytes.size()) && file.commit() ? WriteOutcome::Written
                                                                        : WriteOutcome::CannotWrite;
}

} // namespace

bool mayWrite(FourPs& panel, const QString& path)
{
    for (const QString& file : panel.filesRead()) {
        if (isSameFile(path, file)) {
            panel.refuse(GraphMenu::tr("The file [%1] is one that is shown: choose another name.")
                             .arg(path));
            return false;
        }
    }
    return true;
}

bool writeWhole(FourPs& panel, const QString& path, const QByteArray& bytes)
{
    const WriteOutcome outcome = written(path, bytes);
    panel.tellWritten(path, outcome);
    return outcome == WriteOutcome::Written;
}
