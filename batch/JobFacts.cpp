#include "batch/JobFacts.h"

#include "analysis/LinearCombinationFit.h"

#include <algorithm>
#include <set>
#include <utility>

namespace
{

/// What is taken from a spectrum.
struct Use {
    bool any = false;
    bool preLine = false;
    bool postLine = false;
};

class FactFinder
{
public:
    FactFinder(const Job& job, const JobData& data)
        : m_job(job), m_data(data), m_points(job.calculateTarget || job.calculateMap)
    {
        const PointRows& rows = data.input.table;
        if (job.calculateLcf)
            m_range = lcfRange(rows);
        m_rowsInUse =
            std::count_if(rows.begin(), rows.end(), [](const PointRow& row) { return row.use; });
    }

    JobFacts facts() const
    {
        JobFacts facts;
        facts.edge = m_data.settings.edge;
        facts.edgePlace = m_job.edgePlace;
        facts.preEdgeEndPlace = m_job.preEdgeEndPlace;
        facts.postEdgeStartPlace = m_job.postEdgeStartPlace;
        for (std::size_t i = 0; i < spectrumKeys.size(); ++i) {
            const bool read = m_data.spectra[i] != nullptr;
            if (read && useOf(i).any)
                facts.spectra.push_back(spectrum(i));
            if (!read && m_range && i != SpectrumSet::Blank)
                facts.missingForLcf.emplace_back(QLatin1String(spectrumKeys[i]));
        }
        facts.rows = rows();
        facts.gridsDiffer = gridsDiffer();
        facts.lcfPoints = lcfPoints();
        return facts;
    }

private:
    const AXafsData& data(std::size_t i) const { return *m_data.spectra[i]; }

    Use useOf(std::size_t i) const
    {
        const Conditions& conditions = m_data.settings.conditions;
        const bool reference = i == SpectrumSet::Ref1 || i == SpectrumSet::Ref2;
        const bool inPoints = m_points && (i != SpectrumSet::Target || m_job.calculateTarget);
        const bool lines =
            inPoints && ((reference && conditions.referencesMinusVictreen) ||
                         (i == SpectrumSet::Target && conditions.targetMinusVictreen));
        const bool pre = conditions.victreenIsPre;
        // Three points need no thickness ratio.
        const bool jump = inPoints && reference && m_rowsInUse > 3 &&
                          conditions.thickness == ThicknessType::EdgeJumps;
        const bool fit = m_range && i != SpectrumSet::Blank;
        return {inPoints || fit, fit || jump || (lines && pre), fit || jump || (lines && !pre)};
    }

    SpectrumFacts spectrum(std::size_t i) const
    {
        const AXafsData& record = data(i);
        const SpectrumPoints& points = record.points;
        SpectrumFacts facts;
        facts.name = QLatin1String(spectrumKeys[i]);
        facts.place = m_job.spectra[i].place;
        facts.warnings = m_data.warnings[i];
        facts.energyMin = record.energyMin;
        facts.energyMax = record.energyMax;
        const auto falls = [](const SpectrumPoint& a, const SpectrumPoint& b) {
            return b.energy < a.energy;
        };
        const auto place = std::adjacent_find(points.begin(), points.end(), falls);
        if (place != points.end())
            facts.fallsAt = std::next(place)->energy;
        const Use use = useOf(i);
        const auto count = [&points](auto condition) {
            return static_cast<int>(std::count_if(points.begin(), points.end(), condition));
        };
        if (use.preLine)
            facts.preEdgePoints =
                count([&](const SpectrumPoint& p) { return p.energy < record.preEdgeEnd; });
        if (use.postLine)
            facts.postEdgePoints =
                count([&](const SpectrumPoint& p) { return p.energy > record.postEdgeStart; });
        return facts;
    }

    std::vector<RowFacts> rows() const
    {
        std::vector<RowFacts> found;
        const std::vector<ChosenPoint>& points = m_data.settings.points;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const bool counts = (m_points && points[i].use) || (m_range && points[i].tRatio);
            const bool given = m_job.points && i < m_job.points->size();
            if (counts && points[i].energy)
                found.push_back({*points[i].energy, given ? (*m_job.points)[i].place : JobPlace()});
        }
        return found;
    }

    bool gridsDiffer() const
    {
        std::set<std::pair<int, int>> grids;
        for (std::size_t i = 0; m_job.calculateMap && i < m_data.maps.size(); ++i)
            if (m_data.maps[i].valid && m_data.settings.points[i].use)
                grids.emplace(m_data.maps[i].columns, m_data.maps[i].rows);
        return grids.size() > 1;
    }

    std::optional<int> lcfPoints() const
    {
        if (!m_range || !m_data.spectra[SpectrumSet::Target])
            return std::nullopt;
        const SpectrumPoints& points = data(SpectrumSet::Target).points;
        return static_cast<int>(
            std::count_if(points.begin(), points.end(), [this](const SpectrumPoint& point) {
                return m_range->contains(point.energy);
            }));
    }

    const Job& m_job;
    const JobData& m_data;
    bool m_points; ///< a point method is asked for
    std::ptrdiff_t m_rowsInUse = 0;
    std::optional<LcfRange> m_range; ///< of the fit, if it is asked for and not refused
};

} // namespace

JobFacts factsOf(const Job& job, const JobData& data)
{
    return FactFinder(job, data).facts();
}
