#include "check/model_rules.h"

#include "check/table_rules.h"
#include "core/number_text.h"
#include "core/quantities.h"
#include "core/wall_codes.h"
#include "display/field_plot.h"
#include "exchange/log_file.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace norvane {

namespace {

std::string number(double value) { return generalText(static_cast<float>(value)); }

std::size_t at(std::int32_t cell) { return static_cast<std::size_t>(cell); }

/// One check of a model.
struct ModelCheck {
    const SimState& sim;
    const GivenKeys& given;
    const std::vector<unsigned>& kinds;
    Findings& findings;

    void add(const char* rule, std::int32_t cell, std::string text, Severity severity = Severity::warning) const {
        findings.add({severity, rule, cell > 0 ? placeOf(sim, cell) : TablePlace(), "", std::move(text)});
    }

    bool isGiven(const std::vector<unsigned>& bits, std::int32_t cell, int dim) const {
        return (bits[at(cell)] >> std::min(dim, 31) & 1U) != 0;
    }
};

std::string along(const char* key, int dim, const char* value) {
    return std::string(key) + " " + std::to_string(dim) + ";" + value;
}

bool hasVelocity(const SimState& sim, std::int32_t cell) {
    for (int dim = 1; dim <= sim.nDim; ++dim)
        if (sim.velocityInit(cell, dim) != 0) return true;
    return false;
}

/// A face whose velocity is imposed, and not 0.
void checkImposedFace(const ModelCheck& check, std::int32_t cell, int dim) {
    const SimState& sim = check.sim;
    const bool isLast = (cell - 1) % sim.cellStride[dim + 1] >= sim.cellStride[dim + 1] - sim.cellStride[dim];
    if (isLast)
        check.add(
            "face-without-neighbour", cell,
            "the velocity is imposed on the upper face of the last cell along dimension " + std::to_string(dim)
                + ", beyond which there is no gas: nothing flows. An inlet at this end is drawn in the cell before "
                  "it, with a negative VV");
}

void checkVelocities(const ModelCheck& check, std::int32_t cell) {
    const SimState& sim = check.sim;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int16_t code = sim.wallVelocity(cell, dim);
        const bool hasGiven = check.isGiven(check.given.velocities, cell, dim);
        const bool looksLikeInlet = sim.wallPressure[cell] > 0;
        if (hasGiven && !isImposed(code) && sim.velocityInit(cell, dim) != 0 && looksLikeInlet)
            check.add(
                "velocity-not-imposed", cell,
                isClosed(code) && check.isGiven(check.given.codes, cell, dim)
                    ? "the face that the velocity is meant for is closed, by this cell or a WV 0;2 of its neighbour"
                    : along("VV", dim, number(sim.velocityInit(cell, dim)).c_str())
                          + " is only the speed at the start. Is it an inlet? Then it takes " + along("WV", dim, "-1")
                          + ", too");
        if (!isImposed(code)) continue;
        if (sim.velocityInit(cell, dim) != 0)
            checkImposedFace(check, cell, dim);
        else if ((check.isGiven(check.given.codes, cell, dim) || check.isGiven(check.given.codes, cell, 0))
                 && !hasVelocity(sim, cell))
            check.add("code-without-velocity", cell,
                      along("WV", dim, number(code).c_str()) + " imposes the velocity 0, since the cell has no VV. Is "
                          + along("VV", dim, "...") + " missing?");
    }
}

/// One cell in a row of inlets that has all of theirs but WP.
void checkMissingHold(const ModelCheck& check, std::int32_t cell) {
    const SimState& sim = check.sim;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const float velocity = sim.velocityInit(cell, dim);
        if (!isImposed(sim.wallVelocity(cell, dim)) || !(velocity > 0)) continue;
        bool isAmongInlets = false;
        forEachNeighbour(sim, cell, [&](std::int32_t neighbour, int, std::int32_t) {
            const bool isInlet = (check.kinds[at(neighbour)] & kindInlet) != 0;
            isAmongInlets = isAmongInlets || (isInlet && sim.velocityInit(neighbour, dim) == velocity);
        });
        if (isAmongInlets)
            check.add("inlet-not-held", cell,
                      "its neighbours are inlets with WP 1, and this cell has none: it empties");
    }
}

/// What holds masses, pressure or energy of a cell, where it does not do what it is for.
void checkHeldCell(const ModelCheck& check, std::int32_t cell) {
    const SimState& sim = check.sim;
    const unsigned kind = check.kinds[at(cell)];
    if ((kind & kindWall) != 0 && sim.wallPressure[cell] != wallFree)
        check.add("held-in-wall", cell, "WP does nothing here: no face of the cell is open");
    if ((kind & kindInlet) != 0 && sim.wallTemperature[cell] == wallFree)
        check.add("inlet-cools", cell,
                  "the flow takes heat out of this inlet, and nothing replaces it: its gas cools down. An inlet takes "
                  "WT 1 or WT -1, too");
    if ((kind & kindReacting) != 0 && sim.paramGP[15] == 0)
        check.add("no-reaction", cell, "species react here (WC 1), and GP 11; to GP 15; are not given");
    if (exchangesSpecies(sim.wallConcentration[cell]) && sim.nsMax < 1)
        check.add("no-reaction", cell, "WC 1 needs a second species (NS 1)");
    if (sim.wallPressure[cell] == wallFree && (kind & kindWall) == 0) checkMissingHold(check, cell);
}

/// An outlet in the last cell of a line, whose far face is closed by the end of the line.
void checkOutletFace(const ModelCheck& check, std::int32_t cell) {
    const SimState& sim = check.sim;
    if ((check.kinds[at(cell)] & (kindOutlet | kindWall)) != kindOutlet) return;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int32_t stride = sim.cellStride[dim];
        const std::int32_t place = (cell - 1) % sim.cellStride[dim + 1];
        const bool isLast = place >= sim.cellStride[dim + 1] - stride && place >= stride;
        if (!isLast || !isClosed(sim.wallVelocity(cell, dim)) || !isOpenFace(sim, cell - stride, dim)) continue;
        if ((check.kinds[at(cell - stride)] & kindOutlet) != 0) continue; // the flow comes another way
        check.add("outlet-brakes", cell,
                  "this outlet is the last cell of its line, whose closed end brakes the flow; it takes "
                      + along("WV", dim, "0") + ", too");
    }
}

/// Gas that flows between cells of different heat capacity changes its temperature.
void checkHeatCapacity(const ModelCheck& check, std::int32_t cell) {
    const SimState& sim = check.sim;
    if ((check.kinds[at(cell)] & kindWall) != 0) return;
    forEachNeighbour(sim, cell, [&](std::int32_t neighbour, int dim, std::int32_t face) {
        const bool flows = face == cell && isOpenFace(sim, face, dim);
        if (flows && sim.heatCapacity[cell] != sim.heatCapacity[neighbour])
            check.add("heat-capacity", cell,
                      "gas flows between cells of different CP and changes its temperature by that; give CP one value "
                      "wherever gas flows");
    });
}

void checkFractions(const ModelCheck& check, std::int32_t cell) {
    const SimState& sim = check.sim;
    if (sim.nsMax < 1 || !(double(sim.concentration(cell, 0)) < -1e-6)) return;
    check.add("fractions-above-1", cell,
              "the mass fractions of the species from 1 on add up to " + number(1 - double(sim.concentration(cell, 0)))
                  + ", so that species 0 is negative");
}

/// Gas that imposed velocities draw out of a part of the cells to which nothing flows.
void checkSupply(const ModelCheck& check) {
    const SimState& sim = check.sim;
    const GasParts parts = gasParts(sim, check.kinds, FaceRule::free);
    std::vector<std::int32_t> drawnFrom(static_cast<std::size_t>(parts.count) + 1, 0);
    std::vector<bool> isSupplied(drawnFrom.size(), false);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const auto partOf = [&](std::int32_t each) { return static_cast<std::size_t>(parts.partOf[at(each)]); };
        if (sim.wallPressure[cell] != wallFree) isSupplied[partOf(cell)] = true;
        forEachNeighbour(sim, cell, [&](std::int32_t neighbour, int dim, std::int32_t face) {
            if (!isImposed(sim.wallVelocity(face, dim)) || partOf(cell) == partOf(neighbour)) return;
            const float velocity = sim.velocityInit(face, dim);
            const bool isOut = face == cell ? velocity > 0 : velocity < 0;
            if (isOut && drawnFrom[partOf(cell)] == 0) drawnFrom[partOf(cell)] = cell;
            if (!isOut && velocity != 0) isSupplied[partOf(cell)] = true;
        });
    }
    for (std::size_t part = 1; part < drawnFrom.size(); ++part)
        if (drawnFrom[part] != 0 && !isSupplied[part])
            check.add(
                "inlet-not-held", drawnFrom[part],
                "gas is drawn from here at an imposed velocity, and nothing replaces it. An inlet takes WP 1, which "
                "holds its masses");
}

/// A part of the gas that inlets fill and that nothing leaves.
void checkOutlets(const ModelCheck& check) {
    const SimState& sim = check.sim;
    const GasParts parts = gasParts(sim, check.kinds, FaceRule::open);
    std::vector<std::int32_t> inlet(static_cast<std::size_t>(parts.count) + 1, 0);
    std::vector<bool> leaves(inlet.size(), false);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const std::size_t part = static_cast<std::size_t>(parts.partOf[at(cell)]);
        if ((check.kinds[at(cell)] & kindInlet) != 0 && inlet[part] == 0) inlet[part] = cell;
        if ((check.kinds[at(cell)] & (kindOutlet | kindHeld)) != 0) leaves[part] = true;
    }
    // An inlet that takes in as well is an outlet: gas is blown into it from another one.
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        if ((check.kinds[at(cell)] & kindInlet) != 0)
            forEachNeighbour(sim, cell, [&](std::int32_t, int dim, std::int32_t face) {
                const bool isIn = isImposed(sim.wallVelocity(face, dim))
                                  && (face == cell ? sim.velocityInit(face, dim) < 0 : sim.velocityInit(face, dim) > 0);
                if (isIn) leaves[static_cast<std::size_t>(parts.partOf[at(cell)])] = true;
            });
    for (std::size_t part = 1; part < inlet.size(); ++part)
        if (inlet[part] != 0 && !leaves[part])
            check.add("no-outlet", inlet[part],
                      "gas comes in here and can leave nowhere: the pressure will rise. Is an outlet missing (WP -1)?");
    if (parts.count > 1)
        check.add("parts", 0, "walls divide the gas into " + std::to_string(parts.count) + " parts that do not meet",
                  Severity::note);
}

void checkSpeed(const ModelCheck& check) {
    const SimState& sim = check.sim;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const double sound = std::sqrt(double(sim.gasFactor) * double(sim.temperature[cell]));
            const double velocity = std::abs(double(sim.velocityInit(cell, dim)));
            if (isClosed(sim.wallVelocity(cell, dim)) || !(velocity > sound)) continue;
            check.add("faster-than-sound", cell,
                      "a velocity of " + number(velocity) + " m/s is given, and sound goes at " + number(sound)
                          + " m/s. Is PP in Pa, TT in K and RH right?");
        }
}

void checkOutputs(const ModelCheck& check) {
    const SimState& sim = check.sim;
    const std::int32_t probe = logCell(sim);
    if (sim.logEvery > 0 && probe > 0 && (check.kinds[at(probe)] & kindWall) != 0)
        check.add("log-in-wall", probe, "the log follows this cell, which is a wall: its velocity stays 0");
    const PlaneRange range = planeRange(sim);
    if (!range.found || sim.updateEvery == 0) return;
    if (!(range.high < sim.scaleMin || range.low > sim.scaleMax)) return;
    const bool isTemperature = drawnQuantity(sim.showWhat) == showTemperature;
    check.add("one-colour", 0,
              "the first plot has one colour: what it shows lies between " + number(range.low) + " and "
                  + number(range.high) + ", and the scale goes from SI " + number(sim.scaleMin) + " to SA "
                  + number(sim.scaleMax) + (isTemperature ? "; temperatures are shown in deg C" : ""),
              check.given.scale ? Severity::warning : Severity::note);
}

void checkStep(const ModelCheck& check, const StableStep& stable) {
    const SimState& sim = check.sim;
    if (sim.stepLimit < 0) check.add("endless", 0, "NT is below 0: a run goes on until it is stopped", Severity::note);
    if (sim.stepLimit == 0)
        check.add("one-step", 0, "NT is 0 or not given: a run makes one step; NT or run --time say how many",
                  Severity::note);
    const LimitingCell limit = stable.smallest();
    if (stable.againstUpwind != 0)
        check.add(
            "against-upwind", stable.againstUpwind,
            "flow towards lower numbers is so fast here that it may be unstable whatever the time step. Draw it the "
            "other way round, or with a larger PP");
    if (limit.cell == 0 || !(sim.dt > 0)) return;
    const double part = double(sim.dt) / limit.step;
    const std::string step = "DT " + number(sim.dt) + " s is " + number(part) + " times the largest stable step, "
                             + number(limit.step) + " s (by " + limitText(stable.kind()) + " in this cell)";
    constexpr double absurd = 1000;
    if (part > absurd)
        check.add("step-too-large", limit.cell,
                  step + ". Is a value out of its unit (PP in Pa, DD in m, RH in kg/m3, ET in Pa s)? Else write DT "
                      + number(suggestedStep(stable)));
    else if (part > 1)
        check.add("step-too-large", limit.cell, step + ". Write DT " + number(suggestedStep(stable)));
    else if (part < 0.01)
        check.add("step-too-small", limit.cell,
                  step + ": the run takes long, and slow changes may stand still in single precision. Could it be DT "
                      + number(suggestedStep(stable)) + "?");
}

} // namespace

GivenKeys::GivenKeys(std::int32_t cells)
    : velocities(at(cells) + 1, 0), codes(at(cells) + 1, 0), heights(at(cells) + 1, false) {}

void GivenKeys::take(const Assignment& made, const SimState& sim, Findings& findings) {
    const std::string_view letters = made.key->letters;
    if (made.source == Source::defaults) {
        scale = scale || letters == "SI" || letters == "SA";
        return;
    }
    const unsigned bit = 1U << std::min(made.component, 31);
    if (made.source == Source::cellText) {
        if (letters == "VV") velocities[at(made.cell)] |= bit;
        if (letters == "WV") codes[at(made.cell)] |= bit;
        if (letters == "HH") heights[at(made.cell)] = true;
    }
    if (made.source == Source::spread && letters == "HH" && made.origin != made.cell && heights[at(made.cell)])
        findings.add({Severity::warning, "overwritten", placeOf(sim, made.cell), "",
                      "the height of this cell is overwritten by HH of " + spreadsheetAddress(placeOf(sim, made.origin))
                          + ", which spreads along its line"});
}

double startingSpeed(const SimState& sim, const std::vector<unsigned>& kinds) {
    double low = 0;
    double high = 0;
    double temperature = 0;
    double given = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        for (int dim = 1; dim <= sim.nDim; ++dim)
            given = std::max(given, std::abs(double(sim.velocityInit(cell, dim))));
        if ((kinds[at(cell)] & kindWall) != 0) continue;
        const double pressure = sim.pressure[cell];
        low = low == 0 ? pressure : std::min(low, pressure);
        high = std::max(high, pressure);
        temperature = std::max(temperature, double(sim.temperature[cell]));
    }
    if (!(low > 0)) return given;
    return std::max(given, std::sqrt(double(sim.gasFactor) * temperature) / 2 * std::log(high / low));
}

void checkModel(const SimState& sim,
                const GivenKeys& given,
                const std::vector<unsigned>& kinds,
                const StableStep& stable,
                Findings& findings) {
    const ModelCheck check{sim, given, kinds, findings};
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        checkVelocities(check, cell);
        checkFractions(check, cell);
        checkHeldCell(check, cell);
        checkOutletFace(check, cell);
        checkHeatCapacity(check, cell);
    }
    checkSupply(check);
    checkOutlets(check);
    checkSpeed(check);
    checkOutputs(check);
    checkStep(check, stable);
}

double suggestedStep(const StableStep& stable) {
    const double step = 0.9 * stable.smallest().step;
    if (!(step > 0)) return 0;
    const double unit = std::pow(10, std::floor(std::log10(step)) - 1);
    return std::floor(step / unit) * unit;
}

} // namespace norvane
