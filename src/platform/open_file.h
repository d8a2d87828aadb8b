#pragma once
// How files are opened, and what every write shares. For the operations of files.h alone.

#include "platform/files.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace norvane {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

/// read: an existing file. update: an existing file, to be read and written in place. replace: emptied, or created.
/// append: written at its end, or created.
enum class Access { read, update, replace, append };

/// Gives the file, or none and the reason. Opening never waits: a pipe, a socket and a folder are refused, for reading
/// a device, too. Something is written through a link only where the link and its folder are the user's own: in a
/// folder that others write to, a link of theirs would choose which of the user's files is lost.
/// Streams are unbuffered: what is written is handed over whole, and a fault belongs to its write.
File openFile(const std::string& path, Access access, FileResult& result);

/// Makes a file that is not there yet, and holds its lock. One that is there is the fault EEXIST.
File createFile(const std::string& path, FileResult& result);

/// Closes a file that was written: some file systems report a fault only then, in errno.
bool closeFile(File file);

/// The file that an output to `path` goes to, links followed as openFile does; `result` is a failure where they must
/// not be.
std::string outputTarget(const std::string& path, FileResult& result);

/// The system's text for an error number; 0 counts as a fault that the library does not number.
FileResult failure(int number);

/// Whether the file keeps what is written, so that it can be read again: a device does not.
bool isRegular(std::FILE* file);

bool writeAll(std::FILE* file, std::string_view content);
/// Reads `length` bytes, fewer only at the end of the file. Gives false at a fault.
bool readAll(std::FILE* file, char* to, std::size_t length, std::size_t& got);
bool flushToDisc(std::FILE* file);
bool cutTo(std::FILE* file, std::int64_t length);
bool seekTo(std::FILE* file, std::int64_t position);
/// Gives -1 at a fault. The position is at the end afterwards.
std::int64_t lengthOf(std::FILE* file);

/// The most bytes that this process may give a file.
std::int64_t fileSizeLimit();

/// Asks for the lock of a file that is being saved (exclusive) or read, waiting for others for some seconds. Gives
/// whether it is held; it ends when the file is closed. Where the system has no such locks there is nothing to wait
/// for.
bool lockFile(std::FILE* file, bool exclusive, bool& waited);

/// Takes the lock where nobody has it.
bool lockAtOnce(std::FILE* file);

} // namespace norvane
