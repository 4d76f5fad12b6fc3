#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>
#include <thread>
#include <tuple>

#include "../helpers/TempFolder.h"
#include "../link/QtApp.h"
#include "PtySocketCable.h"
#include "helpers/Waiting.h"
#include "link/QtSerialPort.h"
#include "link/StatusText.h"
#include "ui/QtWaitContext.h"
#include "update/Xmodem.h"
#include "FirmwareImage.h"

// Our sender on the Qt serial port over a pseudo-terminal, against lrzsz's
// rx as an independent receiver, in both check modes.
namespace sb {
namespace {

using test::PaddedToWholeBlocks;
using test::RandomBytes;

enum class Check { Crc, Checksum };

// lrzsz's receiver as the system installs it; some distributions prefix
// its programs with an l.
std::string FindRx() {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/bin:/bin");
    std::string folder;
    while (std::getline(folders, folder, ':')) {
        for (const char* name : {"rx", "lrx"}) {
            const std::string candidate = folder + "/" + name;
            if (::access(candidate.c_str(), X_OK) == 0) return candidate;
        }
    }
    return {};
}

// rx running in `folder` on the line `line`, writing "received" there and
// its messages to "rx.log".
class RxProcess {
public:
    RxProcess(const std::string& rx, int line, const test::TempFolder& folder, Check check) {
        const std::string log = folder.File("rx.log");
        pid_ = ::fork();
        if (pid_ != 0) return;
        ::dup2(line, 0);
        ::dup2(line, 1);
        ::dup2(::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
        if (::chdir(folder.Path().c_str()) != 0) ::_exit(126);
        // Plain rx asks for the checksum with NAK, rx -c for CRC-16 with "C".
        if (check == Check::Crc)
            ::execl(rx.c_str(), "rx", "-b", "-c", "received", static_cast<char*>(nullptr));
        else
            ::execl(rx.c_str(), "rx", "-b", "received", static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ~RxProcess() {
        if (pid_ > 0 && !exited_) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }
    RxProcess(const RxProcess&) = delete;
    RxProcess& operator=(const RxProcess&) = delete;

    // rx's exit status; one that hasn't ended within the limit is killed
    // and answers -1.
    int Finish(std::chrono::seconds limit) {
        if (pid_ < 0) return -1;
        const auto end = std::chrono::steady_clock::now() + limit;
        int status = 0;
        while (::waitpid(pid_, &status, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > end) return -1;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        exited_ = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t pid_ = -1;
    bool exited_ = false;
};

class SenderAgainstRx : public ::testing::TestWithParam<std::tuple<Check, int32_t>> {
protected:
    void SetUp() override {
        test::QtApp();
        SetWaitContext(&waits_);
        rx_ = FindRx();
        if (rx_.empty()) {
            // setup.sh installs lrzsz, so a build for CI must have it.
            if (std::getenv("CI")) FAIL() << "lrzsz's rx is missing; scripts/setup.sh installs it";
            GTEST_SKIP() << "lrzsz's rx is not installed (apt-get install lrzsz)";
        }
        ASSERT_TRUE(cable_.Ok());
    }
    void TearDown() override { SetWaitContext(nullptr); }

    ui::QtWaitContext waits_;
    // Our port on its device, rx on its socket.
    test::PtySocketCable cable_;
    test::TempFolder folder_;
    std::string rx_;
};

TEST_P(SenderAgainstRx, ReceiverKeepsOurFilePaddedToWholeBlocks) {
    const auto [check, size] = GetParam();
    const std::string data = RandomBytes(static_cast<size_t>(size), static_cast<unsigned>(size) + 7);

    QtSerialPort port;
    OpenPort(port, cable_.DevicePath(), kSettings115200);
    PlainStatusText status;
    XmodemInit(port, status);
    // rx starts inside the first wait of the handshake, behind the sender's
    // flush of the input, so that its first "C" or NAK is taken and not
    // thrown away.
    std::unique_ptr<RxProcess> rx;
    QObject starter;  // takes the start along if the test ends before
    QTimer::singleShot(0, &starter, [&] { rx = std::make_unique<RxProcess>(rx_, cable_.PeerFd(), folder_, check); });
    int32_t result = 0;
    try {
        result = XmodemTransmit(data, size);
    } catch (const PortError& failure) {
        ADD_FAILURE() << failure.what() << ": " << failure.reason;
    }
    port.SetPortOpen(false);
    ASSERT_TRUE(rx) << "rx was never started";
    const int rxStatus = rx->Finish(std::chrono::seconds(60));
    const std::string log = test::TempFolder::Read(folder_.File("rx.log"));

    const std::string expected = PaddedToWholeBlocks(data);
    EXPECT_EQ(rxStatus, 0) << log;
    EXPECT_EQ(result, static_cast<int32_t>(expected.size())) << log;
    const std::string received = test::TempFolder::Read(folder_.File("received"));
    ASSERT_EQ(received.size(), expected.size()) << log;
    EXPECT_TRUE(received == expected) << "first difference at byte "
                                      << std::mismatch(received.begin(), received.end(), expected.begin()).first -
                                             received.begin();
}

INSTANTIATE_TEST_SUITE_P(
    ModesAndSizes, SenderAgainstRx,
    ::testing::Combine(::testing::Values(Check::Crc, Check::Checksum),
                       // Empty, one byte, short of a block, on one and two
                       // block borders, and past block number 255.
                       ::testing::Values(0, 1, 1023, 1024, 2048, 256 * 1024 + 1)),
    [](const auto& info) {
        return std::string(std::get<0>(info.param) == Check::Crc ? "Crc" : "Checksum") + "_" +
               std::to_string(std::get<1>(info.param));
    });

}  // namespace
}  // namespace sb
