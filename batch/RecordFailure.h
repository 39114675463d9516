#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

/// Why the record of a run cannot be used.
class RecordFailure : public std::exception
{
public:
    enum class Kind {
        Refused, ///< damaged, not a record, of another layout, or in use: nothing is written
        Disk,    ///< full, failing, or it may not be written
    };

    RecordFailure(Kind kind, const QString& reason)
        : m_kind(kind), m_reason(reason), m_text(reason.toUtf8())
    {
    }

    Kind kind() const { return m_kind; }
    const QString& reason() const { return m_reason; } ///< one line
    const char* what() const noexcept override { return m_text.constData(); }

private:
    Kind m_kind;
    QString m_reason;
    QByteArray m_text;
};
