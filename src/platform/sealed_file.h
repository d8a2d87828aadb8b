#pragma once
// A file that ends in a checksum of all that comes before it, so that whoever reads it knows it whole before anything
// of it is interpreted; and its way to its name, at any moment of which the old file or the new one is there.

#include "platform/files.h"

#include <string>
#include <string_view>

namespace norvane {

/// Writes a content and the seal, a line of its own behind it, over what is there, and flushes the file. At a fault
/// there is no file.
FileResult writeSealed(const std::string& path, std::string_view content);

/// Reads a file and compares its seal. On failure `whole` is false.
FileResult checkSeal(const std::string& path, bool& whole);

/// Waits until the names in a folder are on the disc.
FileResult flushFolder(const std::string& folder);

/// Gives a flushed file the name `path` in the same folder. The file of that name becomes `older`, in place of an
/// earlier one, unless that is empty; at any moment `path` or, on file systems without hard links, `older` is whole.
/// The folder is flushed.
FileResult publishFile(const std::string& fresh, const std::string& path, const std::string& older);

} // namespace norvane
