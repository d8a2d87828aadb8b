#include "core/cell_text_table.h"

#include <utility>

namespace norvane {

CellTextTable::CellTextTable(std::string bytes) : bytes_(std::move(bytes)) {
    std::size_t begin = 0;
    while (begin < bytes_.size()) {
        std::size_t end = bytes_.find_first_of("\r\n", begin);
        if (end == std::string::npos) end = bytes_.size();
        rows_.push_back({begin, end - begin});
        const bool isPair = end + 1 < bytes_.size() && bytes_[end] == '\r' && bytes_[end + 1] == '\n';
        begin = end + (isPair ? 2 : 1);
    }
}

std::string_view CellTextTable::row(std::int64_t row) const {
    if (row < 1 || row > rowCount()) return {};
    const Span& span = rows_[static_cast<std::size_t>(row - 1)];
    return std::string_view(bytes_).substr(span.begin, span.length);
}

std::string_view CellTextTable::text(std::int64_t column, std::int64_t row, std::int64_t columns) const {
    if (column < 1 || column > columns) return {};
    RowWalker walker(this->row(row), columns);
    for (std::int64_t passed = 1; passed < column; ++passed) walker.next();
    return walker.next();
}

} // namespace norvane
