#include "helpers/Sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace sb {
namespace {

struct Vector {
    std::string message;
    const char* digest;
};

std::string Bytes256Thrice() {
    std::string bytes;
    for (int round = 0; round < 3; ++round)
        for (int value = 0; value < 256; ++value) bytes.push_back(static_cast<char>(value));
    return bytes;
}

// The published vectors, the lengths around the padding's block border, and
// every byte value.
const Vector kVectors[] = {
    {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu",
     "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
    {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    {std::string(55, 'a'), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
    {std::string(56, 'a'), "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
    {std::string(64, 'a'), "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"},
    {Bytes256Thrice(), "f3a25aa93aa2fbba28d79260535bbd6a5eb0fc1c24a8b0f04e12b484c1dfe363"},
};

TEST(Sha256, StandardVectors) {
    for (const Vector& v : kVectors) EXPECT_EQ(Sha256Hex(v.message), v.digest) << v.message.size() << " bytes";
}

TEST(Sha256, PiecesOfAnySizeGiveTheDigestOfTheWhole) {
    const std::string& message = kVectors[8].message;
    Sha256 whole;
    whole.Add(message);
    const Sha256::Digest expected = whole.Finish();
    for (const size_t piece : {1u, 7u, 63u, 64u, 65u, 200u}) {
        Sha256 hash;
        for (size_t at = 0; at < message.size(); at += piece) hash.Add(std::string_view(message).substr(at, piece));
        EXPECT_EQ(hash.Finish(), expected) << "pieces of " << piece;
    }
}

}  // namespace
}  // namespace sb
