#pragma once

#include <QString>

#include <cstdint>
#include <vector>

/// A stack of images of a sample, as a camera counts them: counts of each frame, of frames without
/// sample, and without light. [frame][row][column]
struct CountedStack {
    int columns = 0;
    int rows = 0;
    std::vector<double> energies; ///< eV
    std::vector<std::uint16_t> counts;
    std::vector<std::uint16_t> flats; ///< one for each frame
    std::vector<std::uint16_t> dark;  ///< one

    std::size_t pixels() const
    {
        return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    }
    /// (counts - dark) / (flat - dark).
    std::vector<float> transmission() const;
    /// ln((flat - dark) / (counts - dark)).
    std::vector<double> mut() const;
};

struct MapSample;

/// Writes the images of a sample in every layout below, with spectra and truth, into a folder,
/// which is made where it does not exist.
/// @return empty, or what could not be written
QString writeStackExample(const QString& folder, const MapSample& map);

/// The images of a map sample at some energies, with counts large enough for six digits of mu-t.
CountedStack countedStack(const MapSample& map, const std::vector<double>& energies);

/// The same stack in the layouts of different places; false where a file cannot be written.
/// "fxi": transmission in float32, energies in keV.
bool writeFxi(const QString& path, const CountedStack& stack);
/// "exchange": counts, flats one for each, three darks.
/// @param energyLast  the energies run fastest
bool writeExchange(const QString& path, const CountedStack& stack, bool energyLast = false);
/// "mistral": transmission in float32, a chunk an image, size of a pixel.
bool writeMistral(const QString& path, const CountedStack& stack);
/// NXdata of mu-t in double precision.
bool writeNxdata(const QString& path, const CountedStack& stack);
/// Pages of one TIFF file, "flat.tif" and "dark.tif" beside it, the energies in a text.
bool writeTiffStack(const QString& path, const CountedStack& stack);
/// Frames "PATH_000.img" of an index, those of "PATH.ref" without sample, and dark ones.
bool writeImgStack(const QString& path, const CountedStack& stack);
/// One .his of all frames, "PATH.flat" and "PATH.dark", the energies in "PATH.txt".
bool writeHisStack(const QString& path, const CountedStack& stack);
