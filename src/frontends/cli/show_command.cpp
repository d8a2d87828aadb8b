#include "frontends/cli/show_command.h"

#include "check/listing.h"
#include "check/table_rules.h"
#include "core/addressing.h"
#include "core/number_text.h"
#include "frontends/cli/console.h"
#include "frontends/cli/kind_picture.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

namespace norvane {

namespace {

ExitStatus load(const std::string& path, std::int32_t cell, TracedModel& model) {
    const std::string fault = buildTraced(path, cell, model);
    if (fault.empty()) return exitDone;
    std::fprintf(stderr, "%s: %s\n", printableName(path).c_str(), printable(fault, true).c_str());
    return model.sim.reported.geometry ? exitFileFault : exitNoModel;
}

void print(const std::vector<ListedValue>& values) {
    std::size_t width = 0;
    for (const ListedValue& value : values) width = std::max(width, value.value.size() + value.unit.size() + 1);
    for (const ListedValue& value : values) {
        const std::string number = value.value + " " + value.unit;
        std::printf("  %-6s %-*s  %s; %s\n", value.name.c_str(), static_cast<int>(width), number.c_str(),
                    value.origin.c_str(), value.meaning.c_str());
    }
}

void printCell(const TracedModel& model, std::int32_t cell) {
    const SimState& sim = model.sim;
    std::string place;
    std::string metres;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const char* const comma = dim > 1 ? ", " : "";
        place += comma + std::to_string(static_cast<int>(cellCoordinate(sim, cell, dim)));
        metres += comma + generalText(sim.cellPos(cell, dim)) + " to "
                  + generalText(static_cast<float>(double(sim.cellPos(cell, dim)) + double(sim.cellSize(cell, dim))));
    }
    std::printf("%s: cell %d, coordinates %s, %s m\n", spreadsheetAddress(placeOf(sim, cell)).c_str(), cell,
                place.c_str(), metres.c_str());
    print(listCell(model, cell));
}

/// The key of these letters among those that count in cells; null, after a message: none.
const Key* cellKey(std::string letters) {
    std::string known;
    for (char& c : letters) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const Key& key : allKeys()) {
        if ((key.scope & inCells) == 0 || std::holds_alternative<std::monostate>(key.target)) continue;
        if (key.letters == letters) return &key;
        known += " " + std::string(key.letters);
    }
    std::fprintf(stderr, "--key: \"%s\" is no key of cells; these are%s\n", printableName(letters).c_str(),
                 known.c_str());
    return nullptr;
}

ExitStatus showKey(const ShowOptions& options, const SimState& sim) {
    const Key* const key = cellKey(options.key);
    if (key == nullptr) return exitBadUse;
    const std::vector<int> components = componentsOf(sim, *key);
    const int component = options.component < 0 ? components.front() : options.component;
    if (std::find(components.begin(), components.end(), component) == components.end()) {
        std::fprintf(stderr, "--component: %s has %d to %d\n", options.key.c_str(), components.front(),
                     components.back());
        return exitBadUse;
    }
    std::fputs(fieldTable(sim, *key, component).c_str(), stdout);
    return exitDone;
}

bool hasSameShape(const SimState& a, const SimState& b) {
    if (a.nDim != b.nDim || a.nsMax != b.nsMax || a.gridCols != b.gridCols || a.layerRows != b.layerRows) return false;
    for (int dim = 1; dim <= a.nDim; ++dim)
        if (a.cellCount[dim] != b.cellCount[dim]) return false;
    return true;
}

/// What many cells have in common is one line, in the order of the first of them.
void printDifferences(const SimState& sim, const std::vector<Difference>& found) {
    constexpr std::size_t mostCells = 5;
    constexpr std::size_t mostLines = 200;
    std::vector<std::pair<std::string, std::vector<std::int32_t>>> lines;
    std::map<std::string, std::size_t> lineOf;
    for (const Difference& each : found) {
        const std::string text = each.name + " " + each.before + " -> " + each.after;
        const auto [line, isNew] = lineOf.insert({text, lines.size()});
        if (isNew) lines.push_back({text, {}});
        if (each.cell > 0) lines[line->second].second.push_back(each.cell);
    }
    for (std::size_t k = 0; k < lines.size() && k < mostLines; ++k) {
        const auto& [text, cells] = lines[k];
        std::string where;
        for (std::size_t n = 0; n < cells.size() && n < mostCells; ++n)
            where += (n > 0 ? ", " : "") + spreadsheetAddress(placeOf(sim, cells[n]));
        if (cells.size() > mostCells) where += " and " + std::to_string(cells.size() - mostCells) + " more";
        std::printf("%s%s%s\n", where.c_str(), where.empty() ? "" : ": ", text.c_str());
    }
    if (lines.size() > mostLines) std::printf("... and %zu more lines\n", lines.size() - mostLines);
}

} // namespace

ExitStatus showGeometry(const ShowOptions& options) {
    if (!options.picture.empty() && !mayBePicture(options.geometry, options.picture)) return exitBadUse;
    TracedModel model;
    if (const ExitStatus status = load(options.geometry, 0, model); status != exitDone) return status;
    if (!options.picture.empty() && !drawnPicture(model.sim, {}, options.picture)) return exitFileFault;
    if (!options.key.empty()) return showKey(options, model.sim);
    if (options.address.empty()) {
        std::printf("%s: %s\n", printableName(options.geometry).c_str(), describedGrid(model.sim).c_str());
        print(listSettings(model));
        return exitDone;
    }
    const std::int32_t cell = cellOfAddress(model.sim, options.address);
    if (cell == 0) {
        std::fprintf(stderr, "\"%s\" is no cell of the drawing; the first one is %s, the last one %s\n",
                     printableName(options.address).c_str(), spreadsheetAddress(placeOf(model.sim, 1)).c_str(),
                     spreadsheetAddress(placeOf(model.sim, model.sim.nCells)).c_str());
        return exitBadUse;
    }
    TracedModel traced;
    if (const ExitStatus status = load(options.geometry, cell, traced); status != exitDone) return status;
    printCell(traced, cell);
    return exitDone;
}

ExitStatus diffGeometries(const std::string& before, const std::string& after, const std::string& picture) {
    if (!picture.empty() && !(mayBePicture(before, picture) && mayBePicture(after, picture))) return exitBadUse;
    TracedModel a;
    TracedModel b;
    if (const ExitStatus status = load(before, 0, a); status != exitDone) return status;
    if (const ExitStatus status = load(after, 0, b); status != exitDone) return status;
    if (!hasSameShape(a.sim, b.sim)) {
        std::printf("shape: %s -> %s\n", describedGrid(a.sim).c_str(), describedGrid(b.sim).c_str());
        return exitEndedByModel;
    }
    const std::vector<Difference> found = differences(a.sim, b.sim);
    printDifferences(b.sim, found);
    if (!picture.empty()) {
        PictureMarks marks{{}, "differs"};
        for (const Difference& each : found)
            if (each.cell > 0) marks.places.push_back(placeOf(b.sim, each.cell));
        if (!drawnPicture(b.sim, marks, picture)) return exitFileFault;
    }
    return found.empty() ? exitDone : exitEndedByModel;
}

} // namespace norvane
