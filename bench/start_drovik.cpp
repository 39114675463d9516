#include "app/Body.h"
#include "bench/FirstPaint.h"

/// As `drovik -e`, up to the first paint of the window.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    Body body;
    const FirstPaint end(&body);
    body.show();
    return QApplication::exec();
}
