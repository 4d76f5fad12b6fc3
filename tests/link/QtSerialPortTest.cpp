#include <dlfcn.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>
#include <vector>

#include "PtyPair.h"
#include "QtApp.h"
#include "helpers/Waiting.h"
#include "link/PortErrorText.h"
#include "link/QtSerialPort.h"
#include "ui/QtWaitContext.h"

// Every change of line settings and every write to the watched device, as
// the program makes them: these definitions take the place of the C
// library's for the whole test program and pass each call on.
namespace {
dev_t watchedDevice = 0;
std::vector<termios> settingChanges;
std::vector<std::size_t> writeSizes;

bool Watched(int fd) {
    struct stat st {};
    return watchedDevice != 0 && ::fstat(fd, &st) == 0 && S_ISCHR(st.st_mode) && st.st_rdev == watchedDevice;
}
}  // namespace

extern "C" int tcsetattr(int fd, int actions, const termios* tio) {
    static const auto real = reinterpret_cast<int (*)(int, int, const termios*)>(::dlsym(RTLD_NEXT, "tcsetattr"));
    if (Watched(fd)) settingChanges.push_back(*tio);
    return real(fd, actions, tio);
}

extern "C" ssize_t write(int fd, const void* data, size_t size) {
    static const auto real = reinterpret_cast<ssize_t (*)(int, const void*, size_t)>(::dlsym(RTLD_NEXT, "write"));
    const ssize_t n = real(fd, data, size);
    if (n > 0 && Watched(fd)) writeSizes.push_back(static_cast<std::size_t>(n));
    return n;
}

namespace sb {
namespace {

class QtSerialPortOnPty : public ::testing::Test {
protected:
    void SetUp() override {
        test::QtApp();
        SetWaitContext(&waits_);
        ASSERT_TRUE(pty_.Ok());
        struct stat st {};
        ASSERT_EQ(::stat(pty_.SlavePath().c_str(), &st), 0);
        watchedDevice = st.st_rdev;
        settingChanges.clear();
        writeSizes.clear();
    }
    void TearDown() override {
        port_.SetPortOpen(false);
        watchedDevice = 0;
        SetWaitContext(nullptr);
    }

    ui::QtWaitContext waits_;
    test::PtyPair pty_;
    QtSerialPort port_;
};

std::string AllBytes() {
    std::string bytes;
    for (int b = 0; b < 256; ++b) bytes += static_cast<char>(b);
    return bytes;
}

TEST_F(QtSerialPortOnPty, OpensWithTheRequestedLineSettingsInOneChangeAndLeavesThemAtClose) {
    // A pseudo-terminal keeps 8 data bits without parity whatever it is
    // told, so only speed and stop bits tell the settings apart here.
    const struct {
        const char* settings;
        speed_t speed;
        tcflag_t stop;
    } cases[] = {
        {"300, N, 8, 1", B300, 0},
        {"115200, N, 8, 1", B115200, 0},
        {"9600, E, 7, 2", B9600, CSTOPB},
    };
    for (const auto& c : cases) {
        settingChanges.clear();
        OpenPort(port_, pty_.SlavePath(), c.settings);
        ASSERT_EQ(settingChanges.size(), 1u) << c.settings;
        const termios seen = pty_.SlaveSettings();
        EXPECT_EQ(::cfgetospeed(&seen), c.speed) << c.settings;
        EXPECT_EQ(seen.c_cflag & CSTOPB, c.stop) << c.settings;
        EXPECT_EQ(seen.c_cflag & CRTSCTS, 0u) << c.settings;
        // Raw bytes both ways, no software flow control.
        EXPECT_EQ(seen.c_lflag & (ICANON | ECHO | ISIG), 0u) << c.settings;
        EXPECT_EQ(seen.c_iflag & (IXON | IXOFF | ICRNL), 0u) << c.settings;
        EXPECT_EQ(seen.c_oflag & OPOST, 0u) << c.settings;
        // HUPCL: closing drops DTR on a real line.
        EXPECT_NE(seen.c_cflag & HUPCL, 0u) << c.settings;

        port_.SetPortOpen(false);
        EXPECT_EQ(settingChanges.size(), 1u) << c.settings;
        const termios after = pty_.SlaveSettings();
        EXPECT_EQ(::cfgetospeed(&after), c.speed) << c.settings;
    }
}

TEST_F(QtSerialPortOnPty, NeedsNoLockFile) {
    const std::string name = pty_.SlavePath().substr(5);  // "pts/N"
    std::string lockName = "LCK.." + name;
    for (auto& ch : lockName)
        if (ch == '/') ch = '_';
    OpenPort(port_, pty_.SlavePath(), kSettings300);
    for (const QString& folder : {QStringLiteral("/var/lock"), QStringLiteral("/run/lock"), QDir::tempPath()})
        EXPECT_FALSE(QDir(folder).exists(QString::fromStdString(lockName))) << folder.toStdString();
}

TEST_F(QtSerialPortOnPty, InputHandsOutEveryByteTheSystemHoldsWithoutBlocking) {
    OpenPort(port_, pty_.SlavePath(), kSettings300);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(port_.Input(), "");
    EXPECT_LT(clock.elapsed(), 100);

    // Taken straight from the system, the event loop never ran.
    pty_.Send(AllBytes());
    ::usleep(100 * 1000);
    EXPECT_EQ(port_.Input(), AllBytes());

    // Pulled in by the event loop in pieces, handed out at once.
    std::string burst;
    for (int i = 0; i < 12; ++i) burst += AllBytes();
    pty_.Send(burst.substr(0, 1500));
    WaitMs(50);
    pty_.Send(burst.substr(1500));
    WaitMs(50);
    EXPECT_EQ(port_.Input(), burst);
    EXPECT_EQ(port_.Input(), "");
}

TEST_F(QtSerialPortOnPty, ArrivingInputEndsAnInputWaitAtOnce) {
    OpenPort(port_, pty_.SlavePath(), kSettings300);
    QTimer::singleShot(50, [this] { pty_.Send("x"); });
    QElapsedTimer clock;
    clock.start();
    WaitMsOrInput(10000);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(port_.Input(), "x");
}

TEST_F(QtSerialPortOnPty, OutputPassesEveryByteAndABlockGoesOutInOneWrite) {
    OpenPort(port_, pty_.SlavePath(), kSettings115200);
    port_.Output(AllBytes());
    EXPECT_EQ(pty_.Receive(256), AllBytes());

    writeSizes.clear();
    const std::string block = std::string(3, '\x02') + std::string(1024, '\x1A') + std::string(2, '\x7F');
    port_.Output(block);
    EXPECT_EQ(writeSizes, std::vector<std::size_t>{1029});
    EXPECT_EQ(pty_.Receive(1029), block);
}

TEST_F(QtSerialPortOnPty, FailsWithTheSystemsReason) {
    QtSerialPort missing;
    missing.SetCommPort("/dev/servicebay-no-such-port");
    try {
        missing.SetPortOpen(true);
        ADD_FAILURE() << "opened a missing device";
    } catch (const PortError& failure) {
        EXPECT_EQ(failure.reason, "No such file or directory");
        EXPECT_EQ(PortErrorText("CommPort Error", failure),
                  "CommPort Error\r\nCannot open /dev/servicebay-no-such-port: No such file or directory"
                  " (see README, \"Serial port access\")");
    }

    OpenPort(port_, pty_.SlavePath(), kSettings300);
    EXPECT_THROW(port_.SetCommPort("ttyACM0"), PortError);
    EXPECT_THROW(port_.SetPortOpen(true), PortError);
    QtSerialPort second;  // the dialog's port while the main screen's is open
    EXPECT_THROW(OpenPort(second, pty_.SlavePath(), kSettings300), PortError);
    EXPECT_FALSE(second.PortOpen());
    EXPECT_THROW(port_.SetSettings("300, N, 8"), PortError);
}

TEST_F(QtSerialPortOnPty, ADeviceThatVanishesFailsEveryOperationButTheClosing) {
    OpenPort(port_, pty_.SlavePath(), kSettings300);
    pty_.Send("last words");
    WaitMs(50);
    pty_.Vanish();
    WaitMs(50);
    EXPECT_EQ(port_.Input(), "last words");
    EXPECT_THROW(port_.Input(), PortError);
    EXPECT_THROW(port_.Output("GETSN\r"), PortError);
    EXPECT_NO_THROW(port_.SetPortOpen(false));
    EXPECT_FALSE(port_.PortOpen());
    EXPECT_THROW(port_.Input(), PortError);
}

}  // namespace
}  // namespace sb
