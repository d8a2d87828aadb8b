#pragma once

#include "platform/open_file.h"

#include <string>
#include <string_view>

namespace norvane {

/// New content for a file, piece by piece in a file beside it that takes its name when it is whole: until then the name
/// stands for the old content. A link stays a link, and nothing that others have made beside it is touched. A device,
/// and a file in a folder that takes no new ones, are written in place.
class Replacement {
public:
    explicit Replacement(std::string path) : path_(std::move(path)) {}

    /// Without `finish` nothing has happened.
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// After a fault nothing more is written, and each call gives that fault.
    FileResult add(std::string_view piece);
    FileResult finish();

private:
    void open();
    void openBeside();

    std::string path_;
    std::string target_; ///< that a link leads to
    std::string beside_; ///< empty: written in place
    File file_;
    FileResult result_;
    bool opened_ = false;
};

} // namespace norvane
