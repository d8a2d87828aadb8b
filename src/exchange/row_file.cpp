#include "exchange/row_file.h"

#include <algorithm>
#include <charconv>

namespace norvane {

namespace {

constexpr std::string_view firstColumn = "step,";

/// The step of the last whole row of a text that ends with the file; -1: it holds none.
std::int64_t lastStepOf(std::string_view text) {
    if (text.empty() || text.back() != '\n') return -1;
    text.remove_suffix(1);
    const std::size_t begin = text.rfind('\n') + 1; // 0 without one
    std::int64_t step = -1;
    std::from_chars(text.data() + begin, text.data() + text.size(), step);
    return step;
}

} // namespace

FileResult lookAt(const RowFile& file, RowFileContent& content) {
    content = {};
    const FileStamp stamp = stampOf(file.path);
    if (!stamp.exists || stamp.size == 0) return {};
    content.exists = true;
    std::string text;
    FileResult read = readBeginning(file.path, file.header.size(), text);
    if (!read) return read;
    // A run that was killed while it began the file may have left less than the first column: nothing to lose.
    content.isTable = std::string_view(text).substr(0, firstColumn.size()) == firstColumn.substr(0, text.size());
    content.isSame = text == file.header;
    if (!content.isSame) return {};
    constexpr std::size_t numberLength = 24; // with its comma
    const auto columns = static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1;
    read = readEnd(file.path, 2 * numberLength * columns + 64, text); // a whole row and one that was cut
    if (!read) return read;
    const std::size_t whole = text.rfind('\n') + 1;
    content.wholeBytes = static_cast<std::int64_t>(stamp.size - (text.size() - whole));
    const bool hasRows = content.wholeBytes > static_cast<std::int64_t>(file.header.size());
    if (hasRows) content.lastStep = lastStepOf(std::string_view(text).substr(0, whole));
    return {};
}

FileResult beginRows(RowFile& file) {
    FileResult written = writeFile(file.path, file.header);
    file.length = written ? static_cast<std::int64_t>(file.header.size()) : 0;
    return written;
}

FileResult addRow(RowFile& file, std::string_view row) {
    FileResult written = appendFile(file.path, row);
    if (written) file.length += static_cast<std::int64_t>(row.size());
    return written;
}

FileResult goOnBehind(RowFile& file, std::int64_t length) {
    FileResult cut = cutFile(file.path, static_cast<std::uint64_t>(length));
    if (cut) file.length = length;
    return cut;
}

} // namespace norvane
