#include "platform/safe_file.h"

#include "platform/open_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <thread>

namespace norvane {

namespace {

constexpr char mark = '#';
constexpr std::size_t blockBytes = std::size_t{1} << 17; // stays in the cache while it is taken

/// FNV-1a, eight bytes at a time where there are so many: it has to distinguish a whole copy from a torn one, quickly.
struct Checksum {
    std::uint64_t sum = 1469598103934665603u;

    void add(std::string_view bytes) {
        std::array<std::uint64_t, 4> lanes{sum, sum + 1, sum + 2, sum + 3};
        std::size_t at = 0;
        for (; at + 32 <= bytes.size(); at += 32)
            for (std::size_t k = 0; k < 4; ++k) lanes[k] = (lanes[k] ^ word(bytes, at + 8 * k)) * 1099511628211u;
        sum = 0;
        for (const std::uint64_t lane : lanes) sum = (sum ^ lane ^ lane >> 32) * 1099511628211u;
        for (; at < bytes.size(); ++at) sum = (sum ^ static_cast<unsigned char>(bytes[at])) * 1099511628211u;
    }

private:
    static std::uint64_t word(std::string_view bytes, std::size_t at) {
        std::uint64_t value = 0;
        for (std::size_t k = 0; k < 8; ++k) value |= std::uint64_t{static_cast<unsigned char>(bytes[at + k])} << 8 * k;
        return value;
    }
};

/// Where a copy lies. Its text is the last line of a file that holds a copy.
struct Copy {
    std::int64_t begin = 0;
    std::int64_t length = 0;
    std::uint64_t sum = 0;

    static constexpr std::size_t textLength = 80;

    std::string text() const {
        char line[textLength + 1];
        std::snprintf(line, sizeof line, "\r\n#copy %20" PRId64 " %20" PRId64 " %016" PRIx64 "%12s\r\n", begin, length,
                      sum, "");
        return {line, textLength};
    }
};

/// In blocks of the same size, so that a reader can compute it piece by piece.
std::uint64_t checksumOf(std::string_view content) {
    Checksum checksum;
    for (; !content.empty(); content.remove_prefix(std::min(blockBytes, content.size())))
        checksum.add(content.substr(0, blockBytes));
    return checksum.sum;
}

/// Calls `take` for the bytes [begin .. begin + length - 1] until it gives false. Gives false at a fault, with errno.
bool readRange(std::FILE* file,
               std::int64_t begin,
               std::int64_t length,
               const std::function<bool(std::string_view piece)>& take) {
    if (!seekTo(file, begin)) return false;
    std::string piece(blockBytes, '\0');
    while (length > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(length, blockBytes));
        std::size_t got = 0;
        if (!readAll(file, piece.data(), wanted, got)) return false;
        if (got == 0 || !take(std::string_view(piece).substr(0, got))) return true;
        length -= static_cast<std::int64_t>(got);
    }
    return true;
}

char firstCharacter(std::FILE* file) {
    char first = 0;
    std::size_t got = 0;
    return seekTo(file, 0) && readAll(file, &first, 1, got) && got == 1 ? first : '\0';
}

/// The copy that the last line of a file names, where it is whole.
std::optional<Copy> findCopy(std::FILE* file) {
    const std::int64_t length = lengthOf(file);
    const std::int64_t lineBegin = length - static_cast<std::int64_t>(Copy::textLength);
    char line[Copy::textLength + 1] = {};
    std::size_t got = 0;
    if (lineBegin < 0 || !seekTo(file, lineBegin) || !readAll(file, line, Copy::textLength, got)) return std::nullopt;
    Copy copy;
    // NOLINTNEXTLINE(cert-err34-c): a number out of range gives another text than the one that was read
    if (std::sscanf(line, " #copy %" SCNd64 " %" SCNd64 " %" SCNx64, &copy.begin, &copy.length, &copy.sum) != 3
        || copy.text() != std::string_view(line, Copy::textLength))
        return std::nullopt;
    if (copy.begin < 1 || copy.length < 1 || copy.begin + copy.length != lineBegin) return std::nullopt;
    Checksum checksum;
    const bool read = readRange(file, copy.begin, copy.length, [&](std::string_view piece) {
        checksum.add(piece);
        return true;
    });
    return read && checksum.sum == copy.sum ? std::optional(copy) : std::nullopt;
}

bool writeAt(std::FILE* file, std::int64_t position, std::string_view content) {
    return seekTo(file, position) && writeAll(file, content);
}

bool writeBlanks(std::FILE* file, std::int64_t count) {
    const std::string blanks(static_cast<std::size_t>(std::min<std::int64_t>(count, blockBytes)), ' ');
    for (; count > 0; count -= static_cast<std::int64_t>(blanks.size())) {
        const auto length = static_cast<std::size_t>(std::min<std::int64_t>(count, blockBytes));
        if (!writeAll(file, std::string_view(blanks).substr(0, length))) return false;
    }
    return true;
}

OverwriteResult failed(int number, FileHolds holds) { return {failure(number), holds}; }

/// Steps 3 to 5: the front is marked, and a copy of `content` lies after it.
bool finishFront(std::FILE* file, std::string_view content) {
    return writeAt(file, 1, content.substr(1)) && flushToDisc(file) && writeAt(file, 0, content.substr(0, 1))
           && flushToDisc(file) && cutTo(file, static_cast<std::int64_t>(content.size())) && flushToDisc(file);
}

/// Brings the copy of an overwrite that was killed to the front. Without a whole copy there is nothing to bring.
bool finishKilled(std::FILE* file) {
    const std::optional<Copy> copy = findCopy(file);
    if (!copy) return true;
    std::string content;
    content.reserve(static_cast<std::size_t>(copy->length));
    return readRange(file, copy->begin, copy->length,
                     [&](std::string_view piece) {
                         content += piece;
                         return true;
                     })
           && finishFront(file, content);
}

/// Steps 1 and 2. At a fault the file is brought back to what it was.
OverwriteResult placeCopy(std::FILE* file, std::string_view content, std::int64_t oldLength) {
    const Copy copy{std::max(oldLength, static_cast<std::int64_t>(content.size())),
                    static_cast<std::int64_t>(content.size()), checksumOf(content)};
    const std::int64_t end = copy.begin + copy.length + static_cast<std::int64_t>(Copy::textLength);
    if (end > fileSizeLimit()) return failed(EFBIG, FileHolds::oldContent);
    const char first = firstCharacter(file);
    errno = 0;
    const bool placed = seekTo(file, oldLength) && writeBlanks(file, copy.begin - oldLength) && writeAll(file, content)
                        && writeAll(file, copy.text()) && flushToDisc(file);
    if (placed && writeAt(file, 0, std::string_view(&mark, 1)) && flushToDisc(file)) return {};
    const int number = errno;
    const bool isMarked = firstCharacter(file) == mark;
    const bool restored = !isMarked || writeAt(file, 0, std::string_view(&first, 1));
    if (restored) cutTo(file, oldLength);
    return failed(number, restored ? FileHolds::oldContent : FileHolds::newContent);
}

/// Nothing is lost if this fails: the mark keeps a reader from taking half of it.
OverwriteResult writeFirst(std::FILE* file, std::string_view content) {
    if (static_cast<std::int64_t>(content.size()) > fileSizeLimit()) return failed(EFBIG, FileHolds::oldContent);
    errno = 0;
    const bool written = writeAt(file, 0, std::string_view(&mark, 1)) && writeAll(file, content.substr(1))
                         && cutTo(file, static_cast<std::int64_t>(content.size())) && flushToDisc(file)
                         && writeAt(file, 0, content.substr(0, 1)) && flushToDisc(file);
    if (written) return {};
    const int number = errno;
    return failed(number, cutTo(file, 0) ? FileHolds::oldContent : FileHolds::neither);
}

OverwriteResult overwrite(std::FILE* file, std::string_view content) {
    if (!isRegular(file)) {
        errno = 0;
        return writeAll(file, content) ? OverwriteResult() : failed(errno, FileHolds::neither);
    }
    bool waited = false;
    lockFile(file, true, waited);
    errno = 0;
    if (firstCharacter(file) == mark && !finishKilled(file)) return failed(errno, FileHolds::oldContent);
    const std::optional<Copy> left = findCopy(file); // by a kill between the mark's end and the cut
    // Or its last line would stay the last one behind a shorter copy, and hide that.
    if (left && !cutTo(file, left->begin)) return failed(errno, FileHolds::oldContent);
    const std::int64_t oldLength = lengthOf(file);
    if (oldLength < 0) return failed(errno, FileHolds::oldContent);
    // What is marked still had no whole copy: there is no content to keep.
    if (oldLength == 0 || firstCharacter(file) == mark) return writeFirst(file, content);
    OverwriteResult placed = placeCopy(file, content, oldLength);
    if (!placed) return placed;
    errno = 0;
    return finishFront(file, content) ? OverwriteResult() : failed(errno, FileHolds::newContent);
}

/// One attempt. `steady`: nobody has written the file meanwhile.
FileResult readOnce(const std::string& path, const PieceReader& reader, bool& steady, bool& waited) {
    FileResult result;
    const File file = openFile(path, Access::read, result);
    if (!file) return result;
    lockFile(file.get(), false, waited);
    const FileStamp before = stampOf(path);
    const char first = firstCharacter(file.get());
    const std::optional<Copy> copy = first == mark ? findCopy(file.get()) : std::nullopt;
    const std::int64_t length = lengthOf(file.get());
    errno = 0;
    if (!readRange(file.get(), copy ? copy->begin : 0, copy ? copy->length : length, reader.take))
        result = failure(errno);
    steady = stampOf(path) == before && firstCharacter(file.get()) == first;
    return result;
}

} // namespace

OverwriteResult overwriteFile(const std::string& path, std::string_view content) try {
    FileResult opened;
    File file = openFile(path, Access::update, opened);
    if (!file && opened.error == ENOENT) file = openFile(path, Access::replace, opened);
    if (!file) return {opened, FileHolds::oldContent};
    OverwriteResult result = overwrite(file.get(), content);
    errno = 0;
    const bool closed = closeFile(std::move(file));
    if (result && !closed) result = failed(errno, FileHolds::newContent);
    return result;

} catch (const std::exception&) { // no memory to finish what was killed

    return failed(ENOMEM, FileHolds::oldContent);
}

FileResult readWholeFile(const std::string& path, const PieceReader& reader, bool& disturbed) try {
    using namespace std::chrono_literals;
    constexpr auto patience = 5s;
    const auto start = std::chrono::steady_clock::now();
    disturbed = false;
    do {
        reader.begin();
        bool steady = true;
        FileResult result = readOnce(path, reader, steady, disturbed);
        if (steady) return result;
        disturbed = true;
        std::this_thread::sleep_for(20ms);
    } while (std::chrono::steady_clock::now() - start < patience);
    return {EBUSY, "another process is writing it all the time"};

} catch (const std::exception&) { // no memory for a piece, or for what is made of it

    return failure(ENOMEM);
}

} // namespace norvane
