#pragma once
// A netCDF-4 file. The first fault stays: every later call does nothing, so that whoever writes a file asks once at
// the end. The library holds one thread at a time: each call waits for those of other threads.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// Whoever calls netCDF or HDF5 without NetcdfFile holds this meanwhile.
std::recursive_mutex& netcdfMutex();

/// How the values of a variable lie in the file.
struct VariableLayout {
    std::vector<int> dimensions;     ///< slowest first
    std::vector<std::size_t> chunks; ///< lengths, one for each dimension; none: as the library chooses
    int compression = 0;             ///< 0: none, to 9; with a shuffle of bytes
};

/// The bytes of a file.
struct FileImage {
    std::unique_ptr<char, void (*)(void*)> bytes{nullptr, std::free};
    std::size_t count = 0;

    std::string_view view() const { return {bytes.get(), count}; }
};

/// Closed when it goes, whose faults nobody hears of then.
class NetcdfFile {
public:
    /// Makes a new file, over an older one.
    static NetcdfFile create(const std::string& path);
    /// A new file of so many bytes, or some more, that is never on a disc: closeToMemory gives it. The library doesn't
    /// recover from a write that fails: files so large that a disc may fill up are better made here.
    static NetcdfFile createInMemory(std::size_t bytes);
    static NetcdfFile openToRead(const std::string& path);
    static NetcdfFile openToAppend(const std::string& path);

    NetcdfFile(NetcdfFile&& other) noexcept;
    NetcdfFile& operator=(NetcdfFile&& other) noexcept;
    ~NetcdfFile();

    /// In words; empty: none yet.
    const std::string& fault() const { return fault_; }

    /// Sets the fault, unless there is one.
    void fail(const std::string& reason);

    bool ok() const { return fault_.empty(); }

    /// `length` 0: unlimited.
    int addDimension(const std::string& name, std::size_t length);
    int dimension(const std::string& name);
    std::size_t length(int dimension);

    /// `Value` is float, double, std::int8_t, std::int16_t, std::int32_t or std::uint64_t, here and below.
    template <class Value>
    int addVariable(const std::string& name, const VariableLayout& layout);
    int variable(const std::string& name);
    bool hasVariable(const std::string& name) const;

    /// Of a variable, or of the file with `wholeFile`.
    void setText(int variable, const std::string& name, const std::string& text);
    void setNumber(int variable, const std::string& name, double value);
    void setNumber(int variable, const std::string& name, float value);
    void setNumber(int variable, const std::string& name, std::int32_t value);
    std::string text(int variable, const std::string& name);
    double number(int variable, const std::string& name);
    bool hasAttribute(int variable, const std::string& name) const;

    static constexpr int wholeFile = -1;

    /// A block of values: `start` and `count` have one entry for each dimension.
    template <class Value>
    void write(int variable,
               const std::vector<std::size_t>& start,
               const std::vector<std::size_t>& count,
               const Value* values);
    template <class Value>
    void
    read(int variable, const std::vector<std::size_t>& start, const std::vector<std::size_t>& count, Value* values);

    /// Lengths of the dimensions of a variable, slowest first.
    std::vector<std::size_t> shape(int variable);

    /// Writes what is pending and closes the file; true: all is written.
    bool close();

    /// Ends a file that was created in memory. Empty after a fault.
    FileImage closeToMemory();

private:
    NetcdfFile() = default;
    static NetcdfFile created(int status, int number);
    bool isDone(int status, const char* what);

    int file_ = -1; ///< -1: closed
    std::string fault_;
};

} // namespace norvane
