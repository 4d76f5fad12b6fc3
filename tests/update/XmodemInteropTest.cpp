#include <sys/socket.h>
#include <sys/wait.h>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "../helpers/TempFolder.h"
#include "FakeSerialPort.h"
#include "FirmwareImage.h"
#include "helpers/Waiting.h"
#include "link/StatusText.h"
#include "update/Xmodem.h"

// Our sender against lrzsz's rx, an independent receiver, in both check
// modes. rx talks on a socket whose other end is the sender's port: on a
// terminal rx would flush its line as it exits and lose its last ACK.
namespace sb {
namespace {

// rx in folder on one end of a socket pair; a wait of the sender reads what
// rx sent into the fake port on the other end. Until the first wait the
// socket holds rx's first "C" or NAK, so that no flush can throw it away.
class RxOnSocket final : public WaitContext {
public:
    RxOnSocket(const test::TempFolder& folder, bool crc) : plain_(CurrentWaitContext()) {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) throw std::runtime_error("socketpair");
        if ((pid_ = ::fork()) == 0) Exec(ends[1], folder, crc);
        ::close(ends[1]);
        ours_ = ends[0];
        port.SetPortOpen(true);
        port.onOutput = [this](const std::string& bytes) { ::send(ours_, bytes.data(), bytes.size(), MSG_NOSIGNAL); };
        SetWaitContext(this);
    }
    ~RxOnSocket() override {
        SetWaitContext(nullptr);
        Finish();
    }

    // rx's exit status, once it has seen the end of our side.
    int Finish() {
        if (ours_ >= 0) ::close(ours_);
        ours_ = -1;
        int status = -1;
        if (pid_ > 0) ::waitpid(std::exchange(pid_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    int32_t Tick() override { return plain_.Tick(); }
    void PumpEvents() override {}
    bool Sleep(double ms, bool) override {
        pollfd readable{ours_, POLLIN, 0};
        if (::poll(&readable, 1, static_cast<int>(ms)) <= 0) return false;
        char chunk[4096];
        const ssize_t n = ::read(ours_, chunk, sizeof chunk);
        if (n > 0) port.Feed(std::string(chunk, static_cast<size_t>(n)));
        return n > 0;
    }
    void NotifyInput() override {}

    test::FakeSerialPort port;

private:
    // Plain rx asks for the checksum with NAK, rx -c for CRC-16 with "C" (-b again in its place).
    [[noreturn]] static void Exec(int end, const test::TempFolder& folder, bool crc) {
        ::dup2(end, 0);
        ::dup2(end, 1);
        if (::chdir(folder.Path().c_str()) != 0) ::_exit(126);
        ::execlp("rx", "rx", "-b", crc ? "-c" : "-b", "received", nullptr);
        ::_exit(127);
    }

    WaitContext& plain_;
    int ours_ = -1;
    pid_t pid_ = -1;
};

TEST(SenderAgainstRx, ReceiverKeepsOurFilePaddedToWholeBlocks) {
    if (std::system("command -v rx >/dev/null") != 0) {
        if (std::getenv("CI")) FAIL() << "lrzsz's rx is missing; scripts/setup.sh installs it";
        GTEST_SKIP() << "lrzsz's rx is not installed (apt-get install lrzsz)";
    }
    // Empty, short of a block, on a block border, and past block number 255.
    for (const bool crc : {true, false}) {
        for (const int32_t size : {0, 1023, 2048, 256 * 1024 + 1}) {
            SCOPED_TRACE(std::string(crc ? "crc " : "checksum ") + std::to_string(size));
            test::TempFolder folder;
            const std::string data = test::RandomBytes(static_cast<size_t>(size), static_cast<unsigned>(size));
            const std::string expected = test::PaddedToWholeBlocks(data);
            RxOnSocket rx(folder, crc);
            PlainStatusText status;
            XmodemInit(rx.port, status);
            EXPECT_EQ(XmodemTransmit(data, size), static_cast<int32_t>(expected.size()));
            EXPECT_EQ(rx.Finish(), 0);
            EXPECT_TRUE(test::TempFolder::Read(folder.File("received")) == expected);
        }
    }
}

}  // namespace
}  // namespace sb
