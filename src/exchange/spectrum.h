#pragma once
// The spatial spectrum of the velocity field, sampled at random wave vectors.

#include "core/sim_state.h"
#include "platform/interface.h"

#include <cstdint>
#include <string>

namespace norvane {

/// Asks for the number of frequency points and writes the spectrum with them. A cancelled question, or an empty answer,
/// does nothing. Faults, each reported by a message, after which nothing is written: an answer that is no number or
/// below 0; those of writeSpectrum.
void exportSpectrum(SimState& sim, Interface& ui);

/// Samples the velocity field at pointCount + 1 wave vectors k and writes "NV_spectrum" in inputDir, a row for each
/// sample in the order drawn: the length of k, 1/m, a tab, and the power
///   P(k) = sum over d of (sum over c of v_d cos(k x))^2 + (sum over c of v_d sin(k x))^2        m2/s2
/// over dimensions d and all cells c with lower edges x = cellPos and velocities v, unweighted and unscaled. Along a
/// dimension k is 2 pi m over the lower edge of the last cell, with a whole m drawn from 0 to below cellCount / 2; it
/// is 0 where that edge is 0, as with one cell. Ends with a beep and a message, and gives true when the file is
/// written. Changes openError and spectrumRandom, nothing else. Without a geometry the rows hold 0 and 0. Faults, each
/// reported by a message: pointCount below 0; too many points for the memory; a file that can't be opened or written.
/// `path` names another file than "NV_spectrum" in inputDir.
bool writeSpectrum(SimState& sim, Interface& ui, std::int32_t pointCount, const std::string& path = {});

/// The next number of a sequence on [0, 1), the same on every platform.
double nextUniform(RandomSequence& sequence);

} // namespace norvane
