#include "bench/FirstPaint.h"

#include <QMainWindow>

/// The least that a program with a main window can do before it shows.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QMainWindow window;
    const FirstPaint end(&window);
    window.show();
    return QApplication::exec();
}
