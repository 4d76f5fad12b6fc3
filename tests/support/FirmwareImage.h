#pragma once
#include <cstddef>
#include <random>
#include <string>

// Firmware files for the transfer tests, and what a receiver keeps of them.
namespace sb::test {

// size bytes of every value, the same for the same seed.
inline std::string RandomBytes(size_t size, unsigned seed) {
    std::mt19937 generator(seed);
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(generator() & 0xFF);
    return bytes;
}

// The file as the receiver keeps it: the data, one 0x1A, zeros to the end of
// that block; a file that ends on a block border is followed by a block of
// its own with the 0x1A.
inline std::string PaddedToWholeBlocks(const std::string& data) {
    std::string padded = data + '\x1A';
    padded.resize((data.size() / 1024 + 1) * 1024, '\0');
    return padded;
}

}  // namespace sb::test
