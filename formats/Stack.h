#pragma once

#include "formats/FileFault.h"
#include "formats/Frame.h"
#include "system/PixelArray.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// A rectangle of pixels, from the upper left corner.
struct Region {
    int x = 0;
    int y = 0;
    int width = 0; ///< 0: all of the frame
    int height = 0;
};

/// What a stack of images is.
struct StackFacts {
    QString kind;                 ///< "exchange", or that of the file
    int columns = 0;              ///< of each frame
    int rows = 0;                 ///< of each frame
    std::vector<double> energies; ///< of each frame, eV, in the file's order
    StackValues values = StackValues::Unknown;
    PixelType type = PixelType::U16;
    double pixelWidth = 0.0;  ///< micrometres; 0 where it is not known
    double pixelHeight = 0.0; ///< micrometres
    QStringList assumed;      ///< what the file does not say and was taken for granted
    QStringList warnings;
};

/// How a stack is to be read. What is empty is found out.
struct StackSource {
    QString path; ///< of the file, of one file of several ("name_*.tif"), or of a camera's index
    QString kind; ///< "fxi", "exchange", "mistral", "nxdata", "tiff", "img" or "his"
    QString data; ///< path in an HDF5 file
    QString energies; ///< path in an HDF5 file, or a text file
    StackValues values = StackValues::Unknown;
    QString flat; ///< path in an HDF5 file, or a file
    QString dark; ///< path in an HDF5 file, or a file
    std::optional<double> darkLevel;
    QString reference;      ///< index of a camera's frames without sample
    double pixelSize = 0.0; ///< micrometres
    double shift = 0.0;     ///< eV, added to the energies
};

class Workers;

/// Frames that have been read, and the memory that they lie in.
struct FrameSet {
    std::vector<Frame> frames; ///< one for each index that was asked for
    std::vector<std::shared_ptr<void>> memory;
    /// Flat and dark that all frames have in common. Where they are there, of the same region, they
    /// are not read again.
    Frame shared;
    std::vector<std::shared_ptr<void>> sharedMemory;
    Workers* workers = nullptr; ///< that may read; one thread, or process, without

    /// Lets go of the frames; what all have in common stays.
    void dropFrames()
    {
        frames.clear();
        memory.clear();
    }
};

/// A stack of images of known energies. Only what is asked for is read.
class Stack
{
public:
    Stack() = default;
    virtual ~Stack() = default;
    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;

    const StackFacts& facts() const { return m_facts; }

    /// Adds to the energies of all frames, eV.
    void shiftEnergies(double shift)
    {
        for (double& energy : m_facts.energies)
            energy += shift;
    }

    /// Reads a region, which lies within the frames, of some frames, each once.
    /// @param indices  rising, each once
    /// @return why they cannot be read
    virtual std::optional<FileFault> read(const std::vector<std::size_t>& indices,
                                          const Region& region, FrameSet& set) = 0;

protected:
    StackFacts m_facts;
};

/// The files that a stack is made of, as far as they are there: a pattern's, the frames of an
/// index, energies, flat, dark and reference.
QStringList stackFiles(const StackSource& source);

/// The same; none where neither the file of the stack is there nor one that its pattern matches.
QStringList presentStackFiles(const StackSource& source);

/// Opens a stack; what it is is found out, its pixels are not read.
/// @param fault  why there is none, where nothing comes back
std::unique_ptr<Stack> openStack(const StackSource& source, FileFault& fault);
