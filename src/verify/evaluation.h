#pragma once
// The value of an expression for a model as it stands.

#include "verify/built_in.h"
#include "verify/expression.h"

#include <functional>
#include <string>
#include <vector>

namespace norvane {

using TableRows = std::vector<std::vector<double>>;

/// What the names of an expression stand for, in the order of its Symbols.
struct Meanings {
    std::vector<const Expression*> names;
    std::vector<const TableRows*> tables;
    std::vector<std::string> ranges; ///< "C7:AB7"
};

struct ProfilePoint {
    double at = 0;
    double value = 0;
    double expected = 0;
};

/// Evaluates expressions on one model. What is not defined is a NaN, and `fault` says why; it stays until it is
/// cleared.
class Evaluation {
public:
    /// All three stay where they are.
    Evaluation(const SimState& sim, const Meanings& meanings) : sim_(sim), meanings_(meanings), places_(placesOf(sim)) {
        cached_.resize(meanings.names.size());
    }

    std::string fault;

    /// The state of the model has changed, to that after so many steps.
    void setState(std::int64_t steps);

    double value(const Expression& expression);

    std::vector<ProfilePoint> profile(const Expression& expression);

private:
    struct Cached {
        bool isKnown = false;
        bool isOfState = false; ///< known until the state changes
        double value = 0;
    };

    /// What a value was made of, so that one that does not change is worked out once.
    enum Touched : unsigned { nothing = 0, cellRead = 1, stateRead = 2 };

    const SimState& sim_;
    const Meanings& meanings_;
    CellPlaces places_;
    std::vector<Cached> cached_;
    std::int64_t steps_ = 0;
    std::int32_t cell_ = 0;     ///< 0: none
    std::vector<double> bound_; ///< columns and counters
    std::size_t frame_ = 0;     ///< where those of the text in hand begin
    unsigned touched_ = nothing;
    int depth_ = 0;
    std::int64_t work_ = 0;

    /// The value of a part in the cell or row that is visited.
    using Evaluate = std::function<double(const Expression& part)>;

    double fail(const std::string& reason);
    double node(const Expression& expression);
    double runValue(int which);
    double namedValue(int place);
    double fold(const Expression& expression);
    double along(const Expression& expression);
    double series(const Expression& expression);
    double root(const Expression& expression);
    /// Visits the cells or rows of an expression's source that meet its condition, until the visit gives false.
    void forEach(const Expression& expression, const std::function<bool(const Evaluate& evaluate)>& visit);
    std::vector<std::int32_t> cellsOf(const Expression& expression);
    double inCell(std::int32_t cell, const Expression& expression);
    double withCounter(double counter, const Expression& expression);
};

} // namespace norvane
