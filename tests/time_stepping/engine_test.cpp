// The engine gives the bits of the plain evaluation, cell by cell, formula by formula, on random models with
// everything in them: for every instruction set of this machine and for any number of threads.

#include "core/cell_fields.h"
#include "core/processor_engine.h"
#include "core/remainders.h"
#include "core/source_terms.h"
#include "support/plain_stage.h"
#include "support/random_model.h"
#include "support/remote_engine.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <fstream>
#include <functional>
#include <iterator>

namespace norvane {
namespace {

// Which of two NaNs of different signs goes on from a sum follows from the order of its operands, which the language
// leaves to the compiler. The NaNs of the models here keep their sign where GCC optimises.
#if defined(__OPTIMIZE__) && !defined(__clang__)
constexpr bool allNaNsAreEqual = false;
#else
constexpr bool allNaNsAreEqual = true;
#endif

/// The sign of a zero counts.
bool sameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) || (allNaNsAreEqual && a != a && b != b);
}

/// Names the first remainder that differs; empty where all agree, or where neither run keeps any.
std::string differenceOfRemainders(const SimState& a, const SimState& b) {
    if (hasRemainders(a) != hasRemainders(b)) return "existence of remainders";
    for (const CellField& field : remainderFields()) {
        const auto member = std::get<CellTable<float> SimState::*>(field.member);
        const ComponentRange range = componentRange(field.components, a.nDim, a.nsMax);
        for (int component = range.first; hasRemainders(a) && component <= range.last; ++component)
            for (std::int32_t cell = 1; cell <= a.nCells; ++cell)
                if (!sameBits((a.*member)(cell, component), (b.*member)(cell, component)))
                    return field.name + (" of cell " + std::to_string(cell));
    }
    return "";
}

/// Names the first field and cell that differ; empty where all agree.
std::string difference(const SimState& a, const SimState& b) {
    for (std::int32_t cell = 1; cell <= a.nCells; ++cell) {
        const auto at = [&](const std::string& name) { return name + " of cell " + std::to_string(cell); };
        for (int slot = 0; slot <= workSlot; ++slot) {
            const std::string inSlot = " in slot " + std::to_string(slot);
            for (int species = 0; species <= a.nsMax; ++species)
                if (!sameBits(a.stageSpecies(slot, species, cell), b.stageSpecies(slot, species, cell)))
                    return at("species " + std::to_string(species) + inSlot);
            if (!sameBits(a.stageEnergy(slot, cell), b.stageEnergy(slot, cell))) return at("energy" + inSlot);
            for (int dim = 1; dim <= a.nDim; ++dim)
                if (!sameBits(a.stageMomentum(slot, cell, dim), b.stageMomentum(slot, cell, dim)))
                    return at("momentum " + std::to_string(dim) + inSlot);
        }
        for (int species = 0; species <= a.nsMax; ++species)
            if (!sameBits(a.concentration(cell, species), b.concentration(cell, species))) return at("concentration");
        for (int dim = 1; dim <= a.nDim; ++dim)
            if (!sameBits(a.velocity(cell, dim), b.velocity(cell, dim))) return at("velocity " + std::to_string(dim));
        if (!sameBits(a.cellMass[cell], b.cellMass[cell])) return at("cellMass");
        if (!sameBits(a.density[cell], b.density[cell])) return at("density");
        if (!sameBits(a.temperature[cell], b.temperature[cell])) return at("temperature");
        if (!sameBits(a.pressure[cell], b.pressure[cell])) return at("pressure");
    }
    return a.stopFlag == b.stopFlag ? differenceOfRemainders(a, b) : "stopFlag";
}

/// Remainders up to half a unit in the last place of the start, in held quantities as well.
void keepRandomRemainders(SimState& sim, RandomModel& random) {
    sim.compensated = true;
    fitRemainders(sim);
    const auto part = [&](float value) { return value * std::ldexp(float(random.pick(-256, 256)), -33); };
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        for (int species = 0; species <= sim.nsMax; ++species)
            sim.speciesRemainder(cell, species) = part(sim.stageSpecies(committedSlot, species, cell));
        sim.energyRemainder(cell, 0) = part(sim.stageEnergy(committedSlot, cell));
        for (int dim = 1; dim <= sim.nDim; ++dim)
            sim.momentumRemainder(cell, dim) = part(sim.stageMomentum(committedSlot, cell, dim));
    }
}

using MakeEngine = std::function<StageEngine(SimState& sim)>;

/// Runs steps of a model both ways and compares after each stage. Any engine has to pass.
void compareRuns(const SimState& start, const MakeEngine& makeEngine, const std::string& name) {
    SimState engine = start;
    SimState plainly = start;
    std::string engineMessages;
    std::string plainMessages;
    Interface ui;
    Interface plainUi;
    ui.showMessage = [&](const Report& report) { engineMessages += report.text + "\n"; };
    plainUi.showMessage = [&](const Report& report) { plainMessages += report.text + "\n"; };
    const StageEngine stages = makeEngine(engine);
    int stage = 0;
    const auto report = [&](const StageFault& fault) {
        EXPECT_EQ(fault.stage, stage);
        reportFault(engine, ui, fault);
    };
    for (int step = 1; step <= 4; ++step) {
        engine.stepCount = plainly.stepCount = step;
        for (stage = 1; stage <= 4; ++stage) {
            stages.runStage(stage, report);
            if (stages.download) stages.download();
            plain::formWorkState(plainly, stage);
            plain::updatePrimitives(plainly, plainUi);
            plain::computeSlopes(plainly, stage);
            ASSERT_EQ(difference(engine, plainly), "")
                << name << ", step " << step << ", stage " << stage << ", " << stages.name;
        }
    }
    ASSERT_TRUE(engineMessages == plainMessages) << name << ": other messages, or in another order";
}

// Races show in a few models, and the thread sanitizer takes a hundred times as long.
#ifdef __SANITIZE_THREAD__
constexpr unsigned randomModels = 15;
#else
constexpr unsigned randomModels = 150;
#endif

TEST(engine, givesTheBitsOfThePlainEvaluation) {
    const RowKernelList available = availableRowKernels();
    int dimensionsSeen = 0;
    for (unsigned seed = 1; seed <= randomModels; ++seed) {
        RandomModel random(seed);
        TestProgram test;
        test.build(random.table());
        ASSERT_GT(test.sim.nCells, 0) << "seed " << seed;
        test.sim.stageWork = workSlot;
        dimensionsSeen |= 1 << test.sim.nDim;
        if (random.pick(0, 3) == 0) addRandomPairs(test.sim, random);
        SimState compensated = test.sim;
        keepRandomRemainders(compensated, random);
        const std::string name = "seed " + std::to_string(seed);
        for (int k = 0; k < available.count; ++k)
            for (int threads = 1; threads <= 3; ++threads) {
                const auto makeEngine = [&](SimState& sim) {
                    StagePlan plan = planStages(sim, threads, *available.kernels[k]);
                    plan.tileRows = std::min<std::int64_t>(plan.tileRows, threads); // small grids would be one tile
                    return processorEngine(sim, std::move(plan));
                };
                const std::string withThreads = name + ", threads " + std::to_string(threads);
                compareRuns(test.sim, makeEngine, withThreads);
                compareRuns(compensated, makeEngine, withThreads + ", compensated");
            }
        compareRuns(test.sim, remoteEngine, name);
        compareRuns(compensated, remoteEngine, name + ", compensated");
        if (testing::Test::HasFatalFailure()) return;
    }
    EXPECT_EQ(dimensionsSeen, 0b111110) << "all of one to five dimensions";
}

/// The fields as a run shows them in each yield and leaves them to each output; commands are taken between stages.
std::vector<std::uint64_t> fieldsOfRun(const MakeEngine& makeEngine) {
    TestProgram test;
    std::vector<std::uint64_t> hashes;
    test.program.operations.makeEngine = makeEngine;
    test.program.operations.output("plot").write = [&](SimState& sim) { hashes.push_back(stateHash(sim)); };
    int yields = 0;
    test.ui.yieldToInterface = [&] {
        hashes.push_back(stateHash(test.sim));
        yields += 1;
        if (yields == 8) test.click("NV_in.Command6"); // Save
        if (yields != 18) return;
        test.click("NV_in.Command7"); // Recall
        EXPECT_NE(stateHash(test.sim), hashes.back()) << "the recall changes nothing";
    };
    test.load("DT 1E-5:NT 9:UT 1:DD 0;0.01:LA 5\t\t\nL\t\t\nPP 2E5\t\tTT 400\n\tVV 1;3:WV 1;-2\t\nL\t\t");
    test.click("NV_in.Command2");
    hashes.push_back(stateHash(test.sim));
    return hashes;
}

TEST(engine, hasAnEquationForEachTermOfCells) {
    std::ifstream file(NORVANE_EXAMPLES "/../docs/equations.md", std::ios::binary);
    const std::string equations{std::istreambuf_iterator<char>(file), {}};
    std::size_t heading = 0; // they come in the order in which they are added
    for (const CellTerm& term : cellTerms()) {
        heading = equations.find(std::string(") ") + term.name + "\n", heading);
        ASSERT_NE(heading, std::string::npos) << term.name;
    }
}

TEST(engine, mayKeepTheFieldsElsewhere) {
    const std::vector<std::uint64_t> here = fieldsOfRun({});
    EXPECT_EQ(fieldsOfRun(remoteEngine), here);
}

/// Uniform gas at rest with a hot cell: rows rest until the wave comes in, and the bits are those of the plain
/// evaluation.
void compareWaveInRestingGas(const std::string& table, int threads, bool compensated) {
    TestProgram test;
    test.build(table);
    ASSERT_GT(test.sim.nCells, 0);
    test.sim.stageWork = workSlot;
    test.sim.compensated = compensated;
    fitRemainders(test.sim);
    SimState plainly = test.sim;
    StagePlan plan = planStages(test.sim, threads);
    std::int64_t mostResting = 0;
    for (int step = 1; step <= 12; ++step)
        for (int stage = 1; stage <= 4; ++stage) {
            runStage(test.sim, plan, stage, [&](const StageFault& fault) { reportFault(test.sim, test.ui, fault); });
            plain::formWorkState(plainly, stage);
            plain::updatePrimitives(plainly, test.ui);
            plain::computeSlopes(plainly, stage);
            ASSERT_EQ(difference(test.sim, plainly), "") << "step " << step << ", stage " << stage;
            const auto& quiet = plan.resting.quiet;
            mostResting = std::max<std::int64_t>(mostResting, std::count(quiet.begin(), quiet.end(), 4));
            if (step == 10 && stage == 2) { // built anew from outside, as by a recall in a yield, with another hot cell
                for (SimState* const sim : {&test.sim, &plainly}) {
                    test.program.operations.buildModel(*sim);
                    sim->temperature[sim->nCells - 103] = 400;
                    sim->stageEnergy(committedSlot, sim->nCells - 103) *= 1.5f;
                }
            }
        }
    EXPECT_GT(mostResting, plan.rows / 4) << "nothing rested: the test compares nothing new";
    EXPECT_LT(std::count(plan.resting.quiet.begin(), plan.resting.quiet.end(), 4), mostResting) << "no wave came in";
}

TEST(engine, restsWhereNothingHappensUntilAWaveComes) {
    const std::string hot = ".TT 900:PP 5E5\t.\t.\t.\t.\n";
    std::string plane = "DT 1E-5:DD 0;0.01:LA 5:ET 0.1\t\t\t\t\nL\t\t\t\t\n" + hot;
    for (int row = 0; row < 70; ++row) plane += row == 60 ? ".WV 0;1\t.WT -1\t\t\t\n" : "\t\t\t\t\n";
    plane += "L\t\t\t\t";
    std::string room = "DT 1E-5:DD 0;0.01\t\t\t\t\nL\t\t\t\t\n";
    for (int layer = 0; layer < 12; ++layer) {
        for (int row = 0; row < 9; ++row) room += layer == 0 && row == 0 ? hot : "\t\t\t\t\n";
        room += "L\t\t\t\t";
        if (layer < 11) room += "\n";
    }
    for (int threads = 1; threads <= 3; ++threads) {
        for (const bool compensated : {false, true}) {
            compareWaveInRestingGas(plane, threads, compensated);
            compareWaveInRestingGas(room, threads, compensated);
        }
    }
}

} // namespace
} // namespace norvane
