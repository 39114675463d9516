#pragma once

#include "analysis/Settings.h"
#include "input/AnalysisFiles.h"

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

#include <vector>

/// A job made from a seed, with the files that it names: its text, and beside it the settings and
/// files that the text stands for, formed without the reader of jobs.
class RandomJob
{
public:
    /// @param folder  is filled with spectra, 2D data and places for results
    RandomJob(quint32 seed, const QString& folder);

    Settings settings;
    AnalysisFiles files;
    QString result; ///< of the map; empty where none is written
    bool target = true;
    bool lcf = true;
    bool map = false;

    QString path() const { return m_folder + QStringLiteral("/job.toml"); }
    QByteArray text() const { return m_text; }
    /// The spectrum or row whose file stands in a line of the text; -1 for none.
    int spectrumInLine(int line) const { return placeOf(m_spectrumLines, line); }
    int mapInLine(int line) const { return placeOf(m_mapLines, line); }

private:
    static int placeOf(const std::vector<int>& lines, int line);
    int below(int limit) { return m_random.bounded(limit); }
    bool chance(int percent) { return below(100) < percent; }
    QString anyOf(const QStringList& list) { return list.at(below(list.size())); }

    void chooseCalculations();
    void chooseFiles(const QStringList& spectra, const QStringList& results);
    void chooseNumbers();
    void chooseConditions();
    void choosePoints(const QStringList& maps);
    void writePoint(int row, const QString& image);
    double anyEnergy();
    void makePlacesForResults();

    void line(const QByteArray& text);
    void number(const char* key, double value);
    void flag(const char* key, bool value);
    /// @return the line's number
    int file(const char* key, const QString& path);

    QRandomGenerator m_random;
    QString m_folder;
    QByteArray m_text;
    std::vector<int> m_spectrumLines;
    std::vector<int> m_mapLines;
    int m_line = 1; ///< of the text, the next one
};
