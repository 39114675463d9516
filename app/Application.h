#pragma once

#include <QApplication>

/// The application; an exception that leaves an event handler ends the handler, not the program.
class Application : public QApplication
{
    Q_OBJECT

public:
    Application(int& argc, char** argv) : QApplication(argc, argv) {}

    /// Delivers an event. @return what its receiver makes of it, false where that was broken off
    bool notify(QObject* receiver, QEvent* event) override;

signals:
    void failed(const QString& line); ///< why a handler was broken off

private:
    void tell(const QString& line);
};
