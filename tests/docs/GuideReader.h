#pragma once

#include "tests/docs/GuideSteps.h"

#include <QTemporaryDir>

#include <memory>

class FourPs;
class QWidget;

/// A reader who takes the steps of a page in a panel, with the real widgets.
class GuideReader
{
public:
    /// @param examples  folder of the shipped examples
    explicit GuideReader(const QString& examples);
    ~GuideReader();

    /// Takes a step. Of "see" and "run" nothing is done.
    /// @return false for a step that nobody can take: a control or file that does not exist
    bool take(const GuideStep& step);

    /// What the control of a "see" shows: a field its text, the message pane as many of its last
    /// lines as the page has, drovik-batch with a job likewise, a written file as many of its first
    /// ones. Null for a control that does not exist.
    QString screen(const GuideStep& step) const;

private:
    QWidget* control(const QString& name) const;
    QString file(const QString& name) const;
    bool start(const QString& example);
    bool click(const QString& name);
    bool type(const QString& name, const QString& text);
    bool choose(const QString& name, const QStringList& files);

    QString m_examples;
    QString m_example;
    QTemporaryDir m_results;
    std::unique_ptr<FourPs> m_panel;
};
