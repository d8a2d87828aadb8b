#pragma once
// SHA-256 (FIPS 180-4): tells whether two contents are the same.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

/// Takes a content in any number of pieces.
class Sha256 {
public:
    void add(std::string_view bytes);
    void add(const void* bytes, std::size_t count);

    /// The digest of all that was added, as 64 small hexadecimal digits. Nothing may be added afterwards.
    std::string hex();

private:
    static constexpr std::size_t blockBytes = 64;

    void addBlock(const unsigned char* block);

    std::array<std::uint32_t, 8> state_{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<unsigned char, blockBytes> rest_{}; ///< what does not fill a block yet
    std::size_t restCount_ = 0;
    std::uint64_t count_ = 0; ///< bytes in all
};

/// Of one text.
std::string sha256(std::string_view text);

} // namespace norvane
