#pragma once
// Models for measurements.

#include "core/stage_engine.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace norvane {

/// A folder of its own that is the working directory meanwhile, since a build writes its stop file there; removed at
/// the end.
class BenchFolder {
public:
    BenchFolder() {
        std::filesystem::create_directories(path);
        std::filesystem::current_path(path);
    }

    ~BenchFolder() {
        std::error_code ignored;
        std::filesystem::current_path(formerDirectory_, ignored);
        std::filesystem::remove_all(path, ignored);
    }

    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    const std::filesystem::path path = std::filesystem::temp_directory_path() / "norvane-bench";

private:
    std::filesystem::path formerDirectory_ = std::filesystem::current_path();
};

inline void ignoreFault(const StageFault&) {}

/// Loads and builds the table "bench.gmt" of a folder, without the message about the cells.
inline void loadAndBuild(SimState& sim, Interface& ui, const BenchFolder& folder) {
    ui.showMessage = [](const Report& report) { std::fprintf(stderr, "%s\n", report.text.c_str()); };
    ui.NV_in.Dir1.path = folder.path.string();
    ui.NV_in.File1.selected = "bench.gmt";
    sim.batchMode = true;
    loadGeometry(sim, ui);
    buildModel(sim, ui);
}

/// A built grid of columns x rows x layers cells that hold no keys.
struct BenchModel {
    BenchFolder folder;
    SimState sim;
    Interface ui;

    BenchModel(int columns, int rows, int layers = 1, const std::string& defaults = "") {
        const std::string tabs(static_cast<std::size_t>(columns - 1), '\t');
        std::ofstream table("bench.gmt", std::ios::binary);
        table << defaults << tabs << "\nL" << tabs;
        for (int layer = 0; layer < layers; ++layer) {
            for (int row = 0; row < rows; ++row) table << "\n" << tabs;
            table << "\nL" << tabs;
        }
        table.close();
        loadAndBuild(sim, ui, folder);
        sim.stageWork = workSlot;
    }

    /// Gas that moves everywhere by some metres a second, so that every term has something to do.
    void setInMotion() {
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
            const double row = (cell - 1) / sim.cellCount[1];
            for (int dim = 1; dim <= sim.nDim; ++dim)
                if (sim.wallVelocity(cell, dim) == 0)
                    sim.stageMomentum(committedSlot, cell, dim) =
                        static_cast<float>(sim.cellMass[cell] * 10 * std::sin(0.01 * cell * dim + row));
        }
    }
};

} // namespace norvane
