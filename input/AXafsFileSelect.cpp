#include "input/AXafsFileSelect.h"

#include "display/DispABase.h"
#include "display/SpectrumPreview.h"

AXafsFileSelect::AXafsFileSelect(QWidget* parent, int mode) : AFileSelect(parent, mode)
{
    connect(this, &AFileSelect::newFilePath, this, &AXafsFileSelect::newFile);
}

AXafsFileSelect::~AXafsFileSelect() = default;

void AXafsFileSelect::setBounds(const FitBounds& bounds)
{
    m_bounds = bounds;
    if (!m_data)
        return;
    m_data->setBounds(bounds);
    m_data->fitVictreens();
}

bool AXafsFileSelect::muTAt(double energy, double& mut) const
{
    if (!m_data) {
        mut = 0.0;
        return false;
    }
    const std::optional<double> value = interpolateMut(m_data->points, energy);
    if (!value)
        return false;
    mut = *value;
    if (m_useVic)
        mut -= m_vicIsPre ? m_data->preVicAt(energy) : m_data->postVicAt(energy);
    return true;
}

void AXafsFileSelect::forget()
{
    m_data.reset();
    FileName->clear();
}

void AXafsFileSelect::setPreview(DispABase* panel)
{
    m_preview = panel;
    connect(panel, &DispABase::draw, this, &AXafsFileSelect::draw);
    connect(panel, &DispABase::mPressed, this, &AXafsFileSelect::mPressed);
    connect(panel, &DispABase::mReleased, this, &AXafsFileSelect::mReleased);
    connect(panel, &DispABase::mDragging, this, &AXafsFileSelect::mDragging);
}

void AXafsFileSelect::newFile(const QString& path)
{
    if (!m_data) {
        m_data = std::make_unique<AXafsData>();
        setBounds(m_bounds);
    }
    const bool found = m_data->read(path);
    if (!found && !path.isEmpty())
        emit unread(path);
    if (!m_data->refusal.isEmpty())
        emit refusedData(m_data->refusal);
}

void AXafsFileSelect::draw(QStylePainter* painter)
{
    if (!m_preview)
        return;
    m_preview->setXYTitle(tr("Eng.[eV]"), tr("mut"));
    drawSpectrumPreview(*painter, m_preview->graph, m_data.get(),
                        {tr("Edge Jump(1) : %1"), tr("Edge Jump(2) : %1")});
}

void AXafsFileSelect::mPressed(MouseC* mouse)
{
    Q_UNUSED(mouse)
}

void AXafsFileSelect::mReleased(MouseC* mouse)
{
    Q_UNUSED(mouse)
}

void AXafsFileSelect::mDragging(MouseC* mouse)
{
    Q_UNUSED(mouse)
}
