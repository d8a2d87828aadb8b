#pragma once
// Expressions of verification cases: arithmetic on numbers, on the values of a cell, and on sums over cells and tables.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

enum class Term : std::uint8_t {
    number,
    cellValue, ///< index: into cellValues()
    runValue,  ///< index: RunValue
    name,      ///< index: into Symbols::names
    bound,     ///< index: place of a column or counter, counted from the outermost one of the text
    call,      ///< index: into functions()
    choice,    ///< parts: condition, value where it is not 0, value where it is
    fold,      ///< index: Fold; parts: condition of cells or rows, body
    along,     ///< parts: condition of cells or rows, coordinate, value, position
    series,    ///< parts: first, last, body
    root,      ///< parts: lower end, upper end, body
    profile,   ///< parts: condition of cells, abscissa, value, expected value
};

enum class RunValue : std::uint8_t { time, steps, stepSize, gasConstant, pi };

enum class Fold : std::uint8_t { sum, mean, largest, smallest, rms, first, last };

/// Where the cells or rows of a fold come from.
struct FoldSource {
    enum class Kind : std::uint8_t { allCells, addresses, namedRange, table };
    Kind kind = Kind::allCells;
    int index = 0;         ///< of a named range or a table
    std::string addresses; ///< "C7:AB7"
};

/// A node of the tree. It has few levels: parseExpression limits them.
struct Expression {
    Term term = Term::number;
    double number = 0;
    int index = 0;
    FoldSource source;
    std::vector<Expression> parts;
};

struct TableColumns {
    std::string name;
    std::vector<std::string> columns;
};

/// The names that an expression may use besides the built-in ones.
struct Symbols {
    std::vector<std::string> names; ///< each stands for a value of its own
    std::vector<TableColumns> tables;
    std::vector<std::string> ranges; ///< of cells
};

/// Reads a whole text as an expression. Gives what is wrong with it, in words; empty: nothing.
std::string parseExpression(std::string_view text, const Symbols& symbols, Expression& expression);

/// Reads "SOURCE, ABSCISSA, VALUE, EXPECTED" as a profile.
std::string parseProfile(std::string_view text, const Symbols& symbols, Expression& expression);

/// Whether a text can be a name of its own: letters, digits and "_", no digit first, and not built in.
bool isFreeName(std::string_view text);

} // namespace norvane
