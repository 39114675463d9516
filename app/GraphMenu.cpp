#include "app/GraphMenu.h"

#include "app/FileQuestion.h"
#include "app/FileWriting.h"
#include "app/FourPs.h"
#include "app/GraphPicture.h"
#include "display/DispArea.h"
#include "results/GraphTable.h"

#include <QApplication>
#include <QClipboard>
#include <QFileInfo>

GraphMenu::GraphMenu(FourPs& panel, DispArea& canvas, const QString& title,
                     const std::function<GraphTable()>& table)
    : QMenu(&canvas), m_panel(panel), m_canvas(canvas), m_title(title), m_table(table)
{
    setObjectName(QStringLiteral("GraphMenu"));
    setAccessibleName(title);
    addEntry("CopyPicture", tr("&Copy"), &GraphMenu::copyPicture);
    addEntry("SavePicture", tr("&Save Picture…"), &GraphMenu::savePicture);
    addEntry("SaveData", tr("Save &Data…"), &GraphMenu::saveData);
    addSeparator();
    addEntry("ResetRange", tr("&Reset Range"), &GraphMenu::resetRange);
    m_canvas.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&m_canvas, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& place) { popup(m_canvas.mapToGlobal(place)); });
}

void GraphMenu::addEntry(const char* name, const QString& text, void (GraphMenu::*entry)())
{
    QAction* action = addAction(text, this, entry);
    action->setObjectName(QString::fromLatin1(name));
}

void GraphMenu::copyPicture()
{
    if (hasData())
        QApplication::clipboard()->setImage(graphImage(m_canvas));
}

void GraphMenu::savePicture()
{
    if (!hasData())
        return;
    std::vector<FileQuestion::Kind> kinds;
    for (const QString& suffix : pictureSuffixes())
        kinds.push_back({suffix.toUpper(), suffix});
    m_panel.fileQuestion().askToSave(tr("Save Picture"), m_title, kinds,
                                     [this](const QString& path) { writePicture(path); });
}

void GraphMenu::saveData()
{
    if (hasData())
        m_panel.fileQuestion().askToSave(tr("Save Data"), m_title,
                                         {{QStringLiteral("CSV"), QStringLiteral("csv")}},
                                         [this](const QString& path) { writeData(path); });
}

void GraphMenu::resetRange()
{
    m_canvas.rangeSet = false;
    m_canvas.update();
}

void GraphMenu::writePicture(const QString& path)
{
    if (!mayWrite(m_panel, path))
        return;
    const QByteArray picture = graphPicture(m_canvas, QFileInfo(path).suffix().toLower(), m_title);
    if (picture.isEmpty())
        m_panel.tellWritten(path, WriteOutcome::CannotWrite);
    else
        writeWhole(m_panel, path, picture);
}

void GraphMenu::writeData(const QString& path)
{
    if (!mayWrite(m_panel, path))
        return;
    const QString text = QStringLiteral("Writing %1").arg(QFileInfo(path).fileName());
    emit m_panel.progress(text, 0.0);
    const WriteOutcome outcome =
        writeTable(path, m_table(), [&](double part) { emit m_panel.progress(text, part); });
    emit m_panel.progress(text, 1.0);
    m_panel.tellWritten(path, outcome);
}

// A graph says so itself when it is painted: its frame is not valid then.
bool GraphMenu::hasData()
{
    QImage page(1, 1, QImage::Format_RGB32);
    m_canvas.paintOn(page);
    if (m_canvas.coord.valid != 1)
        m_panel.refuse(tr("There is nothing in the graph yet."));
    return m_canvas.coord.valid == 1;
}
