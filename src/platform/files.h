#pragma once
// Whole-file operations. Everything that needs a call of the operating system is made here. None waits for another
// process, and none writes through a link that somebody else may have laid: see open_file.h.

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// What became of a file operation: error 0, or the number and the text of the system's reason.
struct FileResult {
    int error = 0;
    std::string reason;

    explicit operator bool() const { return error == 0; }
};

/// Joins a folder and a name with the platform's separator.
std::string joinPath(const std::string& folder, const std::string& name);

/// The absolute form of a path, relative ones counted from the working directory, without "." and ".." and without a
/// separator at its end.
std::string absolutePath(const std::string& path);

/// Whether a path leads to somewhere below a folder, links and ".." followed.
bool liesBelow(const std::string& path, const std::string& folder);

/// The folder of a file, and its name in there.
std::string folderOf(const std::string& path);
std::string nameOf(const std::string& path);

/// The absolute path of the program's own file, given the name that it was called by: one without a folder was found
/// through the search path.
std::string programPath(const std::string& calledName);

/// Reads all bytes of a file. On failure `content` is empty.
FileResult readFile(const std::string& path, std::string& content);

/// What a text consists of: items with separators between them.
struct ItemForm {
    std::string_view separators;
    std::size_t longest = 0; ///< bytes of an item; what is much longer is something else
};

/// As readFile, for a text of items. `tooLong`: it was given up at an item that is far beyond the longest one, with
/// which `content` ends: a file may be large without taking any room on its disc, and must not fill the memory.
FileResult readItems(const std::string& path, const ItemForm& form, std::string& content, bool& tooLong);

/// Reads at most so many bytes from the beginning of a file.
FileResult readBeginning(const std::string& path, std::size_t bytes, std::string& content);

/// Reads at most so many bytes of the end of a file.
FileResult readEnd(const std::string& path, std::size_t bytes, std::string& content);

/// Replaces the content of a file, which is created if need be.
FileResult writeFile(const std::string& path, std::string_view content);

/// Adds bytes at the end of a file, which is created if need be; at a fault it is left as it was.
FileResult appendFile(const std::string& path, std::string_view content);

/// Replaces a file by way of a new one beside it: the name stands for the old content or the whole new one. See
/// Replacement.
FileResult replaceFile(const std::string& path, std::string_view content);

/// Gives a file another name, also one that another file has, which is replaced.
FileResult renameFile(const std::string& from, const std::string& to);

/// Opens for writing without changing the content, creating the file if need be, and closes: what a write would meet.
FileResult tryOpenForWriting(const std::string& path);

/// Removes a file; one that is not there is no fault.
FileResult removeFile(const std::string& path);

/// Cuts a file to a length that it has at least; else it stays, and the failure says so.
FileResult cutFile(const std::string& path, std::uint64_t length);

/// Waits until the content of a file is on the disc.
FileResult flushFile(const std::string& path);

/// Names of the files in a folder with a given ending, whatever the case, sorted byte by byte; no folders. Empty if the
/// folder can't be read.
std::vector<std::string> listFiles(const std::string& folder, const std::string& ending);

/// Opens for reading and closes: whether a read would meet a fault.
FileResult tryOpenForReading(const std::string& path);

/// Data of a file that the system gives without opening it. After a write it differs, unless the clock of the file
/// system has not moved since the write before; after a replacement it always differs where the system numbers its
/// files.
struct FileStamp {
    bool exists = false;
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< ns, as the following
    std::int64_t changed = 0;  ///< also by a change of name or rights; 0 where the system does not know
    std::uint64_t device = 0;  ///< with the number of the file there, what distinguishes it from others; 0 as before
    std::uint64_t number = 0;

    bool operator==(const FileStamp&) const = default;
};

FileStamp stampOf(const std::string& path);

/// The local date and time.
std::tm localTime();

} // namespace norvane
