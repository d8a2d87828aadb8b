#pragma once
// Numbers that tell whether bytes are the ones that they were.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace norvane {

/// CRC-64 with the polynomial of ECMA-182, bits reflected, start and end inverted ("CRC-64/XZ"): finds accidents, and
/// is fast enough for fields.
class Crc64 {
public:
    void add(std::span<const std::byte> bytes);

    void add(std::string_view text) { add(std::as_bytes(std::span(text))); }

    std::uint64_t value() const { return ~state_; }

private:
    std::uint64_t state_ = ~std::uint64_t{0};
};

/// SHA-256 (FIPS 180-4): a fingerprint of a text.
class Sha256 {
public:
    void add(std::string_view text);
    /// 64 hexadecimal digits. Nothing is added after that.
    std::string text();

private:
    void takeBlock(const std::uint8_t* block);

    std::array<std::uint32_t, 8> state_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, 64> block_{};
    std::size_t inBlock_ = 0;
    std::uint64_t bytes_ = 0;
};

/// 16 hexadecimal digits.
std::string hexText(std::uint64_t value);

} // namespace norvane
