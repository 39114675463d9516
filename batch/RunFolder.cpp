#include "batch/RunFolder.h"

#include <QDir>
#include <QFileInfo>

std::optional<Shard> Shard::fromText(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    bool isNumber = false;
    bool isCount = false;
    Shard shard;
    shard.number = parts.first().toUInt(&isNumber);
    shard.count = parts.last().toUInt(&isCount);
    if (parts.size() != 2 || !isNumber || !isCount || shard.number < 1 ||
        shard.count < shard.number || shard.count > most)
        return std::nullopt;
    return shard;
}

QString RunFolder::in(const QString& name) const
{
    return QDir(m_path).filePath(name);
}

QString RunFolder::record(const Shard& shard) const
{
    return in(QStringLiteral("shards/%1-of-%2.sqlite").arg(shard.number).arg(shard.count));
}

std::unique_ptr<FileLock> RunFolder::lock(const QString& record, QString& why, bool& inUse)
{
    const QFileInfo file(record);
    const QString path =
        file.path() + QStringLiteral("/.") + file.fileName() + QStringLiteral(".lock");
    QString who;
    if (!QDir().mkpath(file.path())) {
        why = QStringLiteral("cannot make the folder %1").arg(file.path());
        inUse = false;
        return nullptr;
    }
    std::unique_ptr<FileLock> lock = FileLock::take(path, inUse, who);
    if (!lock)
        why = inUse ? QStringLiteral("%1 is being written by %2").arg(record, who)
                    : QStringLiteral("cannot write %1: %2").arg(path, who);
    return lock;
}
