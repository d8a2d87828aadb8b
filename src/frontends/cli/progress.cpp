#include "frontends/cli/progress.h"

#include <cmath>
#include <cstdio>

namespace norvane {

namespace {

using namespace std::chrono_literals;

std::string formatted(const char* form, double value) {
    char text[64];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

} // namespace

std::string spanText(double seconds) {
    if (seconds < 60) return formatted("%.1f s", seconds);
    if (seconds > 360000) return formatted("%.0f h", seconds / 3600);
    const int whole = static_cast<int>(std::lround(seconds));
    char text[32];
    if (whole < 3600)
        std::snprintf(text, sizeof text, "%d:%02d", whole / 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
    return text;
}

std::string progressText(std::int64_t first, std::int64_t done, std::int64_t total, double seconds) {
    std::string text = "step " + std::to_string(done);
    const bool limited = total >= 0;
    const double share = total > first ? double(done - first) / double(total - first) : 1;
    if (limited) text += " of " + std::to_string(total) + formatted("  %3.0f %%", std::floor(100 * share));
    const double rate = seconds > 0 ? double(done - first) / seconds : 0;
    if (rate > 0) text += formatted(rate < 10 ? "  %.1f steps/s" : "  %.0f steps/s", rate);
    if (limited && rate > 0) text += "  " + spanText(double(total - done) / rate) + " left";
    return text;
}

void Progress::begin(const SimState& sim) {
    began_ = told_ = Clock::now();
    firstStep_ = sim.stepCount;
}

void Progress::step(const SimState& sim) {
    if (quiet_) return;
    const Clock::time_point now = Clock::now();
    if (now - told_ < (terminal_ ? 100ms : 5000ms)) return;
    told_ = now;
    const std::string text = progressText(firstStep_, sim.stepCount, sim.stopStep, seconds());
    // The end of the old line is wiped by the terminal; it may have been longer.
    std::printf(terminal_ ? "\r%s\x1b[K" : "%s\n", text.c_str());
    std::fflush(stdout);
    lineStands_ = terminal_;
}

void Progress::wipe() {
    if (!lineStands_) return;
    std::fputs("\r\x1b[K", stdout);
    std::fflush(stdout);
    lineStands_ = false;
}

double Progress::seconds() const { return std::chrono::duration<double>(Clock::now() - began_).count(); }

} // namespace norvane
