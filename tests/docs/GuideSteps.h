#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A step that a page of the guide takes: what the reader does, what is then on the screen, or a
/// command that the reader can run.
struct GuideStep {
    enum Kind { Do, See, Run };
    Kind kind = Do;
    int line = 0;      ///< of the page, where the step stands
    QStringList words; ///< Do: verb and arguments; See: the control; Run: what runs it
    QString shown;     ///< See, Run: the text of the block below, without its indentation
};

/// The steps of a page. They stand in comments, "do: click UseVicCB", "see: CalcRes" or "run:
/// shell"; the last two are followed by a block of lines that are indented by four blanks.
QVector<GuideStep> guideSteps(const QString& page);
