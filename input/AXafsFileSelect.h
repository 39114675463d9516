#pragma once

#include "input/AFileSelect.h"
#include "input/AXafsData.h"

#include <memory>

class DispABase;
class MouseC;
class QStylePainter;

/// File selector of one spectrum: reads each chosen file into its record and draws the record in a
/// graph panel.
class AXafsFileSelect : public AFileSelect
{
    Q_OBJECT

public:
    explicit AXafsFileSelect(QWidget* parent = nullptr, int mode = Open);
    ~AXafsFileSelect() override;

    /// The record, or null before the first file was named.
    const AXafsData* data() const { return m_data.get(); }

    /// Path of the file that the record is of, whatever the line says; empty without a record.
    QString path() const { return m_data ? m_data->fileName : QString(); }

    /// True once the last file opened held a spectrum.
    bool isValid() const { return m_data && m_data->valid; }

    /// Edge jump of the record (units of mu-t), 0 without one.
    double edgeJump() const { return m_data ? m_data->edgeJump() : 0.0; }

    /// Keeps the energies that bound the fits, also for spectra read later, and refits the lines of
    /// a spectrum that is there.
    void setBounds(const FitBounds& bounds);

    void setUseVic(bool use) { m_useVic = use; }
    void setVicIsPre(bool pre) { m_vicIsPre = pre; }

    /// mu-t at an energy in eV, less a Victreen line if one is to be subtracted. False where the
    /// spectrum does not reach the energy; without a record the value becomes 0 besides.
    bool muTAt(double energy, double& mut) const;

    /// As before the first file was named.
    void forget();

    /// Draws the spectrum in this panel from now on.
    void setPreview(DispABase* panel);

signals:
    void refusedData(const QString& reason); ///< the file was not taken
    void unread(const QString& path);        ///< a file that was named holds no spectrum

public slots:
    /// Reads the file; a file that cannot be opened shows nothing.
    void newFile(const QString& path);
    void draw(QStylePainter* painter);
    // The preview reacts to no mouse; the slots are where it would.
    void mPressed(MouseC* mouse);
    void mReleased(MouseC* mouse);
    void mDragging(MouseC* mouse);

private:
    std::unique_ptr<AXafsData> m_data;
    FitBounds m_bounds;
    bool m_useVic = false;
    bool m_vicIsPre = false;
    DispABase* m_preview = nullptr;
};
