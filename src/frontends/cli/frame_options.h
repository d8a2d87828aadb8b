#pragma once
// The options of frames: files of fields over time, which netCDF writes.

#include "frontends/cli/run_extra.h"

#include <string>

namespace norvane {

struct FrameOptions {
    int every = 0;      ///< steps between two frames; 0: no frames
    std::string fields; ///< "T,p,u"; empty: the usual ones
    bool append = false;
};

RunExtraMaker addFrameOptions(CLI::App* run);

inline constexpr const char* noNetcdf = "this program was built without netCDF, which frames need; install "
                                        "libnetcdf-dev and build it anew";

} // namespace norvane
