#include "batch/PictureApplication.h"

#include <QGuiApplication>

namespace
{

void sayNothing(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

std::unique_ptr<QCoreApplication> pictureApplication(int& argc, char** argv)
{
    // Pictures are the same on every machine, whatever its display is set to.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    qputenv("QT_SCALE_FACTOR", "1");
    qunsetenv("QT_SCREEN_SCALE_FACTORS");
    qunsetenv("QT_ENABLE_HIGHDPI_SCALING");
    // The platform complains of folders of a session, which pictures do without.
    const QtMessageHandler before = qInstallMessageHandler(sayNothing);
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(before);
    return application;
}
