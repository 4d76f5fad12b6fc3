#include "link/QtSerialPort.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "helpers/Waiting.h"

namespace sb {
namespace {

// More than any answer of the module; a device that babbles beyond this
// while nobody reads loses the rest, as a full receive buffer would.
constexpr std::string::size_type kInputLimit = 4 * 1024 * 1024;

speed_t SpeedOf(int32_t baudRate) {
    static constexpr struct {
        int32_t rate;
        speed_t speed;
    } kSpeeds[] = {
        {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
        {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
        {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
        {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
        {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
        {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
    };
    for (const auto& entry : kSpeeds)
        if (entry.rate == baudRate) return entry.speed;
    return B0;
}

void SetLine(termios& tio, const PortSettings& settings) {
    ::cfmakeraw(&tio);
    tio.c_iflag &= ~(IXON | IXOFF | IXANY | INPCK);
    tio.c_cflag &= ~(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
    tio.c_cflag |= CLOCAL | CREAD | HUPCL;
    static constexpr tcflag_t kSizes[] = {CS5, CS6, CS7, CS8};
    tio.c_cflag |= kSizes[settings.DataBits - 5];
    switch (settings.Parity) {
        case 'E': tio.c_cflag |= PARENB; break;
        case 'O': tio.c_cflag |= PARENB | PARODD; break;
        case 'M': tio.c_cflag |= PARENB | PARODD | CMSPAR; break;
        case 'S': tio.c_cflag |= PARENB | CMSPAR; break;
        default: break;
    }
    if (settings.StopBits == 2) tio.c_cflag |= CSTOPB;
    // With VMIN 0 a read of a quiet line ends in 0 like a hang-up does; with 1
    // it ends in EAGAIN, and 0 is left to mean that the device has gone.
    tio.c_cc[VMIN] = 1;
    tio.c_cc[VTIME] = 0;
    const speed_t speed = SpeedOf(settings.BaudRate);
    ::cfsetispeed(&tio, speed);
    ::cfsetospeed(&tio, speed);
}

}  // namespace

QtSerialPort::QtSerialPort(QObject* parent) : QObject(parent) {}

QtSerialPort::~QtSerialPort() { Close(); }

std::string QtSerialPort::DevicePath(const std::string& name) {
    return name.find('/') == std::string::npos ? "/dev/" + name : name;
}

void QtSerialPort::Throw(const std::string& what, int error) const {
    throw PortError(what + " " + DevicePath(name_), std::strerror(error));
}

void QtSerialPort::RequireClosed(const char* what) const {
    if (PortOpen())
        throw PortError(std::string("Cannot change the ") + what + " of the open port " + DevicePath(name_),
                        "port already open");
}

void QtSerialPort::RequireOpen() const {
    if (!PortOpen()) throw PortError("The port " + DevicePath(name_) + " is not open", "port closed");
}

void QtSerialPort::SetCommPort(const std::string& name) {
    RequireClosed("name");
    name_ = name;
}

void QtSerialPort::SetSettings(const std::string& settings) {
    const PortSettings parsed = ParsePortSettings(settings);
    if (SpeedOf(parsed.BaudRate) == B0)
        throw PortError("Unsupported baud rate in \"" + settings + "\"", std::strerror(EINVAL));
    settings_ = parsed;
    if (PortOpen()) ApplySettings();
}

void QtSerialPort::SetInBufferSize(int bytes) { RequireClosed("receive buffer"); }
void QtSerialPort::SetOutBufferSize(int bytes) { RequireClosed("send buffer"); }

void QtSerialPort::SetPortOpen(bool open) {
    if (open) {
        if (PortOpen()) throw PortError("The port " + DevicePath(name_) + " is already open", std::strerror(EBUSY));
        Open();
    } else {
        Close();
    }
}

void QtSerialPort::ApplySettings() {
    termios tio{};
    if (::tcgetattr(fd_, &tio) != 0) Throw("Cannot read the line settings of", errno);
    SetLine(tio, settings_);
    if (::tcsetattr(fd_, TCSANOW, &tio) != 0) Throw("Cannot set the line settings of", errno);
}

void QtSerialPort::Open() {
    const std::string path = DevicePath(name_);
    const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) Throw("Cannot open", errno);
    // A lock on the open device, not a lock file: it needs no writable folder
    // and ends with the descriptor, also when the program dies.
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        ::close(fd);
        Throw("Another program holds", error == EWOULDBLOCK ? EBUSY : error);
    }
    fd_ = fd;
    try {
        // The one change of line settings that the module sees.
        ApplySettings();
    } catch (const PortError&) {
        ::close(fd_);
        fd_ = -1;
        throw;
    }
    // The system raises DTR at the opening already; say so once more for a
    // line that was left in hang-up. Pseudo-terminals have no modem lines.
    const int dtr = TIOCM_DTR;
    ::ioctl(fd_, TIOCMBIS, &dtr);

    received_.clear();
    unsent_.clear();
    failure_.reset();
    readable_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, [this] {
        PullInput();
        if (!received_.empty() || failure_) CurrentWaitContext().NotifyInput();
    });
    writable_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Write);
    writable_->setEnabled(false);
    connect(writable_.get(), &QSocketNotifier::activated, this, [this] { PushOutput(); });
}

void QtSerialPort::Close() {
    if (!PortOpen()) return;
    PushOutput();
    readable_.reset();
    writable_.reset();
    // HUPCL: the system drops DTR as the last descriptor closes.
    ::close(fd_);
    fd_ = -1;
    received_.clear();
    unsent_.clear();
}

void QtSerialPort::Fail(PortError failure) {
    failure_ = std::move(failure);
    // A broken device stays readable for ever; nothing more to wait for.
    if (readable_) readable_->setEnabled(false);
    if (writable_) writable_->setEnabled(false);
}

void QtSerialPort::PullInput() {
    if (failure_) return;
    char chunk[65536];
    for (;;) {
        const ssize_t n = ::read(fd_, chunk, sizeof chunk);
        if (n > 0) {
            const auto room = kInputLimit - std::min(kInputLimit, received_.size());
            received_.append(chunk, std::min<std::string::size_type>(room, static_cast<std::size_t>(n)));
            // A short read took all the system held; asking again would only
            // cost a call that fails with EAGAIN, once per block of a transfer.
            if (static_cast<std::size_t>(n) < sizeof chunk) return;
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
        // End of file on a terminal is a hang-up: the device has gone.
        Fail(PortError("Cannot read from " + DevicePath(name_),
                       n == 0 ? "the device has hung up" : std::strerror(errno)));
        return;
    }
}

std::string QtSerialPort::Input() {
    RequireOpen();
    PullInput();
    if (received_.empty() && failure_) throw *failure_;
    std::string taken;
    taken.swap(received_);
    return taken;
}

// As much of bytes as the system takes now; a failure is kept in failure_.
std::size_t QtSerialPort::WriteNow(std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size() && !failure_) {
        const ssize_t n = ::write(fd_, bytes.data() + done, bytes.size() - done);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        Fail(PortError("Cannot write to " + DevicePath(name_), std::strerror(n < 0 ? errno : EIO)));
    }
    return done;
}

void QtSerialPort::PushOutput() {
    if (!unsent_.empty() && !failure_) unsent_.erase(0, WriteNow(unsent_));
    if (writable_) writable_->setEnabled(!unsent_.empty() && !failure_);
}

void QtSerialPort::Output(const std::string& bytes) {
    RequireOpen();
    if (failure_) throw *failure_;
    // Behind what is still waiting, so the order holds; alone, it goes out
    // in one write straight from the caller's bytes, and only what the
    // system did not take is kept.
    if (unsent_.empty()) {
        const std::size_t taken = WriteNow(bytes);
        if (taken < bytes.size()) unsent_.assign(bytes, taken);
    } else {
        unsent_ += bytes;
    }
    PushOutput();
    if (failure_) throw *failure_;
}

}  // namespace sb
