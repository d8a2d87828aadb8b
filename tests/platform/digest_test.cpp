// SHA-256 gives the digests of the standard's examples, however the content comes in pieces.

#include "platform/digest.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

TEST(digest, isTheStandardsInAnyPieces) {
    EXPECT_EQ(sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    const std::string million(1000000, 'a');
    for (const std::size_t piece : {1000000U, 1U, 63U, 64U, 65U, 55U}) {
        Sha256 digest;
        for (std::size_t at = 0; at < million.size(); at += piece) digest.add(million.substr(at, piece));
        EXPECT_EQ(digest.hex(), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0") << piece;
    }
}

} // namespace
} // namespace norvane
