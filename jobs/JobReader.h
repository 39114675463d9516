#pragma once

#include "analysis/HistogramCounts.h"
#include "jobs/KeyReader.h"

#include <QSet>

/// The keys of a job: fills a job from its parsed tables, and checks that its parts go together.
class JobReader : public KeyReader
{
public:
    using KeyReader::KeyReader;

    void read(const toml::table& root);
    /// All keys that there are.
    QStringList names();

    Job job;

private:
    Keys keys();
    Keys fileKeys();
    Keys conditionKeys();
    Handler positive(QString& text);
    Handler belowOne(QString& text);
    Keys noiseKeys();
    Keys outputKeys();
    Keys histogramKeys(JobHistogram& histogram);
    Keys pointKeys(JobPoint& point);
    Keys mapKeys(JobMap& map);
    Keys targetKeys(JobStackTarget& target);

    Handler energy(JobPoint& point);
    void readPoints(const toml::node& node, const QString& key);
    void readPoint(const toml::table& table, const QString& key);
    void readCalculate(const toml::node& node, const QString& key);
    void readMap(const toml::table& table, const QString& key);
    void readTarget(const toml::table& table, const QString& key);
    void checkName(const toml::table& table, const QString& key, const QString& name,
                   const JobPlace& place, QSet<QString>& names);
    void checkSource(const toml::table& table, const QString& key, JobMap& map);
    void checkVPoints(const toml::array& array, const QString& key);
    void checkHistogram(const JobHistogram& given, const HistogramSettings& settings);
    void checkImages(const JobMap& map);
    void checkMaps();
    void checkTargets();
    void checkOutput(const toml::table& root);

    JobPlace m_calculateMap; ///< where "map" stands in the list
    QSet<QString> m_mapNames;
    QSet<QString> m_targetNames;
    JobPoint m_anyPoint; ///< for the names of its keys
    JobMap m_anyMap;
    JobStackTarget m_anyTarget;
    JobFilePath m_stack; ///< of the map or target that is read
};
