#include "core/cell_fields.h"
#include "core/wall_codes.h"
#include "geometry/model_parts.h"

#include <algorithm>
#include <variant>

namespace norvane {

namespace {

constexpr int columnMark = -2; ///< value of sliceSel of the dimension that is drawn across
constexpr int rowMark = -1;    ///< value of sliceSel of the dimension that is drawn downward

/// Stores the start value of a key: of a field of cells in the template, of each of its components that has one.
struct StartStore {
    SimState& sim;
    const Key& key;

    void operator()(std::monostate) const {}

    template <class Number>
    void operator()(Number SimState::*scalar) const {
        storeNumber(key.start, sim.*scalar);
    }

    template <class Number>
    void operator()(Array<Number> SimState::*field) const {
        if (key.form == KeyForm::plain || key.index == KeyIndex::signedDimension) // one value a cell
            storeNumber(key.start, (sim.*field)[0]);
        else
            for (int dim = 1; dim <= sim.nDim; ++dim) storeNumber(key.start, (sim.*field)[dim]);
    }

    /// The code of the whole cell (component 0 of a table by dimensions) has no start.
    template <class Number>
    void operator()(CellTable<Number> SimState::*field) const {
        CellTable<Number>& table = sim.*field;
        const int first = key.index == KeyIndex::species ? 0 : 1;
        for (std::int64_t component = first; component <= table.lastComponent(); ++component)
            storeNumber(key.start, table(0, component));
    }
};

void setDisplayDefaults(SimState& sim) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        sim.zoom[dim] = 1;
        sim.offset[dim] = 0;
        sim.sliceSel[dim] = 0;
    }
    sim.sliceSel[1] = columnMark;
    if (sim.nDim >= 2) sim.sliceSel[2] = rowMark;
    sim.axisPair[0] = 1;
    sim.axisPair[1] = 2;
}

/// The sign of the index has no meaning here: all cells follow the template anyway.
void applyTemplateSize(SimState& sim, const KeyedSize& size, const BuildTrace& trace, Assignment& assignment) {
    if (!size.given() || size.dim() > sim.nDim) return;
    const int first = size.index == 0 ? 1 : size.dim();
    const int last = size.index == 0 ? sim.nDim : size.dim();
    for (int dim = first; dim <= last; ++dim) {
        sim.cellSize(0, dim) = size.value;
        assignment.component = dim;
        if (trace) trace(assignment);
    }
}

void takeDefault(SimState& sim, const KeyText& text, const BuildTrace& trace, Assignment assignment) {
    if (!text.hasEffect()) return;
    assignment.key = text.key;
    assignment.value = text.value;
    if (text.key->index == KeyIndex::signedDimension) {
        applyTemplateSize(sim, sizeOf(text), trace, assignment);
        return;
    }
    assignment.component = storeKey(sim, text, 0);
    if (trace && assignment.component >= 0) trace(assignment);
}

/// Starts the cells of a field from the template, or at 0.
struct TemplateCopy {
    SimState& sim;
    const CellField& field;

    template <class T>
    void fill(T* cells) const {
        std::fill_n(cells + 1, sim.nCells, field.start == FieldStart::fromTemplate ? cells[0] : T());
    }

    template <class T>
    void operator()(Array<T> SimState::*member) const {
        fill(&(sim.*member)[0]);
    }

    /// A code of the whole cell is not copied: it comes from a text, or the cell has none.
    template <class T>
    void operator()(CellTable<T> SimState::*member) const {
        const ComponentRange range = componentRange(field.components, sim.nDim, sim.nsMax);
        const int first = field.components == FieldComponents::cellAndDimensions ? 1 : range.first;
        for (int component = first; component <= range.last; ++component) fill((sim.*member).component(component));
    }

    template <class Slots>
    void operator()(Slots SimState::*) const {} // of a state, which a continuation keeps
};

/// Closes the upper face of the last cell of every row along a dimension.
void closeRowEnds(SimState& sim, int dim, const BuildTrace& trace) {
    if (sim.nCells == 0) return;
    const std::int64_t stride = sim.cellStride[dim];
    const std::int64_t period = sim.cellStride[dim + 1];
    std::int16_t* const codes = sim.wallVelocity.component(dim) + 1;
    for (std::int64_t end = period; end <= sim.nCells; end += period) {
        std::fill_n(codes + end - stride, stride, std::int16_t{wallClosed});
        for (std::int64_t cell = end - stride + 1; trace && cell <= end; ++cell)
            trace({Source::rowEnd, &keyOf("WV"), static_cast<std::int32_t>(cell), dim, wallClosed});
    }
}

} // namespace

KeyedSize sizeOf(const KeyText& text) {
    KeyedSize size;
    if (!text.hasEffect()) return size;
    storeNumber(text.index, size.index);
    storeNumber(text.value, size.value);
    return size;
}

void setDefaults(SimState& sim, bool display) {
    for (const Key& key : allKeys()) {
        const bool isRestored = (key.scope & inColumn1) == 0 && key.hasStart() && (display || !key.isDisplay);
        if (isRestored) std::visit(StartStore{sim, key}, key.target);
    }
    sim.concentration(0, 0) = 1;
    sim.rhoFloor = 0.01f;
    if (display) setDisplayDefaults(sim);
}

void readDefaults(SimState& sim, bool display, const BuildTrace& trace) {
    Assignment assignment;
    for (std::int64_t row = 1; row <= sim.firstLayerRow; ++row) {
        RowWalker walker(sim.grid.row(row), sim.gridCols);
        for (std::int64_t column = 1; column <= sim.gridCols; ++column)
            forEachItem(walker.next(), [&](std::string_view item, std::size_t at) {
                forEachKey(item, inDefaults, sim.nDim, [&](const KeyText& text) {
                    if (text.key->isDisplay && !display) return;
                    assignment.row = row;
                    assignment.column = column;
                    assignment.at = at + text.at;
                    takeDefault(sim, text, trace, assignment);
                });
            });
    }
}

/// What the template does not pass on (velocityInit, the other wall codes) is not copied: each build reads the same
/// texts again, which write the same values.
void copyTemplate(SimState& sim, const BuildTrace& trace) {
    for (const CellField& field : cellFields())
        if (field.start != FieldStart::kept) std::visit(TemplateCopy{sim, field}, field.member);
    for (int dim = 1; dim <= sim.nDim; ++dim) closeRowEnds(sim, dim, trace);
}

} // namespace norvane
