#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>

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

// rx on one end of a socket pair; the other end stands behind a fake port.
// rx starts in the sender's first wait, behind its flush of the input, so
// that its first "C" or NAK is taken and not thrown away.
class RxOnSocket final : public WaitContext {
public:
    RxOnSocket(const test::TempFolder& folder, bool crc) : folder_(folder), crc_(crc) {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) throw std::runtime_error("socketpair");
        ours_ = ends[0];
        theirs_ = ends[1];
        port.SetPortOpen(true);
        port.onOutput = [this](const std::string& bytes) {
            for (ssize_t done = 0, n = 0; done < static_cast<ssize_t>(bytes.size()) && n >= 0; done += n)
                n = ::send(ours_, bytes.data() + done, bytes.size() - static_cast<size_t>(done), MSG_NOSIGNAL);
        };
        SetWaitContext(this);
    }
    ~RxOnSocket() override {
        SetWaitContext(nullptr);
        Finish();
        ::close(theirs_);
    }

    // rx's exit status, once it has seen the end of our side.
    int Finish() {
        if (ours_ >= 0) ::close(ours_);
        ours_ = -1;
        int status = -1;
        if (pid_ > 0) ::waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    int32_t Tick() override {
        using namespace std::chrono;
        return static_cast<int32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
    void PumpEvents() override {}
    bool Sleep(double ms, bool) override {
        if (pid_ == 0) Start();
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
    void Start() {
        pid_ = ::fork();
        if (pid_ != 0) return;
        ::dup2(theirs_, 0);
        ::dup2(theirs_, 1);
        ::dup2(::open(folder_.File("rx.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
        if (::chdir(folder_.Path().c_str()) != 0) ::_exit(126);
        // Plain rx asks for the checksum with NAK, rx -c for CRC-16 with "C".
        if (crc_) ::execlp("rx", "rx", "-b", "-c", "received", static_cast<char*>(nullptr));
        ::execlp("rx", "rx", "-b", "received", static_cast<char*>(nullptr));
        ::_exit(127);
    }

    const test::TempFolder& folder_;
    bool crc_;
    int ours_ = -1, theirs_ = -1;
    pid_t pid_ = 0;
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
            RxOnSocket rx(folder, crc);
            PlainStatusText status;
            XmodemInit(rx.port, status);
            const int32_t result = XmodemTransmit(data, size);
            const int rxStatus = rx.Finish();
            const std::string log = test::TempFolder::Read(folder.File("rx.log"));
            const std::string expected = test::PaddedToWholeBlocks(data);
            EXPECT_EQ(rxStatus, 0) << log;
            EXPECT_EQ(result, static_cast<int32_t>(expected.size())) << log;
            EXPECT_TRUE(test::TempFolder::Read(folder.File("received")) == expected) << log;
        }
    }
}

}  // namespace
}  // namespace sb
