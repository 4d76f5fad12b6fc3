#include "helpers/Sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace sb {
namespace {

std::string EveryByteThrice() {
    std::string bytes;
    for (int i = 0; i < 3 * 256; ++i) bytes.push_back(static_cast<char>(i));
    return bytes;
}

// Published vectors (of 56 bytes: one too many for the padding to share its
// block), 55 bytes (just few enough), and every byte value over 12 blocks.
const struct {
    std::string message;
    const char* digest;
} kVectors[] = {
    {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {std::string(55, 'a'), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
    {EveryByteThrice(), "f3a25aa93aa2fbba28d79260535bbd6a5eb0fc1c24a8b0f04e12b484c1dfe363"},
};

// Each message also fed in pieces that fill the blocks bit by bit and straddle them.
TEST(Sha256, StandardVectors) {
    for (const auto& v : kVectors) {
        EXPECT_EQ(Sha256Hex(v.message), v.digest) << v.message.size() << " bytes";
        Sha256 whole, pieces;
        whole.Add(v.message);
        for (size_t at = 0; at < v.message.size(); at += 7) pieces.Add(std::string_view(v.message).substr(at, 7));
        EXPECT_EQ(pieces.Finish(), whole.Finish()) << v.message.size() << " bytes in pieces";
    }
}

}  // namespace
}  // namespace sb
