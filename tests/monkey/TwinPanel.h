#pragma once

#include "app/FourPs.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <algorithm>

/// Writes down which files the rows of the table were given: what a row holds is seen nowhere.
class GivenMaps
{
public:
    explicit GivenMaps(const FourPs& panel);

    /// The files that make the row what it is: the last one that was there and, where it came
    /// later, the last one that was not.
    QStringList ofRow(int row) const { return m_files[row]; }

private:
    QVector<QStringList> m_files;
};

/// A fresh panel with the files, texts, boxes and buttons of a used one. Calculations of both must
/// tell the same.
class TwinPanel
{
public:
    TwinPanel(FourPs& used, const GivenMaps& maps);

    /// Calculates target, map and fit in both; what differs afterwards, or nothing.
    QString difference(const QString& folder);

    /// Of the last comparison: whether nothing was refused.
    bool calculated() const { return m_calculated; }

    FourPs& panel() { return m_fresh; }

private:
    void giveFiles(const GivenMaps& maps);
    void giveButtons();
    void giveTexts();
    void compareTexts();
    void compareMaps(const QString& folder);
    void compareGraphs();
    void expectSame(const QString& what, const QString& used, const QString& fresh);

    FourPs& m_used;
    FourPs m_fresh;
    bool m_calculated = false;
    QStringList m_differences;
};

/// The controls of a kind in the panel itself, without those of its dialogs.
template <class Control>
QList<Control*> controlsOf(const FourPs& panel)
{
    QList<Control*> controls = panel.findChildren<Control*>();
    const auto isElsewhere = [&](const Control* control) {
        return control->window() != panel.window();
    };
    controls.erase(std::remove_if(controls.begin(), controls.end(), isElsewhere), controls.end());
    return controls;
}
