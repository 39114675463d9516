#include "results/ResultFile.h"

#include "analysis/PointRow.h"

#include <QFile>
#include <QTextStream>

WriteOutcome writeResultFile(const QString& path, const QStringList& header,
                             const MapResults& results, double valence1, double valence2,
                             const std::function<void(double part)>& progress)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return WriteOutcome::CannotOpen;
    QTextStream out(&file);
    for (const QString& line : header)
        out << line << '\n';
    if (!header.isEmpty())
        out << '\n';
    const QString format = QStringLiteral(" %1 %2    %3 %4 %5\n");
    for (int y = 0; y < results.rows && results.columns > 0; ++y) {
        for (int x = 0; x < results.columns; ++x) {
            const std::size_t i =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(results.columns) +
                static_cast<std::size_t>(x);
            const MapPosition position = results.position(i);
            const double a = i < results.size() ? results.a[i] : 0.0;
            const double t = i < results.size() ? results.t[i] : 0.0;
            out << format.arg(position.first, 10)
                       .arg(position.second, 10)
                       .arg(a, 10)
                       .arg(meanValence(valence1, valence2, a), 10)
                       .arg(t, 10);
        }
        out << '\n';
        if (progress)
            progress(static_cast<double>(y + 1) / results.rows);
    }
    out.flush();
    file.close();
    const bool written = out.status() == QTextStream::Ok && file.error() == QFileDevice::NoError;
    return written ? WriteOutcome::Written : WriteOutcome::CannotWrite;
}
