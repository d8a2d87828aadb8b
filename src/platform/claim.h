#pragma once
// Claims among the processes of one machine: who writes the files of a model, who works in a folder. They leave no file
// behind and end with their process, however it ends.

#include <string>

namespace norvane {

/// A claim on a name within a folder, held as long as this lives.
class Claim {
public:
    /// Holds nothing.
    Claim() = default;
    ~Claim();
    Claim(Claim&& other) noexcept;
    Claim& operator=(Claim&& other) noexcept;

    /// Asks for what only one process may have. Where another one has it, `holder` becomes its number (-1 where the
    /// system does not say), else 0. Systems without such claims grant all.
    static Claim alone(const std::string& folder, const std::string& name, int& holder);

    /// Joins those who share a name; `other` becomes the number of one that has been there before, else 0.
    static Claim shared(const std::string& folder, const std::string& name, int& other);

private:
    explicit Claim(int handle) : handle_(handle) {}

    int handle_ = -1;
};

} // namespace norvane
