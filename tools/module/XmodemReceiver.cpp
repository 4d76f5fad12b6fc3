#include "XmodemReceiver.h"

#include "update/XmodemBytes.h"

namespace sb::module {
namespace {

// The module asks for a sender once a second for a minute.
constexpr int kHandshakeIntervalMs = 1000;
constexpr int kHandshakeTries = 60;
constexpr int kByteTimeoutMs = 1000;        // between two bytes of a block
constexpr int kNextBlockTimeoutMs = 10000;  // from an answer to the next block
constexpr int kSecondCanTimeoutMs = 1000;
// A sender whose EOT goes unanswered repeats it every second; this much
// silence means it has given up.
constexpr int kEotSilenceMs = 1500;
constexpr int kPurgeQuietMs = 100;
constexpr int kErrorLimit = 10;

class Receiver {
public:
    Receiver(Wire& wire, XmodemCheck check, const XmodemFaults& faults) : wire_(wire), check_(check), faults_(faults) {}

    TransferResult Run() {
        int header = AwaitSender();
        if (header < 0) return Ended(TransferOutcome::NoSender);
        for (int errors = 0;; header = wire_.ReadByte(kNextBlockTimeoutMs)) {
            if (header == kXmodemSOH || header == kXmodemSTX) {
                const BlockAnswer answer = TakeBlock(header == kXmodemSTX ? kXmodemBlockData : 128);
                if (answer == BlockAnswer::Cancel) return Cancel();
                // A good block that the fault refuses is no error of the line:
                // the sender's own limit ends such a transfer, not ours.
                errors = answer == BlockAnswer::Bad ? errors + 1 : 0;
            } else if (header == kXmodemEOT) {
                if (faults_.ignoreEot) return LetSenderGiveUp();
                wire_.Send(std::string(1, kXmodemACK));
                return Ended(TransferOutcome::Complete);
            } else if (header == kXmodemCAN) {
                if (wire_.ReadByte(kSecondCanTimeoutMs) == kXmodemCAN) return Ended(TransferOutcome::CancelledBySender);
            } else if (header < 0) {
                wire_.Send(std::string(1, kXmodemNAK));
                ++errors;
            }
            // Any other byte is noise on the line between blocks.
            if (errors > kErrorLimit) {
                Cancel();
                return Ended(TransferOutcome::TooManyErrors);
            }
        }
    }

private:
    enum class BlockAnswer { Accepted, Refused, Bad, Cancel };

    // Sends the handshake byte ("C" for CRC, NAK for the checksum) until the
    // first header byte comes.
    int AwaitSender() {
        const std::string handshake(1, check_ == XmodemCheck::Crc ? static_cast<char>(kXmodemCRC) : static_cast<char>(kXmodemNAK));
        for (int tries = 0; tries < kHandshakeTries; ++tries) {
            wire_.Send(handshake);
            for (int byte = wire_.ReadByte(kHandshakeIntervalMs); byte >= 0;
                 byte = wire_.ReadByte(kHandshakeIntervalMs)) {
                if (byte == kXmodemSOH || byte == kXmodemSTX || byte == kXmodemEOT || byte == kXmodemCAN) return byte;
            }
        }
        return -1;
    }

    // Number, its complement, the data and the check, behind the header.
    BlockAnswer TakeBlock(size_t size) {
        const size_t checkLength = check_ == XmodemCheck::Crc ? 2 : 1;
        std::string block;
        while (block.size() < 2 + size + checkLength) {
            const int byte = wire_.ReadByte(kByteTimeoutMs);
            if (byte < 0) return Refuse();
            block += static_cast<char>(byte);
        }
        const auto number = static_cast<uint8_t>(block[0]);
        const auto complement = static_cast<uint8_t>(block[1]);
        const std::string data = block.substr(2, size);
        if (number + complement != 0xFF || !CheckMatches(data, block.substr(2 + size))) return Refuse();

        // The sender missed the ACK of the block before and sent it again.
        if (result_.blocks > 0 && number == static_cast<uint8_t>(expected_ - 1)) return Acknowledge();
        if (number != expected_) return BlockAnswer::Cancel;
        if (faults_.refuseBlocks) {
            // The whole block is in: nothing to drop before the NAK.
            wire_.Send(std::string(1, kXmodemNAK));
            return BlockAnswer::Refused;
        }
        if (faults_.cancelAfterBlocks == result_.blocks) return BlockAnswer::Cancel;
        if (faults_.vanishAfterBlocks == result_.blocks) throw DeviceVanished{};
        result_.image += data;
        ++result_.blocks;
        ++expected_;
        return Acknowledge();
    }

    bool CheckMatches(const std::string& data, const std::string& check) const {
        if (check_ == XmodemCheck::Checksum) {
            uint8_t sum = 0;
            for (const char c : data) sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(c));
            return static_cast<uint8_t>(check[0]) == sum;
        }
        const uint16_t crc = Crc16Xmodem(data);
        return static_cast<uint8_t>(check[0]) == crc >> 8 && static_cast<uint8_t>(check[1]) == (crc & 0xFF);
    }

    BlockAnswer Acknowledge() {
        wire_.Send(std::string(1, kXmodemACK));
        return BlockAnswer::Accepted;
    }

    // What is left of a bad block is dropped first, so that the NAK answers
    // the whole of it.
    BlockAnswer Refuse() {
        wire_.Purge(kPurgeQuietMs);
        wire_.Send(std::string(1, kXmodemNAK));
        return BlockAnswer::Bad;
    }

    TransferResult Cancel() {
        wire_.Send(std::string(2, static_cast<char>(kXmodemCAN)));
        return Ended(TransferOutcome::CancelledByModule);
    }

    TransferResult LetSenderGiveUp() {
        while (wire_.ReadByte(kEotSilenceMs) >= 0) {
        }
        return Ended(TransferOutcome::EotUnanswered);
    }

    TransferResult Ended(TransferOutcome outcome) {
        result_.outcome = outcome;
        return result_;
    }

    Wire& wire_;
    XmodemCheck check_;
    const XmodemFaults& faults_;
    TransferResult result_;
    uint8_t expected_ = 1;
};

}  // namespace

uint16_t Crc16Xmodem(const std::string& bytes) {
    uint16_t crc = 0;
    for (const char c : bytes) {
        crc ^= static_cast<uint16_t>(static_cast<uint8_t>(c) << 8);
        for (int bit = 0; bit < 8; ++bit) crc = static_cast<uint16_t>(crc & 0x8000 ? (crc << 1) ^ 0x1021 : crc << 1);
    }
    return crc;
}

TransferResult ReceiveXmodem(Wire& wire, XmodemCheck check, const XmodemFaults& faults) {
    return Receiver(wire, check, faults).Run();
}

const char* OutcomeText(TransferOutcome outcome) {
    switch (outcome) {
        case TransferOutcome::Complete:
            return "complete";
        case TransferOutcome::NoSender:
            return "no-sender";
        case TransferOutcome::CancelledBySender:
            return "cancelled-by-sender";
        case TransferOutcome::CancelledByModule:
            return "cancelled-by-module";
        case TransferOutcome::TooManyErrors:
            return "too-many-errors";
        case TransferOutcome::EotUnanswered:
            return "eot-unanswered";
    }
    return "";
}

}  // namespace sb::module
