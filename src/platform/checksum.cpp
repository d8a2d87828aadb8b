#include "platform/checksum.h"

#include <array>
#include <bit>
#include <cstring>

namespace norvane {

namespace {

/// Eight bytes are taken at a time, each through a table of its own.
constexpr std::size_t lanes = 8;
using CrcTables = std::array<std::array<std::uint64_t, 256>, lanes>;

constexpr CrcTables makeTables() {
    constexpr std::uint64_t polynomial = 0xC96C5795D7870F42; // 42F0E1EBA9EA3693, bits reflected
    CrcTables tables{};
    for (std::uint64_t byte = 0; byte < 256; ++byte) {
        std::uint64_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? polynomial : 0);
        tables[0][byte] = crc;
    }
    for (std::size_t lane = 1; lane < lanes; ++lane)
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint64_t before = tables[lane - 1][byte];
            tables[lane][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    return tables;
}

constexpr CrcTables tables = makeTables();

/// The first byte lowest.
std::uint64_t wordAt(const std::byte* bytes) {
    std::uint64_t word = 0;
    if constexpr (std::endian::native == std::endian::little)
        std::memcpy(&word, bytes, sizeof word);
    else
        for (std::size_t k = 0; k < sizeof word; ++k) word |= std::to_integer<std::uint64_t>(bytes[k]) << (8 * k);
    return word;
}

} // namespace

void Crc64::add(std::span<const std::byte> bytes) {
    std::uint64_t crc = state_;
    std::size_t k = 0;
    for (; k + lanes <= bytes.size(); k += lanes) {
        crc ^= wordAt(bytes.data() + k);
        std::uint64_t next = 0;
        for (std::size_t lane = 0; lane < lanes; ++lane) next ^= tables[lanes - 1 - lane][crc >> (8 * lane) & 0xFF];
        crc = next;
    }
    for (; k < bytes.size(); ++k) crc = (crc >> 8) ^ tables[0][(crc ^ std::to_integer<std::uint64_t>(bytes[k])) & 0xFF];
    state_ = crc;
}

std::string hexText(std::uint64_t value) {
    std::string text;
    for (int bit = 60; bit >= 0; bit -= 4) text += "0123456789abcdef"[value >> bit & 0xF];
    return text;
}

} // namespace norvane
