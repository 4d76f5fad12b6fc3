#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "link/SerialPort.h"
#include "link/StatusText.h"
#include "update/XmodemBytes.h"

// The sending half of XMODEM with 1024-byte blocks, towards the module's boot
// loader on a port that is already open. The receiver picks CRC-16 ("C") or
// the 8-bit checksum (NAK) at the handshake.
//
// Like the terminal, Xmodem keeps its state between calls: the bound port,
// the bound status text, the progress callback and the receive buffer, which
// every end of a transfer leaves empty. XmodemInit binds them anew before
// each transfer. A failing port operation is not caught here: it leaves the
// transfer at once, without CAN or EOT, as the PortError.
namespace sb {

// STX, number, complement, data, two CRC bytes; a checksum block is one shorter.
inline constexpr int kXmodemBlockBuffer = 1030;

// The results of XmodemTransmit besides 1024 times the acknowledged blocks.
inline constexpr int32_t kXmodemCancelled = -1;    // CAN CAN from the receiver, or no handshake in 16 tries
inline constexpr int32_t kXmodemBlockFailed = -4;  // a block without ACK in 25 sends
inline constexpr int32_t kXmodemEotFailed = -5;    // the EOT without ACK in 10 sends

// How far a transfer has come, for progress bars: told when the blocks begin
// and at each acknowledged block. Bytes are the file's bytes acknowledged so
// far; they reach Total with the last block.
struct XmodemProgress {
    int32_t Blocks = 0;
    int32_t Bytes = 0;
    int32_t Total = 0;
};
using XmodemProgressHook = std::function<void(const XmodemProgress&)>;

// Binds port and status (and the progress hook, which may be empty) and
// empties the input.
void XmodemInit(SerialPort& port, StatusText& status, XmodemProgressHook progress = {});

// Sends size bytes of data from index 0. Greater than 0: every block and the
// EOT were acknowledged, and the value is 1024 times the blocks; else -1, -4
// or -5.
int32_t XmodemTransmit(const std::string& data, int32_t size);

// The blocks and the EOT in the mode the handshake chose (1 CRC-16, 0 checksum).
int32_t XmodemSendBlocks(const std::string& data, int32_t size, int16_t crcMode);

// CRC-16/XMODEM of count bytes from bytes[start]: polynomial 0x1021, start 0,
// most significant bit first. A count of 0 or less gives 0.
int32_t XmodemCrc16(const std::string& bytes, int16_t start, int16_t count);

// Bytes 0 to count - 1 of bytes in one Output.
void XmodemPutBytes(const std::string& bytes, int32_t count);
void XmodemPutByte(uint8_t byte);

// The next byte within limitMs, or -1. The limit is kept in polls of 10 ms,
// but a poll ends as soon as input arrives, so the answer is taken at once.
int16_t XmodemGetByte(int32_t limitMs);

// One read of the input thrown away, and the receive buffer emptied.
void XmodemFlushInput();

void XmodemFillBytes(std::string& bytes, int32_t start, uint8_t value, int32_t count);
void XmodemCopyBytes(std::string& destination, int16_t destinationIndex, const std::string& source, int32_t sourceIndex,
                     int32_t count);

}  // namespace sb
