#pragma once

#include "app/FourPs.h"

#include <QObject>
#include <QVector>

class QLabel;
class QStatusBar;

/// What the window knows and no field shows, in a few words in the status bar: that a shown result
/// is of before a change, and what to press; which file could not be read; what was written, and
/// how large it is.
class StatusWords : public QObject
{
    Q_OBJECT

public:
    StatusWords(FourPs& panel, QStatusBar& bar);

private:
    static constexpr int columns = 4; ///< of mu-t

    /// What a mu-t field was filled from.
    struct MutSource {
        QString energy;
        QString lines; ///< what the subtracted Victreen line depends on; empty without one
    };

    void watchFields();
    void add(QLineEdit* field, const QString& name);
    void watchMuts();
    void watchFiles();

    QStringList texts() const;
    MutSource sourceNow(int row, int column) const;
    void filled(int row, int column);
    void update();

    QString rowOfBefore(QString MutSource::*part) const;
    QString hint() const;
    QString unusedFields() const;
    QString buttonsToPress() const;
    bool isShown(FourPs::Result result) const;

    FourPs& m_panel;
    QStatusBar& m_bar;
    QLabel* m_hint;                        ///< owned by the status bar
    QVector<QLineEdit*> m_fields;          ///< what results are made from
    QStringList m_names;                   ///< parallel to m_fields
    QVector<QVector<QLineEdit*>> m_muts;   ///< of each row
    QVector<QVector<MutSource>> m_sources; ///< parallel to m_muts
    QVector<QStringList> m_used;           ///< texts of m_fields at each kind of calculation
    QStringList m_written;                 ///< in one go
};
