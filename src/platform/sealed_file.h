#pragma once
// A file that ends in a checksum of all that comes before it, so that whoever reads it knows it whole before anything
// of it is interpreted; and its way to its name, at any moment of which the old file or the new one is there.

#include "platform/files.h"

#include <string>

namespace norvane {

/// Adds the seal, a line of its own, at the end of a file that another library has written, and flushes the file.
FileResult sealFile(const std::string& path);

/// Reads a file and compares its seal. On failure `whole` is false.
FileResult checkSeal(const std::string& path, bool& whole);

/// Gives a flushed file the name `path` in the same folder. The file of that name becomes `older`, in place of an
/// earlier one, unless that is empty; at any moment `path` or, on file systems without hard links, `older` is whole.
/// The folder is flushed.
FileResult publishFile(const std::string& fresh, const std::string& path, const std::string& older);

} // namespace norvane
