#pragma once

#include "analysis/PointRow.h"
#include "input/MapData.h"
#include "ui_AEPoint.h"

#include <QFrame>

class KnownPositions;

/// One energy near the edge: the widgets of a row of the point table and the row's 2D data. The
/// panel moves the widgets into its own table; the frame itself is never shown.
class AEPoint : public QFrame, public Ui_AEPoint
{
    Q_OBJECT

public:
    explicit AEPoint(QWidget* parent = nullptr);

    /// The row as numbers; fields without a number count as 0.
    PointRow row() const;

    /// The energy field as a number, eV.
    double energy() const;

    const MapData& mapData() const { return m_mapData; }

    /// Path of the file that the 2D data are of; empty without any.
    QString mapPath() const { return m_mapPath; }

    /// The energy that the 2D data gave the row, as it stands there; empty without one.
    QString mapEnergy() const { return m_mapEnergy; }

    /// As before the first 2D data were named.
    void forgetMap();

    /// Positions of 2D data that are read from now on are shared with equal ones of these, which
    /// have to stay as long as the row.
    void shareKnownPositions(KnownPositions& known) { m_knownPositions = &known; }

    bool useVic = false;          ///< references have a Victreen line subtracted
    bool useVicForTarget = false; ///< the target has one subtracted
    bool vicIsPre = false;        ///< the line is the one below the edge

signals:
    void newDir(const QString& dir);
    void newEnergy(double energy);
    void changedCB();
    void refusedData(const QString& reason); ///< the 2D data were not taken
    void unread(const QString& path);        ///< a file that was named holds no 2D data
    /// What is being read and how much of it is done: 0 at the beginning, 1 at the end.
    void progress(const QString& text, double part);

public slots:
    /// Reads a 2D data file. One that cannot be opened leaves the row invalid and keeps the old
    /// records.
    void loadData(const QString& path);
    void inNewEnergy();

private:
    MapData m_mapData;
    QString m_mapPath;
    QString m_mapEnergy;
    KnownPositions* m_knownPositions = nullptr;
};
