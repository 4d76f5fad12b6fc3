#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// SHA-256 (FIPS 180-4), for the fingerprint of a firmware file in the
// production log. Fed in pieces of any size; Finish ends it.
namespace sb {

class Sha256 {
public:
    using Digest = std::array<uint8_t, 32>;

    Sha256();
    void Add(std::string_view bytes);
    // The digest of everything added; the object is spent afterwards.
    Digest Finish();

private:
    void Compress(const uint8_t* block);

    std::array<uint32_t, 8> state_;
    std::array<uint8_t, 64> pending_{};
    size_t pendingLength_ = 0;
    uint64_t totalLength_ = 0;
};

// The digest as 64 lower-case hex digits, as sha256sum prints it.
std::string Sha256Hex(std::string_view bytes);

}  // namespace sb
