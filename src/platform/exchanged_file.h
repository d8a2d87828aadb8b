#pragma once
// A file that nobody sees change: a new version takes its name, and the version before goes on under another one.

#include "platform/files.h"

#include <cstdint>
#include <string>

namespace norvane {

/// Flushes the file `fresh`, gives it the name `path` in the same folder, over the file of that name, and flushes the
/// folder: at any moment, after a crash too, `path` is the old file or the new one. The old file becomes `older`, over
/// a file of that name, where the file system lets a file have two names; `kept` says so. At a fault `path` is as it
/// was.
FileResult exchangeFile(const std::string& fresh, const std::string& path, const std::string& older, bool& kept);

/// Creates an empty file under a name of ours, in place of what is there: a file of a process that was killed, or a
/// link that somebody else has laid there.
FileResult makeFresh(const std::string& path);

/// Takes room on the disc for so many bytes more at the end of a file, whose length stays: writes that come then do not
/// meet a full disc. Room that is not used goes back when the file is cut to its length. Where the file system can't do
/// that it is asked for its free room.
FileResult reserveRoom(const std::string& path, std::uint64_t bytes);

/// The file that `path` leads to: a link stays, and its file is exchanged. `result` is a failure where the link must
/// not be followed.
std::string exchangeTarget(const std::string& path, FileResult& result);

} // namespace norvane
