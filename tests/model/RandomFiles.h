#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

/// Files as a beamline writes them, and as broken detectors, editors and people leave them. All
/// from one seed.
class RandomFiles
{
public:
    /// @param broken  some of the files are
    RandomFiles(quint32 seed, const QString& folder, bool broken = true);

    QStringList spectra; ///< paths, some of them of files that do not exist
    QStringList images;
    QStringList targets; ///< paths for result files, some of which cannot be opened

private:
    int below(int limit) { return m_random.bounded(limit); }
    bool chance(int percent) { return below(100) < percent; }
    double between(double low, double high)
    {
        return low + (high - low) * m_random.generateDouble();
    }
    int oddRows() { return m_broken && chance(30) ? below(20) : 0; }
    QByteArray number(double value);
    QByteArray blank();
    QByteArray oddToken();
    QByteArray comment();
    void makeSpectra();
    void makeImages();
    void makeTargets();
    void store(const QString& name, const QByteArray& content, QStringList& list);

    double mut(double energy, double share) const;
    QVector<double> energies();
    QByteArray spectrum(double share);
    QByteArray spectrumHeader(double spacing);
    QByteArray spectrumRow(double angle, double share, double energy);
    QByteArray image(int columns, int rows);
    QByteArray imageHeader(int columns, int rows);
    QByteArray brokenCopy(QByteArray content);

    QRandomGenerator m_random;
    QString m_folder;
    double m_thickness = 1.0;
    bool m_broken;
    int m_oddRows = 0; ///< of a hundred rows
};
