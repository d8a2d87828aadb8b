#include "check/listing.h"

#include "core/number_text.h"
#include "exchange/cell_table.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "platform/files.h"
#include "platform/interface.h"

#include <algorithm>

namespace norvane {

namespace {

constexpr int highestParameter = 1000;

/// Reads the field of a key.
struct FieldReader {
    const SimState& sim;
    std::int32_t cell;
    int component;

    double operator()(std::monostate) const { return 0; }

    template <class Number>
    double operator()(Number SimState::*scalar) const {
        return static_cast<double>(sim.*scalar);
    }

    /// Of the whole model (gravity, parameters) the component is the place, of cells the cell.
    template <class Number>
    double operator()(Array<Number> SimState::*field) const {
        const Array<Number>& array = sim.*field;
        const std::int64_t place = component > 0 ? component : cell;
        return array.contains(place) ? static_cast<double>(array[place]) : 0;
    }

    template <class Number>
    double operator()(CellTable<Number> SimState::*field) const {
        return static_cast<double>((sim.*field)(cell, component));
    }
};

bool isScalar(const Key& key) {
    return std::holds_alternative<float SimState::*>(key.target)
           || std::holds_alternative<std::int16_t SimState::*>(key.target)
           || std::holds_alternative<std::int32_t SimState::*>(key.target);
}

std::string valueText(double value) { return generalText(static_cast<float>(value)); }

std::string nameOf(const Key& key, int component, bool hasComponents) {
    return std::string(key.letters) + (hasComponents ? " " + std::to_string(component) : "");
}

std::string originText(const SimState& sim, const Assignment& made) {
    const std::string cell = made.origin > 0 ? spreadsheetAddress(placeOf(sim, made.origin)) : "";
    switch (made.source) {
    case Source::defaults: return "rows with defaults, " + spreadsheetAddress({made.row, made.column});
    case Source::cellText: return "its own text";
    case Source::spread: return std::string(made.key->letters) + " of " + cell + ", spread";
    case Source::rowEnd: return "the end of a row, which is closed";
    case Source::wholeCell: return "WV 0; in its own text";
    default: return made.origin == made.cell ? "code 2 in its own text" : "code 2 of " + cell;
    }
}

std::string originOf(const TracedModel& model, const Key& key, std::int32_t cell, int component) {
    if (cell > 0 && key.letters == "RH") return "follows from PP and TT";
    if ((key.scope & inColumn1) != 0) return valueOf(model.sim, key, 0, 0) == 0 ? "default" : "column 1";
    const auto own = model.origins.find({cell, &key, component});
    if (own != model.origins.end()) return originText(model.sim, own->second);
    if (cell > 0 && key.letters == "CC" && component == 0) return "1 less the other species";
    const auto byDefault = model.origins.find({0, &key, component});
    const bool counts = cell == 0 || (fieldOf(key) != nullptr && fieldOf(key)->start == FieldStart::fromTemplate);
    if (counts && byDefault != model.origins.end()) return originText(model.sim, byDefault->second);
    return "default";
}

ListedValue listed(const TracedModel& model, const Key& key, std::int32_t cell, int component, bool hasComponents) {
    return {nameOf(key, component, hasComponents), valueText(valueOf(model.sim, key, cell, component)),
            std::string(key.unit), originOf(model, key, cell, component), std::string(key.meaning)};
}

void addDifferences(
    const SimState& before, const SimState& after, const Key& key, std::int32_t cell, std::vector<Difference>& found) {
    const std::vector<int> components = componentsOf(before, key);
    for (const int component : components) {
        const double a = valueOf(before, key, cell, component);
        const double b = valueOf(after, key, cell, component);
        const bool isSame = a == b || (a != a && b != b);
        if (!isSame)
            found.push_back({cell, nameOf(key, component, components.front() != 0 || components.size() > 1),
                             valueText(a), valueText(b)});
    }
}

} // namespace

std::string buildTraced(const std::string& path, std::int32_t cell, TracedModel& model) {
    Interface ui;
    std::string fault;
    ui.showMessage = [&](const Report& report) { fault += (fault.empty() ? "" : "\n") + report.text; };
    ui.NV_in.Dir1.path = absolutePath(folderOf(path));
    ui.NV_in.File1.selected = norvane::nameOf(path);
    SimState& sim = model.sim;
    sim.batchMode = true;
    sim.onlyLooks = true;
    sim.stageWork = workSlot;
    loadGeometry(sim, ui);
    if (sim.nCells == 0) return fault.empty() ? "a grid without cells" : fault;
    buildModel(sim, ui, [&](const Assignment& made) {
        if (made.cell == 0 || made.cell == cell) model.origins[{made.cell, made.key, made.component}] = made;
    });
    return {};
}

double valueOf(const SimState& sim, const Key& key, std::int32_t cell, int component) {
    const double value = std::visit(FieldReader{sim, cell, component}, key.target);
    return key.timesVolume && cell > 0 ? value / double(sim.cellVolume[cell]) : value;
}

std::vector<int> componentsOf(const SimState& sim, const Key& key) {
    const auto range = [](int first, int last) {
        std::vector<int> all;
        for (int component = first; component <= last; ++component) all.push_back(component);
        return all;
    };
    switch (key.index) {
    case KeyIndex::dimension: return range(1, sim.nDim);
    case KeyIndex::dimensionOr0:
        return key.form == KeyForm::list && key.letters == "WV" ? range(0, sim.nDim) : range(1, sim.nDim);
    case KeyIndex::species: return range(0, sim.nsMax);
    case KeyIndex::parameter: return range(1, highestParameter);
    case KeyIndex::signedDimension: return key.letters == "DD" ? range(1, sim.nDim) : std::vector<int>{0};
    default: return {0};
    }
}

std::vector<ListedValue> listCell(const TracedModel& model, std::int32_t cell) {
    std::vector<ListedValue> values;
    for (const Key& key : allKeys()) {
        if ((key.scope & inCells) == 0 || std::holds_alternative<std::monostate>(key.target)) continue;
        const std::vector<int> components = componentsOf(model.sim, key);
        for (const int component : components)
            values.push_back(listed(model, key, cell, component, key.form != KeyForm::plain && components.back() > 0));
    }
    return values;
}

std::vector<ListedValue> listSettings(const TracedModel& model) {
    std::vector<ListedValue> values;
    for (const Key& key : allKeys()) {
        const bool isOfModel = (key.scope & inCells) == 0 && !std::holds_alternative<std::monostate>(key.target);
        if (!isOfModel) continue;
        for (const int component : componentsOf(model.sim, key)) {
            const bool isUnused = key.index == KeyIndex::parameter && valueOf(model.sim, key, 0, component) == 0;
            if (!isUnused) values.push_back(listed(model, key, 0, component, !isScalar(key)));
        }
    }
    return values;
}

std::string fieldTable(const SimState& sim, const Key& key, int component) {
    return inShapeOfDrawing(sim, LayerMarks::emptyLines,
                            [&](std::int32_t cell) { return valueText(valueOf(sim, key, cell, component)); });
}

std::vector<Difference> differences(const SimState& before, const SimState& after) {
    std::vector<Difference> found;
    for (const Key& key : allKeys())
        if ((key.scope & inCells) == 0) addDifferences(before, after, key, 0, found);
    for (std::int32_t cell = 1; cell <= before.nCells; ++cell)
        for (const Key& key : allKeys())
            if ((key.scope & inCells) != 0) addDifferences(before, after, key, cell, found);
    return found;
}

} // namespace norvane
