#pragma once
// A file that is replaced in place and yet never lost: the new content is first written whole at the end of the file,
// as a copy that a reader takes while the old content is being overwritten.

#include "platform/files.h"

#include <functional>
#include <string>
#include <string_view>

namespace norvane {

/// What a file holds after an overwrite that failed.
enum class FileHolds {
    oldContent, ///< as before; nothing, where there was no file
    newContent, ///< whole: readWholeFile gives it
    neither,    ///< only where there was no content to lose, or the file can't be read back (a device)
};

struct OverwriteResult : FileResult {
    FileHolds holds = FileHolds::newContent;
};

/// Replaces the content of a file, in place and without a file beside it. `content` is not empty and
/// does not begin with '#'. At any moment, after a kill or a crash too, readWholeFile gives the old content or the new
/// one:
///   1. the new content is written after the old one, with a line that says where it is, and flushed;
///   2. '#' in the first place marks the front as unfinished, flushed;
///   3. the front is overwritten and flushed; 4. its first character ends the mark, flushed; 5. the copy is cut off.
/// A file that an earlier overwrite left marked is finished first. Without room for both contents the old one stays.
/// Another process that reads or overwrites the same file is waited for, some seconds at most.
OverwriteResult overwriteFile(const std::string& path, std::string_view content);

/// What `readWholeFile` calls: `begin` before each attempt, `take` with a piece at a time until it gives false.
struct PieceReader {
    std::function<void()> begin;
    std::function<bool(std::string_view piece)> take;
};

/// Reads a file that overwriteFile writes: the copy where the front is marked, else the front, which may be followed by
/// what a killed overwrite has left. While another process is overwriting it the read is made again, for some seconds
/// at most; `disturbed` says whether that was so. Memory that is short in `take` counts as a failure of the read.
FileResult readWholeFile(const std::string& path, const PieceReader& reader, bool& disturbed);

} // namespace norvane
