#pragma once
// The texts of a geometry table, as they stand in its file.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// One buffer with the bytes of the file and the place of each row in it; a column is found by walking its row, since
/// everything that reads the table goes through it row by row. Rows and columns are numbered from 1.
class CellTextTable {
public:
    CellTextTable() = default;

    /// Takes the bytes of a text file and finds its rows. A row ends at CR LF, CR or LF; the last may lack its end.
    explicit CellTextTable(std::string bytes);

    std::int64_t rowCount() const { return static_cast<std::int64_t>(rows_.size()); }

    std::string_view row(std::int64_t row) const;

    /// The text in a column, of a table with `columns` columns: the last column takes the whole rest of the row, tabs
    /// included. A row that is too short, and a place outside the table, give an empty text.
    std::string_view text(std::int64_t column, std::int64_t row, std::int64_t columns) const;

private:
    struct Span {
        std::size_t begin;
        std::size_t length;
    };

    std::string bytes_;
    std::vector<Span> rows_;
};

/// Walks the columns of one row from left to right, in the manner of CellTextTable::text.
class RowWalker {
public:
    RowWalker(std::string_view row, std::int64_t columns) : rest_(row), left_(columns) {}

    /// The text of the next column; empty after the end of the row. In the header, since a load of millions of cells
    /// asks for each.
    std::string_view next() {
        if (left_ <= 0) return {};
        left_ -= 1;
        if (left_ > 0 && !rest_.empty() && rest_[0] == '\t') { // most texts are empty
            rest_.remove_prefix(1);
            return {};
        }
        const std::size_t tab = left_ == 0 ? std::string_view::npos : rest_.find('\t');
        const std::string_view text = rest_.substr(0, tab);
        rest_ = tab == std::string_view::npos ? std::string_view() : rest_.substr(tab + 1);
        return text;
    }

private:
    std::string_view rest_;
    std::int64_t left_;
};

} // namespace norvane
