#include "jobs/JobTemplate.h"

namespace
{

constexpr char templateText[] =
    R"(# A job for drovik-batch (TOML). What is left out stays as the window has it at its
# start. Paths start from the folder of this file; energies are in eV.

# What is calculated of each target: "target" is the point method, "lcf" the linear
# combination fit. "map" is a map of the images of the [[point]] tables (see map_result).
calculate = ["target", "lcf"]

[files]
ref1 = "ref1.dat"
ref2 = "ref2.dat"
blank = "blank.dat"
# Many targets, by names and patterns: each file once, sorted by the bytes of its path.
# They need [output] folder.
targets = ["scans/*.dat"]
# Or one target. Without [output] folder its results are printed.
# target = "target.dat"
# A spectrum is a beamline's file, XDI, or columns whose names say what they hold. Otherwise say
# it: format = "beamline", "xdi" or "columns"; unit = "eV", "keV" or "degrees" (with the spacing d
# of the lattice planes in angstrom). For targets: { files = ["*.txt"], columns = ... }.
#   ref1 = { file = "ref1.txt", columns = { energy = 1, mut = 2 }, unit = "keV" }
#   ref2 = { file = "ref2.txt", columns = { energy = 1, i0 = 2, i = 3 }, unit = "degrees", d = 3.1356 }
# The file of a map of the [[point]] tables, for a job without [output] folder.
# map_result = "map-result.dat"

[edge]
energy = 8350
# Against the edge: where the line before it ends, and where the line behind it begins.
pre_edge_end = -50
post_edge_start = 100

[valences]
ref1 = 2
ref2 = 3

[conditions]
# The thickness ratio of the references: "sum-by-sum", "mean", "least-squares",
# "least-squares-no-blank" or "victreen" (the edge jumps).
thickness = "victreen"
# Whether a Victreen line is subtracted, and which: "pre" or "post".
references_minus_victreen = true
target_minus_victreen = false
victreen = "post"
# "exact" (four points) or "least-squares" (four points or more).
method = "least-squares"

# Where the energies of scans are off: what is added to those of each spectrum, in eV, before
# anything is formed from it.
[alignment]
ref1 = 0.0
ref2 = 0.0
target = 0.0
blank = 0.0
# Or a table of all files with the columns file and shift; paths start from this folder.
# shifts = "shifts.csv"
# Or foils that were measured along with the spectra; {name} is the name of the spectrum's file
# without its suffix. The foil of Ref 1 sets the scale; ref2 or blank with a number needs none. Foils are
# read like spectra: foil = { file = "foil/{name}.txt", columns = ... }.
# foil = "foil/{name}.dat"

# How sure the results are. The noise of a spectrum comes from its "scatter" before the edge, or
# from "counts": the readings times a gain for each detector, behind and before the sample.
# "none" leaves the uncertainties out. level is that of the interval of the valence. Images of
# maps have no points before the edge: theirs is map_scatter, the standard deviation of a pixel's
# mu-t, or comes from the counts where it is not given.
[noise]
model = "scatter"
gain = 1.0
gain0 = 1.0
level = 0.683
# map_scatter = 0.003

# By how much the thickness of the targets varies under the beam: its standard deviation over the
# thickness. What this does to the valence is told by itself.
[systematics]
uneven = 0.05

# For drovik-batch --rank: photons before the sample at each energy, and the target's t/ts.
[rank]
counts = 1e8
t_ts = 1.0

# The rows of the point table, eight at most. One has v_point, where the references differ.
# t_ratio chooses the points of the thickness ratio and the range of the linear combination
# fit; use = false leaves a row out of the point method.
[[point]]
energy = 8313
use = true
t_ratio = true
# map = "map_1.dat"

[[point]]
energy = 8381
t_ratio = true

[[point]]
energy = 8390
v_point = true

[[point]]
energy = 8404.5
t_ratio = true

# A target can be a region of a stack of images: its row has this name. The spectrum is ln of the mean
# intensities, or the mean of mu-t where there are none. The keys are those of a [[map]], explained
# below; without a region it is the whole frame. They need [output] folder.
[[target]]
name = "grain 1"
stack = "scan.h5"
kind = "exchange"
# data = "/measurement/images"
# energies = "/measurement/energy"
values = "counts"
flat = "/exchange/data_white"
dark = 100
# reference = "blank_scan.dat"
pixel_size = 0.65
tilt_ev_per_row = 0
row0 = 0
shift = 0
region = { x = 20, y = 10, width = 8, height = 8 }

# Maps: each has a name, and an image for each [[point]]; "" stands for none. They need
# [output] folder, in which each has the folder maps/NAME.
[[map]]
name = "area 1"
images = ["area1_a.txt", "area1_b.txt", "area1_c.txt", "area1_d.txt"]

# Or a pattern: {row} is the number of the [[point]], {energy} its energy as it stands here.
# Rows that are not used need no image.
[[map]]
name = "area 2"
pattern = "area2_{row}.txt"

# Or a stack of images of many energies: an HDF5 file, TIFF pages or files ("scan_*.tif"), the
# index of camera frames, or a .his. Its kind is found out, or given: "fxi", "exchange", "mistral",
# "nxdata", "tiff", "img" or "his". Between two frames mu-t is linear.
[[map]]
name = "area 3"
stack = "scan.h5"
kind = "exchange"
# Paths in an HDF5 file of another kind; the energies may be a text beside it.
# data = "/measurement/images"
# energies = "/measurement/energy"
# "mu-t", "transmission" or "counts". Counts need images without sample, and without light.
values = "counts"
flat = "/exchange/data_white"
# A file, a path in the file, or the number of counts.
dark = 100
# The index of the camera's frames without sample.
# reference = "blank_scan.dat"
# In micrometres.
pixel_size = 0.65
# The energy over the height of the beam, in eV a row, and the row (0 for the first) that has the
# energy of the frame.
tilt_ev_per_row = 0
row0 = 0
# Added to all energies of the stack, eV.
shift = 0
region = { x = 0, y = 0, width = 100, height = 80 }

# The histograms of a map: centres of the first and the last box, number of boxes.
[histogram]
valence = { from = 1.5, to = 3.5, boxes = 41 }
thickness = { from = -0.2, to = 1.2, boxes = 41 }

# results.csv has a row for each target, maps.csv one for each map.
[output]
folder = "results"
# The window's graphs of every target as PNG files.
pictures = false
# report.html, a page that shows all results, with pictures of the maps.
report = true
# The result file and the histogram files of each map.
map_files = true
# Of each map valence, a and t/ts as TIFF files of numbers in single precision.
tiff = false
# results.h5: maps and targets of the run in double precision, with their errors.
hdf5 = false
# Of pictures and report: "en" or "ja".
language = "en"
)";

} // namespace

QByteArray jobTemplate()
{
    return templateText;
}
