#include "app/Application.h"

#include <exception>
#include <new>

bool Application::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
        tell(QStringLiteral("There is not enough memory."));
    } catch (const std::exception& exception) {
        tell(QStringLiteral("The operation failed: %1")
                 .arg(QString::fromLocal8Bit(exception.what())));
    }
    return false;
}

void Application::tell(const QString& line)
{
    try {
        emit failed(line);
    } catch (const std::exception& exception) {
        // Not even a line can be shown; what can be said without memory is said there.
        qWarning("%s", exception.what());
    }
}
