#pragma once
#include <cstdint>

// The bytes of XMODEM on the wire, for both ends of a transfer: the sender
// towards the boot loader and the virtual module's receiver.
namespace sb {

inline constexpr uint8_t kXmodemSOH = 0x01;  // a block of 128 bytes
inline constexpr uint8_t kXmodemSTX = 0x02;  // a block of 1024 bytes
inline constexpr uint8_t kXmodemEOT = 0x04;
inline constexpr uint8_t kXmodemACK = 0x06;
inline constexpr uint8_t kXmodemNAK = 0x15;
inline constexpr uint8_t kXmodemCAN = 0x18;
inline constexpr uint8_t kXmodemCRC = 'C';
inline constexpr uint8_t kXmodemCTRLZ = 0x1A;

inline constexpr int kXmodemBlockData = 1024;

}  // namespace sb
