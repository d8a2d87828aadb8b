// A verification case of any bytes, on a small model: it is refused or it is run to figures.

#include "fuzz_folder.h"
#include "verify/case_run.h"

#include <algorithm>

using namespace norvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    enterEmptyFolder();
    writeBytes("m.gmt", smallTable);
    writeBytes("case.txt", asText(bytes, length));
    Case verified;
    const CaseFault fault = readCase(".", verified);
    require(!fault.isOfFile, "the file is there");
    if (!fault.text.empty()) return 0;
    require(!verified.grids.empty() && !verified.checks.empty(), "a case that is read has grids and checks");
    // These may take as long as they are allowed to, which is long for a fuzzer.
    const std::string_view text = asText(bytes, length);
    if (text.find("series") != std::string_view::npos || text.find("root") != std::string_view::npos) return 0;
    for (CaseGrid& grid : verified.grids) {
        grid.drawing = "m.gmt";
        grid.changes = {"NT=3"};
    }
    verified.grids.resize(std::min<std::size_t>(verified.grids.size(), 2));
    const CaseResult result = runCase(verified, {});
    for (const CheckResult& checked : result.checks)
        require(checked.figures.size() == verified.grids.size() || !result.fault.text.empty(),
                "a figure for each grid");
    return 0;
}
