#pragma once
// The file from which a run goes on to the bit: netCDF-4 with a variable for each field that the stages change
// (core/run_memory.h), a checksum over each and over the numbers, and a seal over the whole file.

#include "core/sim_state.h"

#include <cstdint>
#include <string>
#include <vector>

namespace norvane {

/// A text under a name. Neither holds a line end, the name no tab.
struct NamedText {
    std::string name;
    std::string text;

    bool operator==(const NamedText&) const = default;
};

/// What a checkpoint holds beside fields.
struct Checkpoint {
    std::string program; ///< that wrote it, with its version
    std::int32_t step = 0;
    std::int32_t firstStep = 0; ///< step count at the start of the run
    std::int32_t stopStep = 0;
    bool afterOutputs = false; ///< those of the step are written; else they are to come
    std::string table;         ///< fingerprint of its text as it is run
    std::uint64_t model = 0;   ///< fingerprints, as in core/run_memory.h
    std::uint64_t radiation = 0;
    std::uint64_t random = 0;         ///< state of the random sequence of spectra
    std::vector<NamedText> settings;  ///< options that shape what the run writes
    std::vector<NamedText> positions; ///< where the files of the run stand
};

/// Writes a whole checkpoint, sealed and flushed, over a file of that name. It is made in memory, which takes as much
/// as the file, so that no fault of a disc meets the library of the format. Gives what went wrong, in words, and leaves
/// no file then; empty: nothing.
std::string writeCheckpoint(const std::string& path, SimState& sim, const Checkpoint& checkpoint);

/// Reads all but the fields. Gives why the file can't be taken: nothing of it is then.
std::string readCheckpoint(const std::string& path, Checkpoint& checkpoint);

/// Reads the fields of a checkpoint that readCheckpoint took, of a model that has been built. Gives what is wrong with
/// them; then they hold anything.
std::string readCheckpointFields(const std::string& path, SimState& sim);

} // namespace norvane
