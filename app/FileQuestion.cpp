#include "app/FileQuestion.h"

#include <QFileDialog>
#include <QFileInfo>

#include <algorithm>

namespace
{

QString filterOf(const FileQuestion::Kind& kind)
{
    return QStringLiteral("%1 (*.%2)").arg(kind.name, kind.suffix);
}

/// A proposed name may be the title of a graph, in which a stroke is none between folders.
QString plainName(const QString& name)
{
    return QString(name).remove(QLatin1Char(' ')).replace(QLatin1Char('/'), QLatin1Char('-'));
}

} // namespace

FileQuestion::FileQuestion(QObject* parent) : QObject(parent) {}

FileQuestion::~FileQuestion() = default;

QFileDialog* FileQuestion::dialog()
{
    if (m_dialog)
        return m_dialog.get();
    m_dialog = std::make_unique<QFileDialog>();
    // Overwriting needs no question anywhere in the program.
    m_dialog->setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
    connect(m_dialog.get(), &QFileDialog::fileSelected, this, &FileQuestion::finish);
    return m_dialog.get();
}

void FileQuestion::ask(const QString& title, const std::vector<Kind>& kinds, const Answer& answer)
{
    close();
    m_kinds = kinds;
    m_answer = answer;
    QStringList filters;
    for (const Kind& kind : kinds)
        filters.append(filterOf(kind));
    dialog()->setNameFilters(filters);
    dialog()->setWindowTitle(title);
}

void FileQuestion::askToSave(const QString& title, const QString& name,
                             const std::vector<Kind>& kinds, const Answer& answer)
{
    ask(title, kinds, answer);
    dialog()->setAcceptMode(QFileDialog::AcceptSave);
    dialog()->setFileMode(QFileDialog::AnyFile);
    dialog()->selectFile(plainName(name));
    dialog()->show();
}

void FileQuestion::askToOpen(const QString& title, const std::vector<Kind>& kinds,
                             const Answer& answer)
{
    ask(title, kinds, answer);
    dialog()->setAcceptMode(QFileDialog::AcceptOpen);
    dialog()->setFileMode(QFileDialog::ExistingFile);
    dialog()->show();
}

void FileQuestion::close()
{
    if (m_dialog)
        m_dialog->close();
}

QString FileQuestion::withSuffix(const QString& path) const
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const bool known = std::any_of(m_kinds.begin(), m_kinds.end(),
                                   [&](const Kind& kind) { return kind.suffix == suffix; });
    if (known)
        return path;
    const QString chosen = m_dialog->selectedNameFilter();
    const auto kind = std::find_if(m_kinds.begin(), m_kinds.end(),
                                   [&](const Kind& k) { return filterOf(k) == chosen; });
    return path + QLatin1Char('.') + (kind == m_kinds.end() ? m_kinds.front() : *kind).suffix;
}

void FileQuestion::finish(const QString& path)
{
    const bool saves = m_dialog->acceptMode() == QFileDialog::AcceptSave;
    if (m_answer)
        m_answer(saves ? withSuffix(path) : path);
}
