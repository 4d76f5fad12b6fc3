#include <dlfcn.h>

#include <gtest/gtest.h>

#include <QDir>
#include <algorithm>

#include "PtyPair.h"
#include "QtApp.h"
#include "link/QtSerialPort.h"
#include "ui/QtWaitContext.h"

// Every change of line settings in this program, where only the port under
// test makes them: this definition takes the place of the C library's and
// passes each call on.
namespace {
int settingChanges = 0;
}  // namespace

extern "C" int tcsetattr(int fd, int actions, const termios* tio) {
    static const auto real = reinterpret_cast<int (*)(int, int, const termios*)>(::dlsym(RTLD_NEXT, "tcsetattr"));
    ++settingChanges;
    return real(fd, actions, tio);
}

namespace sb {
namespace {

struct QtSerialPortOnPty : ::testing::Test {
    void SetUp() override {
        test::QtApp();
        SetWaitContext(&waits_);
    }
    void TearDown() override { SetWaitContext(nullptr); }

    ui::QtWaitContext waits_;
    test::PtyPair pty_;
    QtSerialPort port_;
};

TEST_F(QtSerialPortOnPty, OpensWithTheRequestedLineSettingsInOneChangeAndLeavesThemAtClose) {
    // A pseudo-terminal keeps 8 data bits without parity whatever it is
    // told, so only speed and stop bits tell the settings apart here.
    const struct {
        const char* settings;
        speed_t speed;
        tcflag_t stop;
    } cases[] = {{"300, N, 8, 1", B300, 0}, {"115200, N, 8, 1", B115200, 0}, {"9600, E, 7, 2", B9600, CSTOPB}};
    for (const auto& c : cases) {
        settingChanges = 0;
        OpenPort(port_, pty_.slavePath, c.settings);
        termios seen{};
        ::tcgetattr(pty_.master, &seen);
        EXPECT_EQ(::cfgetospeed(&seen), c.speed) << c.settings;
        // No hardware flow control; HUPCL: closing drops DTR on a real line.
        EXPECT_EQ(seen.c_cflag & (CSTOPB | CRTSCTS | HUPCL), c.stop | HUPCL) << c.settings;
        // Raw bytes both ways, no software flow control.
        EXPECT_EQ(seen.c_lflag & (ICANON | ECHO | ISIG), 0u) << c.settings;
        EXPECT_EQ((seen.c_iflag & (IXON | IXOFF | ICRNL)) | (seen.c_oflag & OPOST), 0u) << c.settings;

        port_.SetPortOpen(false);
        EXPECT_EQ(settingChanges, 1) << c.settings;  // at the opening, none at the close
    }
}

TEST_F(QtSerialPortOnPty, LocksTheDeviceWithoutALockFileAndRefusesChangesWhileOpen) {
    OpenPort(port_, pty_.slavePath, kSettings300);
    QtSerialPort second;  // the dialog's port while the main screen's is open
    EXPECT_THROW(OpenPort(second, pty_.slavePath, kSettings300), PortError);
    EXPECT_FALSE(second.PortOpen());
    std::string lockName = "LCK.." + pty_.slavePath.substr(5);
    std::replace(lockName.begin(), lockName.end(), '/', '_');
    for (const QString& folder : {QStringLiteral("/var/lock"), QStringLiteral("/run/lock"), QDir::tempPath()})
        EXPECT_FALSE(QDir(folder).exists(QString::fromStdString(lockName))) << folder.toStdString();

    EXPECT_THROW(port_.SetCommPort("ttyACM0"), PortError);
    EXPECT_THROW(port_.SetPortOpen(true), PortError);
}

TEST_F(QtSerialPortOnPty, ADeviceThatVanishesFailsEveryOperationButTheClosing) {
    OpenPort(port_, pty_.slavePath, kSettings300);
    EXPECT_EQ(port_.Input(), "");  // never blocks
    test::WriteAll(pty_.master, "last words");
    // Arriving input ends a wait for it: a wait that runs its full time answers false.
    ASSERT_TRUE(CurrentWaitContext().Sleep(10000, true));
    ::close(std::exchange(pty_.master, -1));  // the device goes away, as an unplugged module does
    EXPECT_EQ(port_.Input(), "last words");
    EXPECT_THROW(port_.Input(), PortError);
    EXPECT_THROW(port_.Output("GETSN\r"), PortError);
    EXPECT_NO_THROW(port_.SetPortOpen(false));
    EXPECT_FALSE(port_.PortOpen());
    EXPECT_THROW(port_.Input(), PortError);
}

}  // namespace
}  // namespace sb
