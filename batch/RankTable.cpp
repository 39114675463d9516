#include "batch/RankTable.h"

#include "text/Csv.h"

#include <algorithm>
#include <cmath>

namespace
{

QByteArray energyText(double energy)
{
    constexpr double hundredth = 100.0;
    return csv::number(std::round(energy * hundredth) / hundredth);
}

QByteArray choiceLine(const RankedChoice& choice, std::size_t rank,
                      const ReferenceValences& valences)
{
    QByteArrayList points;
    for (const double energy : choice.points)
        points += energyText(energy);
    QByteArrayList fields{QByteArray::number(static_cast<qulonglong>(rank)),
                          energyText(choice.vPoint), points.join(' ')};
    for (const double number :
         {choice.sigmaA[0], choice.sigmaA[1], choice.sigmaA[2],
          choice.shift * (valences.ref1 - valences.ref2), choice.closure1, choice.closure2,
          choice.sigmaT, choice.robust, choice.gainOfOneMore})
        fields += csv::number(number);
    return csv::line(fields << (choice.front ? "true" : "false"));
}

QByteArray pointTables(const RankedChoice& choice)
{
    std::vector<double> energies = choice.points;
    energies.push_back(choice.vPoint);
    std::sort(energies.begin(), energies.end());
    QByteArray text;
    for (const double energy : energies)
        text += "\n[[point]]\nenergy = " + energyText(energy) +
                (energy == choice.vPoint ? "\nv_point = true\n" : "\nt_ratio = true\n");
    return text;
}

} // namespace

QByteArray rankTable(const std::vector<RankedChoice>& ranked, const ReferenceValences& valences)
{
    QByteArray text = csv::line({"rank", "v", "points", "sigma_a_0", "sigma_a_half", "sigma_a_1",
                                 "dvalence_shift", "closure_ref1", "closure_ref2", "sigma_t_ts",
                                 "robust", "gain_of_one_more", "front"});
    for (std::size_t i = 0; i < ranked.size(); ++i)
        text += choiceLine(ranked[i], i + 1, valences);
    return text + pointTables(ranked.front());
}
