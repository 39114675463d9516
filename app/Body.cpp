#include "app/Body.h"

#include "app/FourPs.h"

Body::Body(QWidget* parent) : QMainWindow(parent)
{
    setupUi(this);
    setWindowTitle(QStringLiteral("drovik")); // a name, the same in every language
    m_panel = new FourPs;
    bodyLayout->addWidget(m_panel);
}
