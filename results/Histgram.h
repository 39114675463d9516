#pragma once

#include "analysis/HistogramCounts.h"

#include "results/HistogramFile.h"

#include <QObject>

class QAbstractButton;
class QLineEdit;

/// A histogram bound to the settings typed in the window.
class Histgram : public QObject, public HistogramCounts
{
    Q_OBJECT

public:
    QLineEdit* fromEdit;         ///< centre of the first bin
    QLineEdit* toEdit;           ///< centre of the last bin
    QLineEdit* boxesEdit;        ///< number of bins
    QAbstractButton* autoButton; ///< recorded only

    Histgram(QLineEdit* fromField, QLineEdit* toField, QLineEdit* boxesField,
             QAbstractButton* automatic);

    bool writeFile(const QString& resultPath, const QString& tag) const
    {
        return writeHistogramFile(*this, resultPath, tag);
    }

    /// What is typed now.
    HistogramSettings settings() const;

    /// Reads the settings and empties the histogram.
    /// @return false, and nothing changed, where the number of bins is refused
    bool reset() { return HistogramCounts::reset(settings()); }
};
