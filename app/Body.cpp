#include "app/Body.h"

#include "app/BusyBar.h"
#include "app/FourPs.h"
#include "app/StatusWords.h"
#include "display/PopBase.h"
#include "display/ScreenRoom.h"
#include "input/AFileSelect.h"
#include "jobs/GivenJob.h"

#include <QCloseEvent>
#include <QFile>
#include <QScreen>

Body::Body(QWidget* parent) : QMainWindow(parent)
{
    setupUi(this);
    setWindowTitle(QStringLiteral("drovik")); // a name, the same in every language
    m_panel = new FourPs;
    bodyLayout->addWidget(m_panel);
    m_panel->displays->installEventFilter(this);
    m_busy = std::make_unique<BusyBar>(statusbar);
    m_words = std::make_unique<StatusWords>(*m_panel, *statusbar);
    connect(m_panel, &FourPs::progress, this,
            [this](const QString& text, double part) { m_busy->show(text, part); });
}

Body::~Body()
{
    m_words.reset(); // has nothing to say of a panel that goes
    delete m_panel;  // while what shows its progress is still there
}

void Body::tellFailure(const QString& line)
{
    m_busy->show(QString(), 1.0);
    m_panel->refuse(line);
}

void Body::openGivenJob()
{
    const QString path = QFile::decodeName(qgetenv(givenJobVariable));
    qunsetenv(givenJobVariable);
    if (!path.isEmpty())
        m_panel->openJob(path);
}

void Body::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    fitToScreen(*this, *event);
}

bool Body::eventFilter(QObject* watched, QEvent* event)
{
    Displays* graphs = m_panel->displays;
    if (watched == graphs && event->type() == QEvent::Show && isVisible() && !m_graphsPlaced) {
        m_graphsPlaced = true;
        graphs->setGeometry(placeBeside(frameGeometry(), screen()->availableGeometry(),
                                        graphs->size(), graphs->minimumSizeHint()));
    }
    return QMainWindow::eventFilter(watched, event);
}

void Body::closeEvent(QCloseEvent* event)
{
    event->accept();
    for (const DispABase* graph : qAsConst(m_panel->displays->panels)) {
        if (!graph->docked)
            graph->pop->close();
    }
    m_panel->displays->close();
    m_panel->closeOthers();
    for (AFileSelect* select : m_panel->findChildren<AFileSelect*>())
        select->closeDialog();
}
