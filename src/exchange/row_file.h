#pragma once
// A table of comma-separated values that a run adds rows to. Each row begins with its step and is handed to the system
// whole, so that a reader who follows the file sees whole rows, and a kill loses none.

#include "platform/files.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

struct RowFile {
    std::string path;
    std::string header;      ///< the first line, with its end; it begins with "step,"
    std::int64_t length = 0; ///< bytes that stand
};

/// What a file of that name holds already.
struct RowFileContent {
    bool exists = false;         ///< and is not empty
    bool isTable = false;        ///< begins with "step,", or is the beginning of that
    bool isSame = false;         ///< has this header
    std::int64_t lastStep = -1;  ///< of its last whole row; -1: it has none
    std::int64_t wholeBytes = 0; ///< up to the end of that row: what follows was cut by a crash
};

FileResult lookAt(const RowFile& file, RowFileContent& content);

/// Begins the file anew with its header.
FileResult beginRows(RowFile& file);

/// Adds a row, which holds its line end. At a fault the file stays as it was.
FileResult addRow(RowFile& file, std::string_view row);

/// Goes on behind so many bytes, which is the end of a whole row; what follows is cut off.
FileResult goOnBehind(RowFile& file, std::int64_t length);

} // namespace norvane
