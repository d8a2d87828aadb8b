// Frames from file to file as they are compressed. netCDF has no call for that; its files are HDF5 files, whose library
// reads and writes the chunks of a data set as they lie.

#include "formats/frame_file.h"
#include "platform/exchanged_file.h"
#include "platform/files.h"

#include <hdf5.h>

#include <algorithm>

namespace norvane {

namespace {

/// Closes what HDF5 opened.
class Handle {
public:
    Handle(hid_t id, herr_t (*close)(hid_t)) : id_(id), close_(close) {}

    ~Handle() {
        if (id_ >= 0) close_(id_);
    }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    operator hid_t() const { return id_; }

    bool isOpen() const { return id_ >= 0; }

private:
    hid_t id_;
    herr_t (*close_)(hid_t);
};

struct Lengths {
    std::vector<hsize_t> set;
    std::vector<hsize_t> chunk;
};

/// Of a data set in chunks; empty where it is none.
Lengths lengthsOf(hid_t set) {
    const Handle space(H5Dget_space(set), H5Sclose);
    const Handle form(H5Dget_create_plist(set), H5Pclose);
    if (!space.isOpen() || !form.isOpen() || H5Pget_layout(form) != H5D_CHUNKED) return {};
    const int rank = H5Sget_simple_extent_ndims(space);
    if (rank < 1 || rank > H5S_MAX_RANK) return {};
    Lengths lengths{std::vector<hsize_t>(static_cast<std::size_t>(rank)),
                    std::vector<hsize_t>(static_cast<std::size_t>(rank))};
    const bool known = H5Sget_simple_extent_dims(space, lengths.set.data(), nullptr) == rank
                       && H5Pget_chunk(form, rank, lengths.chunk.data()) == rank;
    return known ? lengths : Lengths{};
}

/// To the next chunk of a frame; false after the last one.
bool advance(std::vector<hsize_t>& offset, const Lengths& lengths) {
    for (std::size_t k = offset.size(); k-- > 1;) {
        offset[k] += lengths.chunk[k];
        if (offset[k] < lengths.set[k]) return true;
        offset[k] = 0;
    }
    return false;
}

/// One frame of a field.
bool copyChunks(hid_t from, hid_t to, const Lengths& lengths, hsize_t frame, std::vector<char>& bytes) {
    hsize_t whole = sizeof(float);
    for (const hsize_t length : lengths.chunk) whole *= length;
    std::vector<hsize_t> offset(lengths.set.size());
    offset[0] = frame;
    do {
        hsize_t size = 0;
        std::uint32_t filters = 0;
        if (H5Dget_chunk_storage_size(from, offset.data(), &size) < 0) return false;
        if (size == 0 || size > 2 * whole + 4096) return false; // what can't be compressed grows by less
        bytes.resize(size);
        if (H5Dread_chunk(from, H5P_DEFAULT, offset.data(), &filters, bytes.data()) < 0) return false;
        if (H5Dwrite_chunk(to, H5P_DEFAULT, filters, offset.data(), bytes.size(), bytes.data()) < 0) return false;
    } while (advance(offset, lengths));
    return true;
}

bool copyField(hid_t fromFile, hid_t toFile, const std::string& name, std::size_t first, std::size_t end) {
    const Handle from(H5Dopen2(fromFile, name.c_str(), H5P_DEFAULT), H5Dclose);
    const Handle to(H5Dopen2(toFile, name.c_str(), H5P_DEFAULT), H5Dclose);
    if (!from.isOpen() || !to.isOpen()) return false;
    const Lengths lengths = lengthsOf(from);
    Lengths target = lengthsOf(to);
    if (lengths.set.empty() || lengths.set[0] < end || lengths.chunk != target.chunk) return false;
    target.set[0] = end;
    if (!std::equal(target.set.begin() + 1, target.set.end(), lengths.set.begin() + 1)) return false;
    if (H5Dset_extent(to, target.set.data()) < 0) return false;
    std::vector<char> bytes;
    for (hsize_t frame = first; frame < end; ++frame)
        if (!copyChunks(from, to, lengths, frame, bytes)) return false;
    return true;
}

bool copyFields(
    const std::string& from, const std::string& to, const FrameLayout& layout, std::size_t first, std::size_t end) {
    const std::lock_guard<std::recursive_mutex> lock(netcdfMutex());
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr); // of this thread: nothing of ours is printed by a library
    const Handle source(H5Fopen(from.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose);
    const hid_t target = H5Fopen(to.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    if (target < 0) return false;
    bool copied = source.isOpen();
    for (const FrameField& field : layout.fields) copied = copied && copyField(source, target, field.name, first, end);
    return H5Fclose(target) >= 0 && copied;
}

} // namespace

std::string copyFrames(const std::string& from,
                       const std::string& to,
                       const FrameLayout& layout,
                       std::size_t first,
                       const FrameTimes& times) {
    const std::size_t end = times.steps.size();
    if (first >= end) return {};
    const FileResult room = reserveRoom(to, std::min(layout.roomOfFrames(end - first), stampOf(from).size));
    if (!room) return room.reason;
    if (!copyFields(from, to, layout, first, end)) return "its frames can't be copied";
    NetcdfFile file = NetcdfFile::openToAppend(to);
    const std::size_t count = end - first;
    file.write(file.variable("time"), {first}, {count}, times.times.data() + first);
    file.write(file.variable("step"), {first}, {count}, times.steps.data() + first);
    file.close();
    return file.fault();
}

} // namespace norvane
