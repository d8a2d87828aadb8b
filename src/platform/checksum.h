#pragma once
// A checksum that finds accidents, fast enough for fields.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace norvane {

/// CRC-64 with the polynomial of ECMA-182, bits reflected, start and end inverted ("CRC-64/XZ"). Takes a content in any
/// number of pieces.
class Crc64 {
public:
    void add(std::span<const std::byte> bytes);

    void add(std::string_view text) { add(std::as_bytes(std::span(text))); }

    std::uint64_t value() const { return ~state_; }

private:
    std::uint64_t state_ = ~std::uint64_t{0};
};

/// 16 small hexadecimal digits.
std::string hexText(std::uint64_t value);

} // namespace norvane
