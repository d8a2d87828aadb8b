// A geometry file of any bytes: its load, and all checks of its texts and its model.

#include "check/checkup.h"
#include "fuzz_folder.h"

using namespace norvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    enterEmptyFolder();
    const MemoryLimit limit(std::size_t{1} << 25);
    writeBytes("m.gmt", asText(bytes, length));
    const Checkup checkup = checkGeometry("m.gmt");
    require(checkup.summary.cells > 0 || checkup.findings.errors > 0, "a table without cells is told");
    return 0;
}
