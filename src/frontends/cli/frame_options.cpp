#include "frontends/cli/frame_options.h"

#include "frontends/cli/command_options.h"
#include "frontends/cli/plot_frames.h"
#include "frontends/cli/run_frames.h"

#include <cstdio>
#include <memory>

namespace norvane {

#ifndef NORVANE_NETCDF
RunExtra framesOf(const FrameOptions&) {
    RunExtra extra;
    extra.name = "frames";
    extra.prepare = [](const RunContext&) { return std::string(noNetcdf); };
    return extra;
}

ExitStatus chooseFrames(const PlotOptions&, const SimState&, PlotFrames&) {
    std::fprintf(stderr, "--frame: %s\n", noNetcdf);
    return exitBadUse;
}

bool holdFields(const PlotFrames&, const SimState&, const std::vector<ShownQuantity>&, bool) { return false; }

ExitStatus takeFrame(const PlotFrames&, std::size_t, SimState&) { return exitBadUse; }
#endif

RunExtraMaker addFrameOptions(CLI::App* run) {
    const auto kept = std::make_shared<FrameOptions>();
    CLI::Option* frames =
        run->add_option("--frames", kept->every, "write the fields into m_frames.nc (netCDF) every N steps")
            ->type_name("N")
            ->check(CLI::Range(1, 2147483647));
    run->add_option("--frames-fields", kept->fields, "the fields, such as T,p,u; without: all usual ones")
        ->type_name("LIST")
        ->needs(frames)
        ->check(notEmpty);
    run->add_flag("--append", kept->append, "go on with the frames of an earlier run, after --recall")->needs(frames);
    return [kept]() -> std::optional<RunExtra> {
        if (kept->every == 0) return std::nullopt;
        return framesOf(*kept);
    };
}

} // namespace norvane
