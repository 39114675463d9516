#include "app/Application.h"
#include "app/Body.h"
#include "app/DisplayCheck.h"
#include "app/Language.h"
#include "system/Signals.h"

#include <QIcon>
#include <QTranslator>

#include <cstdio>

int main(int argc, char* argv[])
{
    reportFailedWrites();
    if (const QString missing = missingDisplay(argc, argv); !missing.isEmpty()) {
        std::fprintf(stderr, "drovik: %s\n", missing.toLocal8Bit().constData());
        return 1;
    }
    // On screens of many points an inch everything grows alike, not the letters alone.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    Application application(argc, argv);
    // Where the program is installed, its window has the icon of its menu entry.
    const QString menuEntry = QStringLiteral("io.github.drovik.Drovik");
    QApplication::setDesktopFileName(menuEntry);
    QApplication::setWindowIcon(QIcon::fromTheme(menuEntry));
    QTranslator catalogue;
    QTranslator extras;
    if (wantsJapanese(QApplication::arguments())) {
        // Without the catalogue the interface stays English, so the result is of no interest.
        (void)catalogue.load(QStringLiteral(":velk_ja_JP"), QApplication::applicationDirPath(),
                             QString(), QString());
        QApplication::installTranslator(&catalogue);
        (void)extras.load(QStringLiteral(":/extras/extras_ja.qm"));
        QApplication::installTranslator(&extras);
    }
    Body body;
    QObject::connect(&application, &Application::failed, &body, &Body::tellFailure);
    body.show();
    // When the window is there, which shows how far the reading is.
    QMetaObject::invokeMethod(&body, &Body::openGivenJob, Qt::QueuedConnection);
    return QApplication::exec();
}
