#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Keeps what the toolkit and the program complain of (qWarning, qCritical) while it lives.
class ToolkitWarnings
{
public:
    ToolkitWarnings() : m_before(qInstallMessageHandler(keep)) { kept().clear(); }
    ~ToolkitWarnings() { qInstallMessageHandler(m_before); }
    ToolkitWarnings(const ToolkitWarnings&) = delete;
    ToolkitWarnings& operator=(const ToolkitWarnings&) = delete;

    QString all() const { return kept().join(QLatin1Char('\n')); }

private:
    static QStringList& kept()
    {
        static QStringList list;
        return list;
    }
    static void keep(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        // The offscreen platform says what it is not made for, whatever the window.
        const bool ofThePlatform = text.startsWith(QLatin1String("This plugin does not support "));
        if (type != QtDebugMsg && type != QtInfoMsg && !ofThePlatform)
            kept().append(text);
    }

    QtMessageHandler m_before;
};
