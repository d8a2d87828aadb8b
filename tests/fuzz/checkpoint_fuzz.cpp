// Checkpoints: any bytes, a good one with bytes changed, cut or added, and one that holds any texts. What is not sealed
// as it was written never reaches the library that reads the format.

#include "formats/checkpoint_file.h"
#include "fuzz_folder.h"

#include <algorithm>

using namespace norvane;

namespace {

struct Model : FuzzProgram {
    Model() {
        enterEmptyFolder();
        load(smallTable);
        program.operations.buildModel(sim);
    }
};

void readAny(std::string_view bytes, SimState& sim) {
    writeBytes("c", bytes);
    Checkpoint checkpoint;
    if (readCheckpoint("c", checkpoint).empty()) readCheckpointFields("c", sim);
}

/// Three bytes each: where, two of them, and what is changed there.
void readChanged(const std::string& good, std::string_view changes) {
    std::string bytes = good;
    for (; changes.size() >= 3; changes.remove_prefix(3)) {
        const std::size_t place =
            static_cast<unsigned char>(changes[0]) * 256u + static_cast<unsigned char>(changes[1]);
        bytes[place * 31 % bytes.size()] ^= changes[2];
    }
    if (changes.size() == 1) bytes.resize(bytes.size() * static_cast<unsigned char>(changes[0]) / 255);
    writeBytes("c", bytes + std::string(changes.size() == 2 ? changes : ""));
    const bool isGood = bytesOf("c") == good;
    Checkpoint checkpoint;
    require(readCheckpoint("c", checkpoint).empty() == isGood, "a changed checkpoint is refused, and a good one taken");
}

void carryTexts(std::string_view text, SimState& sim) {
    std::string plain(text);
    std::replace_if(
        plain.begin(), plain.end(), [](char c) { return c == '\n' || c == '\0'; }, ' ');
    Checkpoint written;
    written.program = plain;
    written.settings = {{"a", plain}, {"b", ""}};
    written.step = static_cast<std::int32_t>(text.size());
    require(writeCheckpoint("t", sim, written).empty(), "a checkpoint can be written");
    Checkpoint read;
    require(readCheckpoint("t", read).empty(), "a checkpoint that was written can be read");
    require(read.settings == written.settings && read.step == written.step, "it holds what it was given");
    require(readCheckpointFields("t", sim).empty(), "its fields can be taken");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    static Model model;
    static const std::string good = [] {
        require(writeCheckpoint("good", model.sim, {}).empty(), "a checkpoint can be written");
        return bytesOf("good");
    }();
    enterEmptyFolder();
    if (length == 0) return 0;
    const std::string_view rest = asText(bytes + 1, length - 1);
    switch (bytes[0] % 3) {
    case 0: readAny(rest, model.sim); break;
    case 1: readChanged(good, rest); break;
    default: carryTexts(rest, model.sim); break;
    }
    return 0;
}
