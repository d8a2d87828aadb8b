#include "platform/replacement.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace norvane {

namespace {

namespace fs = std::filesystem;

/// Takes away what a process that was killed has left: while one lives it holds the lock of its file.
void removeLeft(const std::string& beside) {
    FileResult result;
    std::error_code unknown;
    if (fs::is_symlink(beside, unknown)) return; // ours are none
    const File file = openFile(beside, Access::update, result);
    if (file && lockAtOnce(file.get())) removeFile(beside);
}

bool takesNoNewFile(int error) { return error == EACCES || error == EPERM || error == EROFS; }

} // namespace

Replacement::~Replacement() {
    file_.reset();
    if (!beside_.empty()) removeFile(beside_);
}

void Replacement::openBeside() {
    for (int number = 0; !file_ && number < 100; ++number) {
        beside_ = target_ + ".part" + std::to_string(number);
        file_ = createFile(beside_, result_);
        if (file_) return;
        if (result_.error == EEXIST) removeLeft(beside_);
        beside_.clear(); // not ours
        if (result_.error != EEXIST) return;
    }
}

void Replacement::open() {
    opened_ = true;
    target_ = outputTarget(path_, result_);
    if (!result_) return;
    std::error_code failed;
    const fs::file_status status = fs::status(target_, failed);
    if (!fs::exists(status) || fs::is_regular_file(status)) openBeside();
    if (file_ && fs::exists(status)) fs::permissions(beside_, status.permissions(), failed);
    if (!file_ && (result_ || takesNoNewFile(result_.error))) file_ = openFile(path_, Access::replace, result_);
}

FileResult Replacement::add(std::string_view piece) {
    if (!opened_) open();
    if (!result_) return result_;
    errno = 0;
    if (!writeAll(file_.get(), piece)) result_ = failure(errno);
    return result_;
}

FileResult Replacement::finish() {
    add({});
    errno = 0;
    if (file_ && !closeFile(std::move(file_)) && result_) result_ = failure(errno);
    if (!result_ || beside_.empty()) return result_;
    result_ = renameFile(beside_, target_);
    if (result_) beside_.clear();
    return result_;
}

} // namespace norvane
