// servicebay-bench-xmodem-ack: the far end of the XMODEM speed measurement.
//
//   servicebay-bench-xmodem-ack receive FILE   prints the device to send to,
//       receives one transfer there and checks it against FILE
//   servicebay-bench-xmodem-ack plain DEVICE FILE   the plainest sender:
//       write a block, read its ACK, next block
//
// The receiver sits on a pseudo-terminal's master and answers each block the
// moment its last byte is in, without checking its CRC: the sender alone sets
// the pace. It times from the first byte of the first block to its ACK of the
// EOT and prints "blocks seconds microseconds-per-block" on its last line.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "update/Xmodem.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kLimitSeconds = 300;

std::string ReadFile(const char* path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", what.c_str(), std::strerror(errno));
    std::exit(1);
}

void MakeRaw(int fd) {
    termios tio{};
    if (::tcgetattr(fd, &tio) != 0) Fail("tcgetattr");
    ::cfmakeraw(&tio);
    ::tcsetattr(fd, TCSANOW, &tio);
}

void Put(int fd, char byte) {
    while (::write(fd, &byte, 1) != 1)
        if (errno != EINTR && errno != EAGAIN) Fail("write");
}

// Blocks until more input is there; appends it.
void Take(int fd, std::string& input) {
    char buffer[8192];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got > 0) return input.append(buffer, static_cast<size_t>(got)), void();
        if (got < 0 && errno != EAGAIN && errno != EINTR && errno != EIO) Fail("read");
        pollfd p{fd, POLLIN, 0};
        ::poll(&p, 1, 100);
    }
}

int Receive(const char* file) {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) Fail("posix_openpt");
    const std::string device = ::ptsname(master);
    // Held open, so that the sender's closing never turns reads into EIO.
    const int slave = ::open(device.c_str(), O_RDWR | O_NOCTTY);
    if (slave < 0) Fail("open " + device);
    MakeRaw(slave);
    std::printf("%s\n", device.c_str());
    std::fflush(stdout);
    ::alarm(kLimitSeconds);

    // "C" until the first byte of a block comes; the sender may not be there yet.
    std::string input;
    while (input.empty()) {
        Put(master, static_cast<char>(sb::kXmodemCRC));
        pollfd p{master, POLLIN, 0};
        if (::poll(&p, 1, 300) > 0) Take(master, input);
    }
    const auto start = Clock::now();
    std::string received;
    int blocks = 0;
    uint8_t expected = 1;
    for (;;) {
        while (input.empty()) Take(master, input);
        const auto kind = static_cast<uint8_t>(input[0]);
        if (kind == sb::kXmodemEOT) break;
        const size_t data = kind == sb::kXmodemSTX ? 1024 : kind == sb::kXmodemSOH ? 128 : 0;
        if (data == 0) {  // a stray byte between blocks
            input.erase(0, 1);
            continue;
        }
        while (input.size() < data + 5) Take(master, input);
        Put(master, static_cast<char>(sb::kXmodemACK));
        // A block sent again (its ACK was late) is acknowledged and dropped.
        if (static_cast<uint8_t>(input[1]) == expected) {
            received.append(input, 3, data);
            ++expected;
            ++blocks;
        }
        input.erase(0, data + 5);
    }
    Put(master, static_cast<char>(sb::kXmodemACK));
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const std::string sent = ReadFile(file);
    if (received.compare(0, sent.size(), sent) != 0 || received.size() < sent.size()) {
        std::fprintf(stderr, "received %zu bytes that are not the file's %zu\n", received.size(), sent.size());
        return 2;
    }
    // Time for the sender to read the last ACK before the device goes.
    ::usleep(200000);
    std::printf("%d %.6f %.2f\n", blocks, seconds, seconds * 1e6 / blocks);
    return 0;
}

// Blocks made beforehand, so that only the write and the read are timed.
int Plain(const char* device, const char* file) {
    const int fd = ::open(device, O_RDWR | O_NOCTTY);
    if (fd < 0) Fail(std::string("open ") + device);
    MakeRaw(fd);
    ::tcflush(fd, TCIFLUSH);
    const std::string data = ReadFile(file);
    std::string blocks;
    for (size_t at = 0, number = 1; at <= data.size(); at += 1024, ++number) {
        std::string block(1024, '\0');
        const std::string part = data.substr(at, 1024);
        block.replace(0, part.size(), part);
        if (part.size() < 1024) block[part.size()] = 0x1A;
        const int32_t crc = sb::XmodemCrc16(block, 0, 1024);
        blocks += static_cast<char>(sb::kXmodemSTX);
        blocks += static_cast<char>(number);
        blocks += static_cast<char>(255 - (number & 0xFF));
        blocks += block;
        blocks += static_cast<char>(crc >> 8);
        blocks += static_cast<char>(crc & 0xFF);
    }
    char byte = 0;
    while (byte != static_cast<char>(sb::kXmodemCRC))
        if (::read(fd, &byte, 1) != 1) Fail("read");
    for (size_t at = 0; at < blocks.size(); at += 1029) {
        if (::write(fd, blocks.data() + at, 1029) != 1029) Fail("write");
        if (::read(fd, &byte, 1) != 1 || byte != static_cast<char>(sb::kXmodemACK)) Fail("no ACK");
    }
    Put(fd, static_cast<char>(sb::kXmodemEOT));
    if (::read(fd, &byte, 1) != 1) Fail("no ACK of the EOT");
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "receive") == 0) return Receive(argv[2]);
    if (argc == 4 && std::strcmp(argv[1], "plain") == 0) return Plain(argv[2], argv[3]);
    std::fprintf(stderr, "usage: %s receive FILE | plain DEVICE FILE\n", argv[0]);
    return 1;
}
