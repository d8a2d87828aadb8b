// Runs a geometry to its end and prints the hottest cell at each of its plots: what a program of your own looks like.
#include "core/run_driver.h"
#include "geometry/grid_file.h"
#include "shell/program.h"

#include <cstdio>

using namespace norvane;

namespace {

void printHottest(SimState& sim) {
    std::int32_t hottest = 1;
    for (std::int32_t cell = 2; cell <= sim.nCells; ++cell)
        if (sim.temperature[cell] > sim.temperature[hottest]) hottest = cell;
    std::printf("step %d, %g s: %g K in cell %d\n", sim.stepCount, sim.stepCount * double(sim.dt),
                double(sim.temperature[hottest]), hottest);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: hottest_cell GEOMETRY\n");
        return 2;
    }
    Program program;
    connectProgram(program);
    program.ui.showMessage = [](const Report& report) { std::fprintf(stderr, "%s\n", report.text.c_str()); };
    // In place of the picture: this program looks at the fields themselves.
    program.operations.output("plot").write = printHottest;
    program.sim.batchMode = 1; // no message about the shape of the grid
    selectGeometry(program, argv[1]);
    loadGeometry(program.sim, program.ui);
    if (program.sim.nCells == 0) return 3;
    runSimulation(program.sim, program.ui, program.operations);
    return program.sim.outcome.reachedStopStep ? 0 : 1;
}
