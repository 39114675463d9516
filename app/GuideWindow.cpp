#include "app/GuideWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

GuideWindow::GuideWindow(const QString& page)
{
    setObjectName(QStringLiteral("GuideWindow"));
    setAccessibleName(tr("Guide"));
    setWindowTitle(tr("Guide"));
    constexpr QSize roomForAPage(760, 680);
    resize(roomForAPage);
    setSource(QUrl::fromLocalFile(page));
}

QString GuideWindow::firstPage(const QString& folder, bool japanese)
{
    const QString language = japanese ? QStringLiteral("ja") : QStringLiteral("en");
    for (const char* const guide : {"../share/drovik/guide", "../docs/guide"}) {
        const QDir pages(folder + QLatin1Char('/') + QLatin1String(guide));
        const QString page = pages.filePath(language + QStringLiteral("/index.html"));
        if (QFileInfo::exists(page))
            return QDir::cleanPath(page);
    }
    return {};
}
