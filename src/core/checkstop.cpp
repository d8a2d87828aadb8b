#include "core/checkstop.h"

#include "core/number_text.h"

#include <algorithm>
#include <string>

namespace norvane {

namespace {

int readStopValue(const std::string& name) {
    constexpr std::size_t mostBytes = 64; // of a number and what separates it; anybody may have written anything
    std::string content;
    if (!readBeginning(name, mostBytes, content)) return 0;
    const std::size_t begin = content.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) return 0;
    const std::size_t end = std::min(content.find_first_of(" \t\r\n,", begin), content.size());
    const std::string item = content.substr(begin, end - begin);
    std::size_t length = 0;
    const double value = numericPrefix(item, length);
    return length == item.size() ? toInt16(value) : 0;
}

int watchedStopValue(const std::string& name, StopFileWatch& watch) {
    const FileStamp stamp = stampOf(name);
    const auto now = StopFileWatch::Clock::now(); // after the stamp and before the read
    const bool sameStamp = stamp == watch.stamp;
    if (sameStamp && watch.readAt - watch.stampMet > watch.settling && now - watch.readAt < watch.trusted)
        return watch.value;
    if (!sameStamp) watch.stampMet = now;
    watch.stamp = stamp;
    watch.readAt = now;
    watch.value = stamp.exists ? readStopValue(name) : 0;
    return watch.value;
}

} // namespace

void clearCheckstop(SimState& sim, const RunEvents& events) {
    if (sim.onlyLooks) return; // it may belong to a run in the same folder
    const FileResult written = writeFile(sim.stopFileName, " 0 \r\n");
    if (written || sim.reported.stopFile) return;
    sim.reported.stopFile = true;
    events.showMessage("The file " + sim.stopFileName + " can't be written: " + written.reason
                       + ".\r\nThe run goes on, but an outside process can't stop it through that file.");
}

void pollCheckstop(SimState& sim, const RunEvents& events, const RunOperations& operations, StopFileWatch& watch) {
    if (watchedStopValue(sim.stopFileName, watch) != 1) return;
    if (operations.showExitQuestion) operations.showExitQuestion(sim);
    sim.stopFlag = true;
    sim.outcome.stopFile = true;
    clearCheckstop(sim, events);
}

} // namespace norvane
