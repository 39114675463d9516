#include "tests/docs/GuideReader.h"

#include "tests/support/PanelActions.h"

#include <QDir>
#include <QFile>
#include <QProcess>

namespace
{

/// The last lines of a text that ends with a line end.
QString lastLines(const QString& text, int count)
{
    const QStringList lines = text.trimmed().split(QLatin1Char('\n'));
    return lines.mid(lines.size() - count).join(QLatin1Char('\n'));
}

/// What drovik-batch prints of a job; empty where the exit status is not 0.
QString batchOutput(const QString& job)
{
    QProcess process;
    process.start(QStringLiteral(BATCH_PROGRAM), {job});
    if (!process.waitForFinished() || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

GuideReader::GuideReader(const QString& examples) : m_examples(examples) {}

GuideReader::~GuideReader() = default;

bool GuideReader::take(const GuideStep& step)
{
    if (step.kind != GuideStep::Do)
        return true;
    const QString verb = step.words.value(0);
    if (verb == QLatin1String("start"))
        return start(step.words.value(1));
    if (!m_panel)
        return false;
    if (verb == QLatin1String("drop") || verb == QLatin1String("choose"))
        return choose(step.words.value(1), step.words.mid(2));
    if (verb == QLatin1String("click"))
        return click(step.words.value(1));
    return verb == QLatin1String("type") && type(step.words.value(1), step.words.value(2));
}

QString GuideReader::screen(const GuideStep& step) const
{
    const QString name = step.words.value(0);
    const int count = step.shown.count(QLatin1Char('\n')) + 1;
    if (name == QLatin1String("Message"))
        return lastLines(user::messages(*m_panel).join(QLatin1Char('\n')), count);
    if (name == QLatin1String("batch"))
        return lastLines(batchOutput(QDir(m_examples).filePath(step.words.value(1))), count);
    if (name == QLatin1String("file")) {
        QFile written(m_results.filePath(step.words.value(1)));
        if (!written.open(QIODevice::ReadOnly))
            return {};
        const QStringList lines = QString::fromUtf8(written.readAll()).split(QLatin1Char('\n'));
        return lines.mid(0, count).join(QLatin1Char('\n'));
    }
    const auto* field = qobject_cast<const QLineEdit*>(control(name));
    return field ? field->text() : QString();
}

bool GuideReader::start(const QString& example)
{
    m_panel = std::make_unique<FourPs>();
    m_example = example;
    return QDir(m_examples).exists(example);
}

/// A control by its name in the panel, or "ePoint3.UseCB" for one of a row.
QWidget* GuideReader::control(const QString& name) const
{
    const QStringList parts = name.split(QLatin1Char('.'));
    if (parts.size() == 1)
        return name == QLatin1String("mapFileSelect") ? m_panel->mapFileSelect
                                                      : m_panel->findChild<QWidget*>(name);
    const int row = parts[0].mid(parts[0].size() - 1).toInt() - 1;
    if (row < 0 || row >= m_panel->ePoints.size())
        return nullptr;
    const AEPoint* point = m_panel->ePoints[row];
    const QVector<QWidget*> cells = {point->UseCB,  point->TRatCB,   point->VPointCB,
                                     point->Energy, point->Mut1,     point->Mut2,
                                     point->MutT,   point->MutBlank, point->MapFile};
    for (QWidget* cell : cells)
        if (cell->objectName() == parts[1])
            return cell;
    return nullptr;
}

QString GuideReader::file(const QString& name) const
{
    return QDir(m_examples + QLatin1Char('/') + m_example).filePath(name);
}

bool GuideReader::click(const QString& name)
{
    auto* button = qobject_cast<QAbstractButton*>(control(name));
    if (!button)
        return false;
    user::click(button);
    return true;
}

/// Names of files that are written are taken to a folder of their own.
bool GuideReader::type(const QString& name, const QString& text)
{
    if (auto* selector = qobject_cast<AFileSelect*>(control(name))) {
        user::type(selector->FileName, m_results.filePath(text));
        return true;
    }
    auto* field = qobject_cast<QLineEdit*>(control(name));
    if (field)
        user::type(field, text);
    return field != nullptr;
}

bool GuideReader::choose(const QString& name, const QStringList& files)
{
    auto* selector = qobject_cast<AFileSelect*>(control(name));
    QStringList paths;
    for (const QString& each : files)
        paths.append(file(each));
    for (const QString& path : qAsConst(paths))
        if (!selector || !QFile::exists(path))
            return false;
    if (paths.size() == 1)
        user::drop(selector, paths.first());
    else
        selector->newFiles(paths);
    return selector != nullptr;
}
