#include "platform/digest.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace norvane {

namespace {

/// The first 32 bits of the fractions of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> roundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

/// The 64 words of a block that its rounds add.
std::array<std::uint32_t, 64> scheduleOf(const unsigned char* block) {
    std::array<std::uint32_t, 64> words{};
    for (std::size_t k = 0; k < 16; ++k)
        for (std::size_t byte = 0; byte < 4; ++byte) words[k] = words[k] << 8 | block[4 * k + byte];
    for (std::size_t k = 16; k < words.size(); ++k) {
        const std::uint32_t a = words[k - 15];
        const std::uint32_t b = words[k - 2];
        words[k] = words[k - 16] + words[k - 7] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3)
                   + (std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10);
    }
    return words;
}

} // namespace

void Sha256::addBlock(const unsigned char* block) {
    const std::array<std::uint32_t, 64> words = scheduleOf(block);
    auto [a, b, c, d, e, f, g, h] = state_;
    for (std::size_t k = 0; k < words.size(); ++k) {
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g))
                                    + roundConstants[k] + words[k];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> added{a, b, c, d, e, f, g, h};
    for (std::size_t k = 0; k < added.size(); ++k) state_[k] += added[k];
}

void Sha256::add(std::string_view bytes) { add(bytes.data(), bytes.size()); }

void Sha256::add(const void* bytes, std::size_t count) {
    const auto* next = static_cast<const unsigned char*>(bytes);
    count_ += count;
    while (count > 0) {
        if (restCount_ == 0 && count >= blockBytes) {
            addBlock(next);
            next += blockBytes;
            count -= blockBytes;
            continue;
        }
        const std::size_t taken = std::min(count, blockBytes - restCount_);
        std::memcpy(rest_.data() + restCount_, next, taken);
        next += taken;
        count -= taken;
        restCount_ += taken;
        if (restCount_ < blockBytes) continue;
        addBlock(rest_.data());
        restCount_ = 0;
    }
}

std::string Sha256::hex() {
    const std::uint64_t bits = count_ * 8;
    add("\x80");
    constexpr std::size_t lengthAt = blockBytes - sizeof bits;
    while (restCount_ != lengthAt) add(std::string_view("\0", 1));
    unsigned char length[sizeof bits];
    for (std::size_t k = 0; k < sizeof bits; ++k) length[k] = static_cast<unsigned char>(bits >> (56 - 8 * k));
    add(length, sizeof length);
    std::string text;
    for (const std::uint32_t word : state_)
        for (int shift = 28; shift >= 0; shift -= 4) text += "0123456789abcdef"[word >> shift & 15];
    return text;
}

std::string sha256(std::string_view text) {
    Sha256 digest;
    digest.add(text);
    return digest.hex();
}

} // namespace norvane
