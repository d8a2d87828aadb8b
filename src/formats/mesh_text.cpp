#include "formats/mesh_text.h"

#include <charconv>

namespace norvane {

namespace {

constexpr std::string_view head = "<?xml version=\"1.0\"?>\n<!-- Norvane: frames, see the netCDF file -->\n";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += static_cast<unsigned char>(c) < ' ' ? '?' : c; // XML has no control characters
        }
    }
    return result;
}

std::string numberText(double value) {
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

std::string joinedLengths(const std::vector<std::size_t>& lengths) {
    std::string text;
    for (const std::size_t length : lengths) text += (text.empty() ? "" : " ") + std::to_string(length);
    return text;
}

/// What all elements of a description share.
struct Mesh {
    const FrameLayout& layout;
    std::string file; ///< name of the data, escaped
    std::size_t frames;

    /// A whole data set.
    std::string item(const char* type, const std::vector<std::size_t>& lengths, const std::string& name) const {
        return "<DataItem Format=\"HDF\" " + std::string(type) + " Dimensions=\"" + joinedLengths(lengths) + "\">"
               + file + ":/" + name + "</DataItem>";
    }

    /// One frame of a field: behind the name of the data set the start, the step and the count along each of its
    /// dimensions, and its lengths. Readers of XDMF 3 alone know that; those of XDMF 2 have no other way that works for
    /// values of cells on a rectilinear mesh.
    std::string frameItem(const FrameField& field, std::size_t frame) const {
        std::vector<std::size_t> one = layout.shape;
        if (field.components > 1) one.push_back(field.components);
        std::string start = std::to_string(frame);
        std::string step = "1";
        for (std::size_t k = 0; k < one.size(); ++k) {
            start += " 0";
            step += " 1";
        }
        const std::string lengths = joinedLengths(one);
        return item(floatType, one,
                    field.name + "|" + start + ":" + step + ":1 " + lengths + ":" + std::to_string(frames) + " "
                        + lengths);
    }

    static constexpr const char* floatType = "NumberType=\"Float\" Precision=\"4\"";
    static constexpr const char* intType = "NumberType=\"Int\" Precision=\"4\"";
    static constexpr const char* shortType = "NumberType=\"Short\" Precision=\"2\"";
};

/// Three dimensions, those that the grid does not have flat.
std::string rectilinearMesh(const Mesh& mesh) {
    const std::size_t dimensions = mesh.layout.shape.size();
    std::string points;
    std::string edges;
    for (std::size_t dim = 3; dim >= 1; --dim) {
        const std::size_t count = dim > dimensions ? 1 : mesh.layout.shape[dimensions - dim] + 1;
        points += (dim < 3 ? " " : "") + std::to_string(count);
    }
    for (std::size_t dim = 1; dim <= 3; ++dim)
        edges += dim > dimensions
                     ? "<DataItem Format=\"XML\" NumberType=\"Float\" Precision=\"4\" Dimensions=\"1\">0</DataItem>"
                     : mesh.item(Mesh::floatType, {mesh.layout.shape[dimensions - dim] + 1},
                                 "edge_" + axisName(static_cast<int>(dim)));
    return "<Topology TopologyType=\"3DRectMesh\" Dimensions=\"" + points + "\"/>\n<Geometry GeometryType=\"VXVYVZ\">"
           + edges + "</Geometry>\n";
}

std::string boxMesh(const Mesh& mesh) {
    const std::size_t cells = mesh.layout.cells();
    const bool isFlat = mesh.layout.shape.size() == 2;
    const std::size_t corners = isFlat ? 4 : 8;
    return "<Topology TopologyType=\"" + std::string(isFlat ? "Quadrilateral" : "Hexahedron") + "\" NumberOfElements=\""
           + std::to_string(cells) + "\">" + mesh.item(Mesh::intType, {cells, corners}, "box_corners")
           + "</Topology>\n<Geometry GeometryType=\"XYZ\">"
           + mesh.item(Mesh::floatType, {cells * corners, 3}, "corner_position") + "</Geometry>\n";
}

std::string attribute(const std::string& name, bool isVector, const std::string& item) {
    return "<Attribute Name=\"" + name + "\" AttributeType=\"" + (isVector ? "Vector" : "Scalar")
           + "\" Center=\"Cell\">" + item + "</Attribute>\n";
}

} // namespace

std::string meshPathOf(const std::string& path) {
    const std::string_view ending = ".nc";
    const bool ends =
        path.size() > ending.size() && path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
    return (ends ? path.substr(0, path.size() - ending.size()) : path) + ".xdmf";
}

bool isMeshText(const std::string& beginning) { return beginning.compare(0, head.size(), head) == 0; }

std::string meshText(const FrameLayout& layout, const std::string& dataName, const FrameTimes& times) {
    const Mesh mesh{layout, escaped(dataName), times.steps.size()};
    const std::string shape = layout.isRectilinear ? rectilinearMesh(mesh) : boxMesh(mesh);
    const std::string still =
        attribute("cell", false, mesh.item(Mesh::intType, layout.shape, "cell"))
        + attribute("wall_velocity", false, mesh.item(Mesh::shortType, layout.shape, "wall_velocity"));
    std::string text(head);
    text += "<Xdmf Version=\"3.0\">\n<Domain>\n"
            "<Grid Name=\"frames\" GridType=\"Collection\" CollectionType=\"Temporal\">\n";
    for (std::size_t frame = 0; frame < mesh.frames; ++frame) {
        text += "<Grid Name=\"step " + std::to_string(times.steps[frame]) + "\">\n<Time Value=\""
                + numberText(times.times[frame]) + "\"/>\n" + shape;
        for (const FrameField& field : layout.fields)
            text += attribute(field.name, field.components > 1, mesh.frameItem(field, frame));
        text += still + "</Grid>\n";
    }
    return text + "</Grid>\n</Domain>\n</Xdmf>\n";
}

} // namespace norvane
