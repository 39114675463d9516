#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A step that a page of the guide takes: what the reader does, or what is then on the screen.
struct GuideStep {
    enum Kind { Do, See };
    Kind kind = Do;
    int line = 0;      ///< of the page, where the step stands
    QStringList words; ///< Do: verb and arguments; See: the control
    QString shown;     ///< See: the text of the block below, without its indentation
};

/// The steps of a page. They stand in comments, "do: click UseVicCB" or "see: CalcRes"; a "see" is
/// followed by a block of lines that are indented by four blanks.
QVector<GuideStep> guideSteps(const QString& page);
