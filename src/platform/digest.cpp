#include "platform/digest.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace norvane {

namespace {

// --- CRC-64: eight bytes at a time, each through a table of its own
// ---------------------------------------------------

constexpr int lanes = 8;
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

constexpr CrcTables crcTables = makeTables();

/// Eight bytes, the first one lowest.
std::uint64_t wordAt(const std::byte* bytes) {
    std::uint64_t word = 0;
    if constexpr (std::endian::native == std::endian::little)
        std::memcpy(&word, bytes, sizeof word);
    else
        for (std::size_t k = 0; k < sizeof word; ++k) word |= std::to_integer<std::uint64_t>(bytes[k]) << (8 * k);
    return word;
}

// --- SHA-256
// ----------------------------------------------------------------------------------------------------------

constexpr std::array<std::uint32_t, 64> roundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

std::uint32_t sigma(std::uint32_t x, int a, int b, int c) {
    return std::rotr(x, a) ^ std::rotr(x, b) ^ std::rotr(x, c);
}

std::array<std::uint32_t, 64> scheduleOf(const std::uint8_t* block) {
    std::array<std::uint32_t, 64> w{};
    for (std::size_t k = 0; k < 16; ++k)
        w[k] = std::uint32_t{block[4 * k]} << 24 | std::uint32_t{block[4 * k + 1]} << 16
               | std::uint32_t{block[4 * k + 2]} << 8 | std::uint32_t{block[4 * k + 3]};
    for (std::size_t k = 16; k < 64; ++k) {
        const std::uint32_t a = std::rotr(w[k - 15], 7) ^ std::rotr(w[k - 15], 18) ^ (w[k - 15] >> 3);
        const std::uint32_t b = std::rotr(w[k - 2], 17) ^ std::rotr(w[k - 2], 19) ^ (w[k - 2] >> 10);
        w[k] = w[k - 16] + a + w[k - 7] + b;
    }
    return w;
}

std::string hexDigits(std::uint64_t value, int digits) {
    std::string text;
    for (int k = digits - 1; k >= 0; --k) text += "0123456789abcdef"[value >> (4 * k) & 0xF];
    return text;
}

} // namespace

void Crc64::add(std::span<const std::byte> bytes) {
    std::uint64_t crc = state_;
    std::size_t k = 0;
    for (; k + lanes <= bytes.size(); k += lanes) {
        crc ^= wordAt(bytes.data() + k);
        std::uint64_t next = 0;
        for (std::size_t lane = 0; lane < lanes; ++lane) next ^= crcTables[lanes - 1 - lane][crc >> (8 * lane) & 0xFF];
        crc = next;
    }
    for (; k < bytes.size(); ++k)
        crc = (crc >> 8) ^ crcTables[0][(crc ^ std::to_integer<std::uint64_t>(bytes[k])) & 0xFF];
    state_ = crc;
}

void Sha256::takeBlock(const std::uint8_t* block) {
    const std::array<std::uint32_t, 64> w = scheduleOf(block);
    auto [a, b, c, d, e, f, g, h] = state_;
    for (std::size_t k = 0; k < 64; ++k) {
        const std::uint32_t first = h + sigma(e, 6, 11, 25) + ((e & f) ^ (~e & g)) + roundConstants[k] + w[k];
        const std::uint32_t second = sigma(a, 2, 13, 22) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> mixed = {a, b, c, d, e, f, g, h};
    for (std::size_t k = 0; k < mixed.size(); ++k) state_[k] += mixed[k];
}

void Sha256::add(std::string_view text) {
    bytes_ += text.size();
    while (!text.empty()) {
        const std::size_t part = std::min(text.size(), block_.size() - inBlock_);
        std::copy_n(text.begin(), part, block_.begin() + static_cast<std::ptrdiff_t>(inBlock_));
        text.remove_prefix(part);
        inBlock_ += part;
        if (inBlock_ < block_.size()) break;
        takeBlock(block_.data());
        inBlock_ = 0;
    }
}

std::string Sha256::text() {
    const std::uint64_t bits = bytes_ * 8;
    const std::size_t zeros = (block_.size() + 55 - inBlock_) % block_.size(); // so that 8 bytes are left
    std::string padding(1 + zeros, '\0');
    padding[0] = '\x80';
    for (int k = 7; k >= 0; --k) padding += static_cast<char>(bits >> (8 * k) & 0xFF);
    add(padding);
    std::string digits;
    for (const std::uint32_t word : state_) digits += hexDigits(word, 8);
    return digits;
}

std::string hexText(std::uint64_t value) { return hexDigits(value, 16); }

} // namespace norvane
