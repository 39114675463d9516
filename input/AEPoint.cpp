#include "input/AEPoint.h"

#include "input/MapReader.h"
#include "text/NumberText.h"

#include <QFileInfo>

#include <algorithm>

namespace
{

/// Width of a field in which every number of six digits is seen whole.
int widthForNumbers(const QLineEdit* field)
{
    constexpr int frameAndMargins = 12;
    return field->fontMetrics().horizontalAdvance(QStringLiteral("-1.23457e-05")) + frameAndMargins;
}

} // namespace

namespace
{

/// Every energy of a file takes the place of the one before. A file has one; of the thousands in a
/// broken one only the last few take their turn.
QStringList lastOf(const QStringList& energies)
{
    constexpr int few = 100;
    return energies.mid(std::max(0, energies.size() - few));
}

} // namespace

AEPoint::AEPoint(QWidget* parent) : QFrame(parent)
{
    setupUi(this);
    for (QLineEdit* field : {Mut1, Mut2, MutT, MutBlank})
        field->setMinimumWidth(widthForNumbers(field));
    connect(MapFile, &AFileSelect::newDir, this, &AEPoint::newDir);
    connect(MapFile, &AFileSelect::newFilePath, this, &AEPoint::loadData);
    connect(Energy, &QLineEdit::editingFinished, this, &AEPoint::inNewEnergy);
    connect(UseCB, &QCheckBox::clicked, this, &AEPoint::changedCB);
    connect(TRatCB, &QCheckBox::clicked, this, &AEPoint::changedCB);
    connect(VPointCB, &QRadioButton::clicked, this, &AEPoint::changedCB);
}

double AEPoint::energy() const
{
    return numberFromText(Energy->text());
}

PointRow AEPoint::row() const
{
    PointRow row;
    row.use = UseCB->isChecked();
    row.tRatio = TRatCB->isChecked();
    row.vPoint = VPointCB->isChecked();
    row.useVicRefs = useVic;
    row.useVicTarget = useVicForTarget;
    row.energy = energy();
    row.mut1 = numberFromText(Mut1->text());
    row.mut2 = numberFromText(Mut2->text());
    row.mutTarget = numberFromText(MutT->text());
    row.mutBlank = numberFromText(MutBlank->text());
    return row;
}

void AEPoint::inNewEnergy()
{
    emit newEnergy(energy());
}

void AEPoint::forgetMap()
{
    m_mapData = {};
    m_mapPath.clear();
    m_mapEnergy.clear();
    MapFile->FileName->clear();
}

void AEPoint::loadData(const QString& path)
{
    const QString text = QStringLiteral("Reading %1").arg(QFileInfo(path).fileName());
    MapReadOptions options;
    options.progress = [&](double part) { emit progress(text, part); };
    options.knownPositions = m_knownPositions;
    emit progress(text, 0.0);
    const MapReadResult result = readMapData(path, m_mapData, options);
    emit progress(text, 1.0);
    if (result.outcome == ReadOutcome::Read) {
        m_mapPath = path;
        m_mapEnergy = result.energies.isEmpty() ? QString() : result.energies.last();
    }
    for (const QString& token : lastOf(result.energies)) {
        Energy->setText(token);
        inNewEnergy();
    }
    if (!path.isEmpty() && (result.outcome != ReadOutcome::Read || !m_mapData.valid))
        emit unread(path);
    if (!result.reason.isEmpty())
        emit refusedData(result.reason);
}
