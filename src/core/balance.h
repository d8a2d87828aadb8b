#pragma once
// The balance of a step, as docs/equations.md has it under "Balances": what the cells that are integrated hold, what
// passes into them and out of them, and what rounding leaves. Reads fields alone.

#include "core/sim_state.h"
#include "core/thread_team.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace norvane {

/// Cells that are named together.
struct NamedCells {
    std::string name;
    std::vector<std::int32_t> cells; ///< [1..nCells]
};

/// Held cells whose flows are summed: those of a label, neighbours that are held alike, or the surroundings.
struct HeldGroup {
    std::string name;           ///< of a label; empty: it goes by its first cell
    std::int32_t firstCell = 0; ///< 0: the surroundings
    bool holdsMass = false;
    bool holdsHeat = false;
    bool isRest = false; ///< all groups from this one on
};

/// Groups of which a balance tells; those beyond it share the last one.
constexpr std::size_t maxHeldGroups = 100;

/// The ways in which a quantity comes into the box.
enum class FlowKind : std::uint8_t {
    carried,       ///< with the gas through faces of held cells; of heat also what sinks make up
    conduction,    ///< through faces of held cells
    radiation,     ///< of held cells and the surroundings
    heldRadiation, ///< from held cells to other held cells, which no cell of the box feels
    exchange,      ///< of species, and the heat that goes with it
    pressure,      ///< of momentum, as the following
    viscosity,     ///< through faces of held cells
    drag,          ///< of porous cells
    gravity,       ///< weight
    sink,          ///< what sinks of pressure-held cells make up
};

/// Those of momentum, in the order of their channels.
constexpr FlowKind momentumParts[] = {FlowKind::pressure, FlowKind::carried, FlowKind::viscosity,
                                      FlowKind::drag,     FlowKind::gravity, FlowKind::sink};

/// One flow that is measured. Quantities are numbered: species 0 to nsMax, heat nsMax + 1, then momentum by dimension.
struct FlowChannel {
    int quantity;
    FlowKind kind;
    int group; ///< place in the groups; -1: not of held cells
};

/// A face between a cell of the box and a held one.
struct BoxFace {
    std::int32_t lower; ///< the cell below it
    std::int8_t dim;
    std::int8_t sign; ///< 1: the box is above the face, and gains what flows upwards; -1: below
};

/// Faces in one row of cells, towards one group.
struct FaceRun {
    std::size_t begin;
    std::size_t end;
    int group;
};

struct FaceList {
    std::vector<BoxFace> faces;
    std::vector<FaceRun> runs;
};

/// Places of a group's flows in the channels; -1: it has none. Of mass that of species 0, the others follow.
struct GroupChannels {
    int mass = -1;
    int carried = -1;
    int conduction = -1;
    int radiation = -1;
    int heldRadiation = -1;
};

constexpr std::size_t sumsOfQuantity = 6; ///< members of QuantityBalance

/// Constant during a run but for the sums and the team.
struct BalancePlan {
    std::vector<HeldGroup> groups;
    std::vector<GroupChannels> groupChannels; ///< [groups]
    std::vector<FlowChannel> channels;
    int speciesExchange = -1; ///< channel of species 0; species 1 and heat follow; -1: there is none
    int forces = 0;           ///< channel of the first of the six parts of momentum 1
    std::vector<int> groupOf; ///< [0..nCells] of held cells; else -1. Cell 0: the surroundings
    FaceList massFaces;
    FaceList heatFaces;
    std::vector<FaceList> momentumFaces; ///< [nDim], of dimension e at e - 1
    std::vector<std::int32_t> sinks;     ///< cells, ascending, as the following
    std::vector<std::int32_t> exchangeCells;
    std::vector<std::int64_t> boxCells; ///< [quantities] cells in which it is integrated
    bool hasDrag = false;
    std::uint64_t revision = 0; ///< SimState::revision when the plan was made
    std::int64_t rows = 0;
    std::size_t sumsOfRow = 0;     ///< that fit a row of `rowSums`
    std::vector<double> rowSums;   ///< of some rows, which are worked on together
    std::vector<double> stageSums; ///< [channels] of the stage in hand
    std::vector<double> totals;    ///< [sumsOfRow] of all rows
    std::unique_ptr<ThreadTeam> team;
};

/// A quantity in the box over one step.
struct QuantityBalance {
    double content = 0;   ///< at the end of the step, with remainders where they are kept: kg, J, kg m/s, as all here
    double change = 0;    ///< over the step
    double moved = 0;     ///< sum of the magnitudes of what the step was to add to each cell
    double lost = 0;      ///< the part of it that the rounding of the sum takes away
    double kept = 0;      ///< the part that is lost where remainders are kept; equal to `lost` without them
    double lostCells = 0; ///< cells that were to change, and whose float is the same after the step
};

struct StepBalance {
    std::int32_t step = 0;
    double dt = 0;
    std::vector<QuantityBalance> quantities; ///< species, heat, momentum by dimension
    std::vector<double> flows;               ///< [channels] kg/s, W, N: mean of the step, positive into the box; of
                                             ///< heldRadiation out of the group
};

/// Plans the balance of a model that stands. The cells of a label that are held form a group; other held cells do where
/// faces connect them and their codes have the same signs. `threads` 0: as suits the grid. Throws std::bad_alloc.
BalancePlan planBalance(const SimState& sim, const std::vector<NamedCells>& labels, int threads);

/// After each stage [1..4] of a step: adds its flows. After the fourth `balance` is complete. Needs no memory that it
/// does not have by then.
void measureStage(const SimState& sim, BalancePlan& plan, int stage, StepBalance& balance);

/// Sum of the flows of a quantity into the box.
double totalFlow(const BalancePlan& plan, const StepBalance& balance, int quantity);

/// What the change of a quantity has beyond its flows, as a rate: the rounding of single precision.
double remainderOf(const BalancePlan& plan, const StepBalance& balance, int quantity);

} // namespace norvane
