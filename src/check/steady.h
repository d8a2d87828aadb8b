#pragma once
// Whether values over time have come to rest: the range of each within a window of time, against its magnitude.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace norvane {

/// How far a value has moved within the window.
struct SteadyTrend {
    std::string name;
    double range = 0;  ///< largest less smallest value
    double scale = 0;  ///< what it is compared with
    double change = 0; ///< range / scale; 0 where both are 0, infinite where a value is not finite

    bool isSteady(double tolerance) const { return change < tolerance; }
};

/// Rows of values over time. Old ones are kept as blocks of several rows with their extremes, so that the memory does
/// not grow with the run.
///
/// The scale of a value is its mean magnitude within the window, and no less than a hundredth of the largest magnitude
/// that a value of the same unit (the text in the last bracket of its name) has had since the start: a velocity that
/// dies out, or is only rounding, is compared with the others.
class SteadyRows {
public:
    static constexpr std::size_t mostBlocks = 512;
    static constexpr std::int64_t fewestRows = 100; ///< of a window

    /// `keptTime`: no window will be longer, s; 0: it may reach back to the start.
    SteadyRows(const std::vector<std::string>& names, double keptTime);

    /// Takes a row with a value for each name; times rise.
    void add(double time, std::span<const double> values);

    /// The trends within the last so many seconds, rounded up to whole blocks. None where the rows do not reach back so
    /// far or are fewer than fewestRows.
    std::optional<std::vector<SteadyTrend>> trends(double window) const;

    /// Whether all are steady; false where there are no trends. Ends with the first that is not, which makes it cheap
    /// enough for every row.
    bool isSteady(double window, double tolerance) const;

    double span() const; ///< s from the first row to the last

    /// All that was taken, as words between blanks, and back to the bit. Gives false, with nothing changed, for a text
    /// that is not of rows with as many values.
    std::string text() const;
    bool take(const std::string& text);

private:
    struct Block {
        double begin = 0; ///< time of its first row
        std::int64_t rows = 0;
    };

    struct Extent {
        double low = 0;
        double high = 0;
        double sum = 0; ///< of magnitudes
    };

    std::optional<std::size_t> firstBlock(double window) const;
    SteadyTrend trendOf(std::size_t column, std::size_t first) const;
    void makeRoom();
    void mergePairs();

    std::vector<std::string> names_;
    double keptTime_;
    std::vector<std::size_t> unitOf_; ///< of a column: place in largest_
    std::vector<double> largest_;     ///< magnitude of each unit since the start
    std::vector<Block> blocks_;       ///< in the order of time
    std::vector<Extent> extents_;     ///< [block][column]
    std::int64_t rowsOfBlock_ = 1;    ///< in a full one
    double start_ = 0;
    double latest_ = 0;
    mutable std::size_t restless_ = 0; ///< the column that was not steady last: it is looked at first
};

} // namespace norvane
