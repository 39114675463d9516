#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// The kinds of lines that the message pane gets, those that random sessions are to reach.
constexpr const char* messageKinds[] = {"^3ps: a = [-0-9.e]+, Valence = [-0-9.e]+$",
                                        "^a = [-0-9.e]+, Valence = [-0-9.e]+, t/ts = [-0-9.e]+$",
                                        "^4ps2: a = [-0-9.e]+, Valence = [-0-9.e]+, t/ts = "
                                        "[-0-9.e]+$",
                                        "^sbys = [-0-9.e]+, ",
                                        "^Result of LCF : [-0-9.e]+ ",
                                        "^Energy Range is not selected",
                                        "^V Point is not selected$",
                                        "^V Point is not selected\\.$",
                                        "^Ref File1 is not valid\\.$",
                                        "^Ref File2 is not valid\\.$",
                                        "^Target File1 is not valid\\.$",
                                        "^Number of selected data sets [0-9] is not 4\\.$",
                                        "^Can't open the file \\["};

/// Prints how many lines of each kind there are.
/// @return the kinds of which there are none
inline QStringList kindsNotReached(const QStringList& messages)
{
    QStringList missing;
    for (const char* kind : messageKinds) {
        const int count = messages.filter(QRegularExpression(QLatin1String(kind))).size();
        qInfo("%6d lines %s", count, kind);
        if (count == 0)
            missing.append(QLatin1String(kind));
    }
    return missing;
}
