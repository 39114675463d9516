#include "app/JobMenu.h"

#include "app/FileQuestion.h"
#include "app/FileWriting.h"
#include "app/FourPs.h"
#include "app/PanelJob.h"
#include "app/PanelSettings.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace
{

const QString suffix = QStringLiteral("toml");
const QString separator = QStringLiteral("; ");

std::vector<FileQuestion::Kind> kinds()
{
    return {{QStringLiteral("TOML"), suffix}};
}

/// The job file among what is dropped; empty for anything else.
QString jobIn(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    const QString path = urls.isEmpty() ? QString() : urls.first().toLocalFile();
    return QFileInfo(path).suffix().toLower() == suffix ? path : QString();
}

} // namespace

JobMenu::JobMenu(FourPs& panel) : QMenu(&panel), m_panel(panel)
{
    setObjectName(QStringLiteral("JobMenu"));
    setAccessibleName(tr("Job"));
    addEntry("SaveJob", tr("&Save Job…"), "Ctrl+S", &JobMenu::askToSave);
    addEntry("OpenJob", tr("&Open Job…"), "Ctrl+O", &JobMenu::askToOpen);
    addSeparator();
    addEntry("ShowGuide", tr("&Guide"), "F1", &JobMenu::showGuide);
    m_panel.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&m_panel, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
        if (isFree(place))
            popup(m_panel.mapToGlobal(place));
    });
    m_panel.setAcceptDrops(true);
    m_panel.installEventFilter(this);
}

void JobMenu::addEntry(const char* name, const QString& text, const char* keys,
                       void (JobMenu::*entry)())
{
    QAction* action = addAction(text, this, entry);
    action->setObjectName(QString::fromLatin1(name));
    action->setShortcut(QKeySequence(QString::fromLatin1(keys)));
    action->setShortcutContext(Qt::ApplicationShortcut);
    m_panel.addAction(action);
}

/// Labels and what is between the controls.
bool JobMenu::isFree(const QPoint& place) const
{
    const QWidget* child = m_panel.childAt(place);
    return child == nullptr || child->focusPolicy() == Qt::NoFocus;
}

bool JobMenu::eventFilter(QObject* watched, QEvent* event)
{
    const bool isDrop = event->type() == QEvent::Drop;
    if (!isDrop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove)
        return QMenu::eventFilter(watched, event);
    auto* drop = static_cast<QDropEvent*>(event); // of all three kinds the base
    const QString path = jobIn(*drop->mimeData());
    if (path.isEmpty()) {
        drop->ignore();
        return true;
    }
    drop->acceptProposedAction();
    if (isDrop)
        open(path);
    return true;
}

void JobMenu::askToSave()
{
    m_panel.fileQuestion().askToSave(tr("Save Job"), QStringLiteral("job"), kinds(),
                                     [this](const QString& path) { save(path); });
}

void JobMenu::askToOpen()
{
    m_panel.fileQuestion().askToOpen(tr("Open Job"), kinds(),
                                     [this](const QString& path) { open(path); });
}

void JobMenu::showGuide()
{
    m_panel.showGuide(QCoreApplication::applicationDirPath());
}

void JobMenu::save(const QString& path)
{
    if (!mayWrite(m_panel, path))
        return;
    const SavedJob saved = jobOf(m_panel, QFileInfo(path).absolutePath());
    if (writeWhole(m_panel, path, saved.text) && !saved.lost.isEmpty())
        m_panel.appendMessage(tr("A job cannot hold: %1").arg(saved.lost.join(separator)));
}

void JobMenu::open(const QString& path)
{
    JobError error;
    const std::optional<Job> job = readJob(path, error);
    std::optional<ShownFiles> shown;
    if (job)
        shown = shownFiles(*job, m_panel, error);
    if (!shown)
        return m_panel.refuse(errorText(path, error));
    applyJob(*job, shown->files, m_panel);
    const QStringList others = shown->others + tablesNotShown(*job);
    if (!others.isEmpty())
        m_panel.appendMessage(
            tr("The window does not show of the job: %1").arg(others.join(separator)));
}
