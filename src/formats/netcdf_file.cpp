#include "formats/netcdf_file.h"

#include <hdf5.h>
#include <netcdf.h>
#include <netcdf_mem.h>

#include <utility>

namespace norvane {

namespace {

template <class Value>
constexpr nc_type typeOf();

template <>
constexpr nc_type typeOf<float>() {
    return NC_FLOAT;
}

template <>
constexpr nc_type typeOf<double>() {
    return NC_DOUBLE;
}

template <>
constexpr nc_type typeOf<std::int8_t>() {
    return NC_BYTE;
}

template <>
constexpr nc_type typeOf<std::int16_t>() {
    return NC_SHORT;
}

template <>
constexpr nc_type typeOf<std::int32_t>() {
    return NC_INT;
}

template <>
constexpr nc_type typeOf<std::uint64_t>() {
    return NC_UINT64;
}

using Lock = std::lock_guard<std::recursive_mutex>;

constexpr std::size_t longestText = std::size_t{1} << 30; // of an attribute of a file that others may have written

/// HDF5 prints its faults on each thread that has not asked it to be silent. And at the end of the program it closes
/// what is open, where it ends the process by a fault if a file could not be closed for want of room: all files of ours
/// are closed by then.
void silenceThread() {
    static const bool leavesEnd = H5dont_atexit() >= 0;
    (void)leavesEnd;
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

} // namespace

std::recursive_mutex& netcdfMutex() {
    static std::recursive_mutex mutex;
    return mutex;
}

NetcdfFile NetcdfFile::created(int status, int number) {
    NetcdfFile file;
    int before = 0;
    if (file.isDone(status, "create")) {
        file.file_ = number;
        file.isDone(nc_set_fill(number, NC_NOFILL, &before), "create");
    }
    return file;
}

NetcdfFile NetcdfFile::create(const std::string& path) {
    const Lock lock(netcdfMutex());
    silenceThread();
    int number = -1;
    const int status = nc_create(path.c_str(), NC_NETCDF4 | NC_CLOBBER, &number);
    return created(status, number);
}

NetcdfFile NetcdfFile::createInMemory(std::size_t bytes) {
    const Lock lock(netcdfMutex());
    silenceThread();
    int number = -1;
    const int status = nc_create_mem("memory", NC_NETCDF4, bytes, &number);
    return created(status, number);
}

NetcdfFile NetcdfFile::openToRead(const std::string& path) {
    const Lock lock(netcdfMutex());
    silenceThread();
    NetcdfFile file;
    file.isDone(nc_open(path.c_str(), NC_NOWRITE, &file.file_), "open");
    return file;
}

NetcdfFile NetcdfFile::openToAppend(const std::string& path) {
    const Lock lock(netcdfMutex());
    silenceThread();
    NetcdfFile file;
    file.isDone(nc_open(path.c_str(), NC_WRITE, &file.file_), "open");
    return file;
}

NetcdfFile::NetcdfFile(NetcdfFile&& other) noexcept
    : file_(std::exchange(other.file_, -1)), fault_(std::move(other.fault_)) {}

NetcdfFile& NetcdfFile::operator=(NetcdfFile&& other) noexcept {
    std::swap(file_, other.file_);
    std::swap(fault_, other.fault_);
    return *this;
}

NetcdfFile::~NetcdfFile() {
    const Lock lock(netcdfMutex());
    if (file_ >= 0) nc_close(file_);
}

void NetcdfFile::fail(const std::string& reason) {
    if (fault_.empty()) fault_ = reason;
}

bool NetcdfFile::isDone(int status, const char* what) {
    if (status == NC_NOERR) return true;
    fail(std::string(what) + ": " + nc_strerror(status));
    return false;
}

int NetcdfFile::addDimension(const std::string& name, std::size_t length) {
    const Lock lock(netcdfMutex());
    int dimension = -1;
    if (ok())
        isDone(nc_def_dim(file_, name.c_str(), length == 0 ? NC_UNLIMITED : length, &dimension),
               ("dimension " + name).c_str());
    return dimension;
}

int NetcdfFile::dimension(const std::string& name) {
    const Lock lock(netcdfMutex());
    int dimension = -1;
    if (ok()) isDone(nc_inq_dimid(file_, name.c_str(), &dimension), ("dimension " + name).c_str());
    return dimension;
}

std::size_t NetcdfFile::length(int dimension) {
    const Lock lock(netcdfMutex());
    std::size_t length = 0;
    if (ok()) isDone(nc_inq_dimlen(file_, dimension, &length), "dimension");
    return length;
}

template <class Value>
int NetcdfFile::addVariable(const std::string& name, const VariableLayout& layout) {
    const Lock lock(netcdfMutex());
    int variable = -1;
    const std::string what = "variable " + name;
    if (!ok()) return variable;
    const int rank = static_cast<int>(layout.dimensions.size());
    if (!isDone(nc_def_var(file_, name.c_str(), typeOf<Value>(), rank, layout.dimensions.data(), &variable),
                what.c_str()))
        return variable;
    if (!layout.chunks.empty())
        isDone(nc_def_var_chunking(file_, variable, NC_CHUNKED, layout.chunks.data()), what.c_str());
    if (layout.compression > 0) isDone(nc_def_var_deflate(file_, variable, 1, 1, layout.compression), what.c_str());
    return variable;
}

int NetcdfFile::variable(const std::string& name) {
    const Lock lock(netcdfMutex());
    int variable = -1;
    if (ok()) isDone(nc_inq_varid(file_, name.c_str(), &variable), ("variable " + name).c_str());
    return variable;
}

bool NetcdfFile::hasVariable(const std::string& name) const {
    const Lock lock(netcdfMutex());
    int variable = -1;
    return ok() && nc_inq_varid(file_, name.c_str(), &variable) == NC_NOERR;
}

void NetcdfFile::setText(int variable, const std::string& name, const std::string& text) {
    const Lock lock(netcdfMutex());
    if (ok()) isDone(nc_put_att_text(file_, variable, name.c_str(), text.size(), text.data()), name.c_str());
}

void NetcdfFile::setNumber(int variable, const std::string& name, double value) {
    const Lock lock(netcdfMutex());
    if (ok()) isDone(nc_put_att_double(file_, variable, name.c_str(), NC_DOUBLE, 1, &value), name.c_str());
}

void NetcdfFile::setNumber(int variable, const std::string& name, float value) {
    const Lock lock(netcdfMutex());
    if (ok()) isDone(nc_put_att_float(file_, variable, name.c_str(), NC_FLOAT, 1, &value), name.c_str());
}

void NetcdfFile::setNumber(int variable, const std::string& name, std::int32_t value) {
    const Lock lock(netcdfMutex());
    const int number = value;
    if (ok()) isDone(nc_put_att_int(file_, variable, name.c_str(), NC_INT, 1, &number), name.c_str());
}

std::string NetcdfFile::text(int variable, const std::string& name) {
    const Lock lock(netcdfMutex());
    nc_type type = NC_NAT;
    std::size_t length = 0;
    if (!ok() || !isDone(nc_inq_att(file_, variable, name.c_str(), &type, &length), name.c_str())) return {};
    if (type != NC_CHAR || length > longestText) {
        fail(name + ": it is no text");
        return {};
    }
    std::string text(length, '\0');
    isDone(nc_get_att_text(file_, variable, name.c_str(), text.data()), name.c_str());
    return text;
}

double NetcdfFile::number(int variable, const std::string& name) {
    const Lock lock(netcdfMutex());
    nc_type type = NC_NAT;
    std::size_t length = 0;
    double value = 0;
    if (!ok() || !isDone(nc_inq_att(file_, variable, name.c_str(), &type, &length), name.c_str())) return value;
    if (type == NC_CHAR || type == NC_STRING || length != 1)
        fail(name + ": it is no number");
    else
        isDone(nc_get_att_double(file_, variable, name.c_str(), &value), name.c_str());
    return value;
}

bool NetcdfFile::hasAttribute(int variable, const std::string& name) const {
    const Lock lock(netcdfMutex());
    int number = 0;
    return ok() && nc_inq_attid(file_, variable, name.c_str(), &number) == NC_NOERR;
}

std::vector<std::size_t> NetcdfFile::shape(int variable) {
    const Lock lock(netcdfMutex());
    int rank = 0;
    if (!ok() || !isDone(nc_inq_varndims(file_, variable, &rank), "variable")) return {};
    std::vector<int> dimensions(static_cast<std::size_t>(rank));
    isDone(nc_inq_vardimid(file_, variable, dimensions.data()), "variable");
    std::vector<std::size_t> lengths;
    lengths.reserve(dimensions.size());
    for (const int each : dimensions) lengths.push_back(length(each));
    return lengths;
}

template <class Value>
void NetcdfFile::write(int variable,
                       const std::vector<std::size_t>& start,
                       const std::vector<std::size_t>& count,
                       const Value* values) {
    const Lock lock(netcdfMutex());
    if (ok()) isDone(nc_put_vara(file_, variable, start.data(), count.data(), values), "write");
}

template <class Value>
void NetcdfFile::read(int variable,
                      const std::vector<std::size_t>& start,
                      const std::vector<std::size_t>& count,
                      Value* values) {
    const Lock lock(netcdfMutex());
    nc_type type = NC_NAT;
    if (!ok() || !isDone(nc_inq_vartype(file_, variable, &type), "read")) return;
    if (type != typeOf<Value>())
        fail("a variable has another type of numbers");
    else
        isDone(nc_get_vara(file_, variable, start.data(), count.data(), values), "read");
}

bool NetcdfFile::close() {
    const Lock lock(netcdfMutex());
    const int file = std::exchange(file_, -1);
    if (file >= 0) isDone(nc_close(file), "close");
    return ok();
}

FileImage NetcdfFile::closeToMemory() {
    const Lock lock(netcdfMutex());
    FileImage image;
    NC_memio memory{};
    const int file = std::exchange(file_, -1);
    if (file < 0 || !isDone(nc_close_memio(file, &memory), "close")) return image;
    image.bytes.reset(static_cast<char*>(memory.memory));
    if (ok()) image.count = memory.size;
    return image;
}

// NOLINTBEGIN(bugprone-macro-parentheses): the argument is a type
#define NORVANE_INSTANTIATE(Value)                                                                                     \
    template int NetcdfFile::addVariable<Value>(const std::string&, const VariableLayout&);                            \
    template void NetcdfFile::write<Value>(int, const std::vector<std::size_t>&, const std::vector<std::size_t>&,      \
                                           const Value*);                                                              \
    template void NetcdfFile::read<Value>(int, const std::vector<std::size_t>&, const std::vector<std::size_t>&, Value*)
// NOLINTEND(bugprone-macro-parentheses)
NORVANE_INSTANTIATE(float);
NORVANE_INSTANTIATE(double);
NORVANE_INSTANTIATE(std::int8_t);
NORVANE_INSTANTIATE(std::int16_t);
NORVANE_INSTANTIATE(std::int32_t);
NORVANE_INSTANTIATE(std::uint64_t);
#undef NORVANE_INSTANTIATE

} // namespace norvane
