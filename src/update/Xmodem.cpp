#include "update/Xmodem.h"

#include <algorithm>
#include <array>
#include <limits>

#include "helpers/Waiting.h"

namespace sb {
namespace {

// Bound by XmodemInit and left bound afterwards.
SerialPort* boundPort = nullptr;
StatusText* boundStatus = nullptr;
XmodemProgressHook boundProgress;
std::string receiveBuffer;

constexpr int kHandshakeTries = 16;
constexpr int kBlockSends = 25;
constexpr int kEotSends = 10;
constexpr int kCancelBytes = 3;
// A boot loader may erase its flash before it takes the first block.
constexpr int32_t kFirstAckMs = 30000;
constexpr int32_t kAnswerMs = 1000;
constexpr double kPollMs = 10;

constexpr int kNumberOffset = 1;
constexpr int kComplementOffset = 2;
constexpr int kDataOffset = 3;
constexpr int kCheckOffset = kDataOffset + kXmodemBlockData;

constexpr std::array<uint16_t, 256> MakeCrcTable() {
    std::array<uint16_t, 256> table{};
    for (unsigned i = 0; i < table.size(); ++i) {
        unsigned crc = i << 8;
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 0x8000) ? (crc << 1) ^ 0x1021 : crc << 1;
        table[i] = static_cast<uint16_t>(crc & 0xFFFF);
    }
    return table;
}
// Entry i is the CRC of the single byte i.
constexpr std::array<uint16_t, 256> kCrcTable = MakeCrcTable();
static_assert(kCrcTable[1] == 0x1021 && kCrcTable[3] == 0x3063 && kCrcTable[255] == 0x1EF0);

uint8_t Byte(const std::string& bytes, size_t index) { return static_cast<uint8_t>(bytes[index]); }

// "Sending block: " and the number with the leading blank of a positive
// number's text: two blanks stand before the digits.
void ShowBlock(uint8_t number) { boundStatus->SetText("Sending block:  " + std::to_string(number)); }

void TellProgress(int32_t blocks, int64_t sent, int32_t size) {
    if (!boundProgress) return;
    const auto bytes = static_cast<int32_t>(std::clamp<int64_t>(sent, 0, std::max(size, 0)));
    boundProgress(XmodemProgress{blocks, bytes, std::max(size, 0)});
}

// The sender's own give-up: three CAN.
void Abandon() {
    for (int i = 0; i < kCancelBytes; ++i) XmodemPutByte(kXmodemCAN);
    XmodemFlushInput();
}

// Called behind one CAN: a second one in time is the receiver's cancel,
// which is answered by one ACK.
bool ReceiverCancels() {
    if (XmodemGetByte(kAnswerMs) != kXmodemCAN) return false;
    XmodemPutByte(kXmodemACK);
    XmodemFlushInput();
    return true;
}

// The field is cleared first, so that behind the 0x1A of a short block
// zeros, not more 0x1A, fill it.
void BuildBlock(std::string& block, uint8_t number, const std::string& data, int64_t sent, int32_t count, bool crc) {
    block[0] = static_cast<char>(kXmodemSTX);
    block[kNumberOffset] = static_cast<char>(number);
    block[kComplementOffset] = static_cast<char>(255 - number);
    XmodemFillBytes(block, kDataOffset, 0, kXmodemBlockData);
    if (count != 0) XmodemCopyBytes(block, kDataOffset, data, static_cast<int32_t>(sent), count);
    if (count < kXmodemBlockData) block[kDataOffset + count] = static_cast<char>(kXmodemCTRLZ);

    if (crc) {
        const int32_t value = XmodemCrc16(block, kDataOffset, kXmodemBlockData);
        block[kCheckOffset] = static_cast<char>(value >> 8);
        block[kCheckOffset + 1] = static_cast<char>(value & 0xFF);
    } else {
        unsigned sum = 0;
        for (int i = kDataOffset; i < kCheckOffset; ++i) sum += Byte(block, i);
        block[kCheckOffset] = static_cast<char>(sum & 0xFF);
    }
}

enum class BlockEnd { Acknowledged, Cancelled, Refused };

// Up to 25 sends of one block. A failed send is followed by the next at
// once: nothing more is read from the port first.
BlockEnd SendBlock(const std::string& block, int32_t length, bool firstOfTransfer) {
    for (int send = 1; send <= kBlockSends; ++send) {
        XmodemPutBytes(block, length);
        const int16_t answer = XmodemGetByte(firstOfTransfer && send == 1 ? kFirstAckMs : kAnswerMs);
        if (answer == kXmodemACK) return BlockEnd::Acknowledged;
        if (answer == kXmodemCAN && ReceiverCancels()) return BlockEnd::Cancelled;
    }
    return BlockEnd::Refused;
}

int32_t EndTransmission(int64_t sent) {
    int16_t answer = -1;
    for (int send = 0; send < kEotSends && answer != kXmodemACK; ++send) {
        XmodemPutByte(kXmodemEOT);
        answer = XmodemGetByte(kAnswerMs);
    }
    XmodemFlushInput();
    if (answer != kXmodemACK) return kXmodemEotFailed;
    return static_cast<int32_t>(std::min<int64_t>(sent, std::numeric_limits<int32_t>::max()));
}

}  // namespace

void XmodemInit(SerialPort& port, StatusText& status, XmodemProgressHook progress) {
    boundPort = &port;
    boundStatus = &status;
    boundProgress = std::move(progress);
    XmodemFlushInput();
}

int32_t XmodemTransmit(const std::string& data, int32_t size) {
    XmodemFlushInput();
    // Whatever else comes (a time-out, a line of text, a single CAN) uses up
    // one try, a byte at a time.
    for (int tries = 0; tries < kHandshakeTries; ++tries) {
        const int16_t c = XmodemGetByte(kAnswerMs);
        if (c == kXmodemCRC) return XmodemSendBlocks(data, size, 1);
        if (c == kXmodemNAK) return XmodemSendBlocks(data, size, 0);
        if (c == kXmodemCAN && ReceiverCancels()) return kXmodemCancelled;
    }
    Abandon();
    return kXmodemCancelled;
}

int32_t XmodemSendBlocks(const std::string& data, int32_t size, int16_t crcMode) {
    const bool crc = crcMode != 0;
    const int32_t blockLength = crc ? kCheckOffset + 2 : kCheckOffset + 1;
    std::string block(kXmodemBlockBuffer, '\0');
    // sent grows by 1024 a block whatever the block's data, so it passes size
    // at the last block; a size on a block border first gives the block
    // without data.
    int64_t sent = 0;
    int32_t blocks = 0;
    uint8_t number = 1;
    TellProgress(blocks, sent, size);
    for (;;) {
        ShowBlock(number);
        const int64_t left = std::min<int64_t>(int64_t{size} - sent, kXmodemBlockData);
        if (left < 0) break;
        BuildBlock(block, number, data, sent, static_cast<int32_t>(left), crc);
        switch (SendBlock(block, blockLength, sent == 0)) {
            case BlockEnd::Acknowledged: break;
            case BlockEnd::Cancelled: return kXmodemCancelled;
            case BlockEnd::Refused: Abandon(); return kXmodemBlockFailed;
        }
        sent += kXmodemBlockData;
        ++number;  // 255 is followed by 0
        TellProgress(++blocks, sent, size);
    }
    return EndTransmission(sent);
}

int32_t XmodemCrc16(const std::string& bytes, int16_t start, int16_t count) {
    unsigned crc = 0;
    if (start < 0) return 0;
    const auto end = std::min<size_t>(bytes.size(), static_cast<size_t>(start) + std::max<int16_t>(count, 0));
    for (size_t i = static_cast<size_t>(start); i < end; ++i) {
        const unsigned index = ((crc >> 8) & 0xFF) ^ Byte(bytes, i);
        crc = ((crc << 8) ^ kCrcTable[index]) & 0xFFFF;
    }
    return static_cast<int32_t>(crc);
}

void XmodemPutBytes(const std::string& bytes, int32_t count) {
    boundPort->Output(bytes.substr(0, static_cast<size_t>(std::max(count, 0))));
}

void XmodemPutByte(uint8_t byte) { boundPort->Output(std::string(1, static_cast<char>(byte))); }

int16_t XmodemGetByte(int32_t limitMs) {
    int16_t polls = 0;
    for (;;) {
        if (!receiveBuffer.empty()) {
            const auto byte = static_cast<int16_t>(Byte(receiveBuffer, 0));
            receiveBuffer.erase(0, 1);
            return byte;
        }
        receiveBuffer += boundPort->Input();
        if (!receiveBuffer.empty()) continue;
        ++polls;
        if (limitMs / kPollMs <= polls) return -1;
        // One byte a pass: a wait that ends on input only takes that byte
        // sooner, in the same pass; the passes without input last their 10 ms.
        WaitMsOrInput(kPollMs);
    }
}

void XmodemFlushInput() {
    boundPort->Input();
    receiveBuffer.clear();
}

void XmodemFillBytes(std::string& bytes, int32_t start, uint8_t value, int32_t count) {
    if (start < 0 || count <= 0 || static_cast<size_t>(start) >= bytes.size()) return;
    const size_t n = std::min(bytes.size() - static_cast<size_t>(start), static_cast<size_t>(count));
    std::fill_n(bytes.begin() + start, n, static_cast<char>(value));
}

void XmodemCopyBytes(std::string& destination, int16_t destinationIndex, const std::string& source, int32_t sourceIndex,
                     int32_t count) {
    if (destinationIndex < 0 || sourceIndex < 0 || count <= 0) return;
    const auto to = static_cast<size_t>(destinationIndex);
    const auto from = static_cast<size_t>(sourceIndex);
    if (to >= destination.size() || from >= source.size()) return;
    const size_t n = std::min({static_cast<size_t>(count), destination.size() - to, source.size() - from});
    std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(from), n,
                destination.begin() + static_cast<std::ptrdiff_t>(to));
}

}  // namespace sb
