#pragma once
#include <string>

#include "Faults.h"
#include "Profile.h"
#include "Wire.h"

// The boot loader's receiving side of XMODEM: 1024-byte blocks behind STX
// (and, for senders that end with short blocks, 128-byte blocks behind SOH),
// with a CRC-16 or an 8-bit checksum as the module asks at the handshake.
namespace sb::module {

enum class TransferOutcome {
    Complete,           // every block and the EOT acknowledged
    NoSender,           // nobody began to send
    CancelledBySender,  // two CAN in a row from the sender
    CancelledByModule,  // the module sent CAN CAN
    TooManyErrors,      // one block failed again and again
    EotUnanswered,      // the sender ended, the module never acknowledged it
};

struct TransferResult {
    TransferOutcome outcome = TransferOutcome::NoSender;
    // The data fields of the accepted blocks as they came, padding included:
    // a boot loader writes whole blocks.
    std::string image;
    int blocks = 0;
};

// CRC-16/XMODEM: polynomial 0x1021, start 0, most significant bit first.
uint16_t Crc16Xmodem(const std::string& bytes);

// Runs one transfer on the wire, from the first handshake byte to the end.
// Throws what the wire throws, and DeviceVanished for that fault.
TransferResult ReceiveXmodem(Wire& wire, XmodemCheck check, const XmodemFaults& faults);

const char* OutcomeText(TransferOutcome outcome);

}  // namespace sb::module
