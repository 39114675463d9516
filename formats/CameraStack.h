#pragma once

#include "formats/Stack.h"

/// Opens frames of a camera (.img) by the beamline's text that was written with them, its index:
/// frame k of "scan.dat" is "scan.dat_000.img", with four digits where the index has more than 999
/// rows; repeats "scan.dat_000_000.img" and on are averaged; "scan.dat_dk0.img" to "_dk9.img" are
/// dark. The frames of a second index, the reference, have no sample. A single .img or .his has
/// its energies in a text.
std::unique_ptr<Stack> openCameraStack(const StackSource& source, FileFault& fault);
