#include "helpers/Sha256.h"

#include <algorithm>

namespace sb {
namespace {

constexpr std::array<uint32_t, 64> kRound = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
};

constexpr uint32_t Rotr(uint32_t x, int n) { return (x >> n) | (x << (32 - n)); }

}  // namespace

Sha256::Sha256()
    : state_{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19} {}

void Sha256::Compress(const uint8_t* block) {
    std::array<uint32_t, 64> w;
    for (int i = 0; i < 16; ++i)
        w[i] = uint32_t(block[4 * i]) << 24 | uint32_t(block[4 * i + 1]) << 16 | uint32_t(block[4 * i + 2]) << 8 |
               uint32_t(block[4 * i + 3]);
    for (int i = 16; i < 64; ++i) {
        const uint32_t s0 = Rotr(w[i - 15], 7) ^ Rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
        const uint32_t s1 = Rotr(w[i - 2], 17) ^ Rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
        w[i] = w[i - 16] + s0 + w[i - 7] + s1;
    }
    auto [a, b, c, d, e, f, g, h] = state_;
    for (int i = 0; i < 64; ++i) {
        const uint32_t t1 = h + (Rotr(e, 6) ^ Rotr(e, 11) ^ Rotr(e, 25)) + ((e & f) ^ (~e & g)) + kRound[i] + w[i];
        const uint32_t t2 = (Rotr(a, 2) ^ Rotr(a, 13) ^ Rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + t1;
        d = c;
        c = b;
        b = a;
        a = t1 + t2;
    }
    const std::array<uint32_t, 8> add{a, b, c, d, e, f, g, h};
    for (int i = 0; i < 8; ++i) state_[i] += add[i];
}

void Sha256::Add(std::string_view bytes) {
    totalLength_ += bytes.size();
    const auto* in = reinterpret_cast<const uint8_t*>(bytes.data());
    size_t left = bytes.size();
    if (pendingLength_ > 0) {
        const size_t take = std::min(left, pending_.size() - pendingLength_);
        std::copy_n(in, take, pending_.begin() + pendingLength_);
        pendingLength_ += take;
        in += take;
        left -= take;
        if (pendingLength_ < pending_.size()) return;
        Compress(pending_.data());
    }
    for (; left >= 64; in += 64, left -= 64) Compress(in);
    std::copy_n(in, left, pending_.begin());
    pendingLength_ = left;
}

Sha256::Digest Sha256::Finish() {
    const uint64_t bits = totalLength_ * 8;
    // A one bit, zeros up to 8 bytes short of a block border, the length.
    std::string tail(1, '\x80');
    tail.append((pendingLength_ < 56 ? 55 : 119) - pendingLength_, '\0');
    for (int i = 7; i >= 0; --i) tail.push_back(static_cast<char>(bits >> (8 * i)));
    Add(tail);
    Digest digest;
    for (int i = 0; i < 8; ++i)
        for (int j = 0; j < 4; ++j) digest[4 * i + j] = static_cast<uint8_t>(state_[i] >> (24 - 8 * j));
    return digest;
}

std::string Sha256Hex(std::string_view bytes) {
    Sha256 hash;
    hash.Add(bytes);
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : hash.Finish()) {
        text.push_back(kDigits[byte >> 4]);
        text.push_back(kDigits[byte & 0xF]);
    }
    return text;
}

}  // namespace sb
