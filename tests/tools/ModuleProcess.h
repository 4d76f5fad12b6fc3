#pragma once
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "../helpers/TempFolder.h"

// servicebay-module of this build as a child process of the test, and the
// device it offers as a test opens it: plain termios, no Qt.
namespace sb::test {

using Clock = std::chrono::steady_clock;

inline long MsSince(Clock::time_point start) {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

// KEY=VALUE lines, as the module's state file and registry entries hold them.
inline std::map<std::string, std::string> KeyValues(const std::string& text) {
    std::map<std::string, std::string> values;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = text.substr(start, end - start);
        const size_t equals = line.find('=');
        if (equals != std::string::npos) values[line.substr(0, equals)] = line.substr(equals + 1);
        start = end + 1;
    }
    return values;
}

// Waits up to timeoutMs, looking every 10 ms, for the condition to hold.
template <typename Condition>
bool Eventually(Condition condition, long timeoutMs = 5000) {
    const auto start = Clock::now();
    while (!condition()) {
        if (MsSince(start) > timeoutMs) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

// The module's device, opened by the test as a serial port is opened.
class DeviceLine {
public:
    explicit DeviceLine(const std::string& path, speed_t speed = B300) {
        fd_ = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (fd_ < 0) return;
        termios tio{};
        ::tcgetattr(fd_, &tio);
        ::cfmakeraw(&tio);
        ::cfsetispeed(&tio, speed);
        ::cfsetospeed(&tio, speed);
        ::tcsetattr(fd_, TCSANOW, &tio);
    }
    ~DeviceLine() { Close(); }
    DeviceLine(const DeviceLine&) = delete;
    DeviceLine& operator=(const DeviceLine&) = delete;

    bool IsOpen() const { return fd_ >= 0; }
    // The module has closed its side: the device is gone. (Its path may
    // already name another program's pseudo-terminal.)
    bool Gone() const {
        pollfd p{fd_, POLLIN, 0};
        return ::poll(&p, 1, 0) > 0 && (p.revents & (POLLHUP | POLLERR)) != 0;
    }
    int Fd() const { return fd_; }
    void Close() {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
    }

    void Send(const std::string& bytes) const {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::write(fd_, bytes.data() + done, bytes.size() - done);
            if (n > 0)
                done += static_cast<size_t>(n);
            else
                Wait(POLLOUT, 50);
        }
    }

    // What comes within timeoutMs; stops early once `enough` bytes are in.
    std::string Read(long timeoutMs, size_t enough = std::string::npos) const {
        std::string got;
        const auto start = Clock::now();
        while (got.size() < enough && MsSince(start) < timeoutMs) {
            char chunk[4096];
            const ssize_t n = ::read(fd_, chunk, sizeof chunk);
            if (n > 0)
                got.append(chunk, static_cast<size_t>(n));
            else if (n < 0 && errno != EAGAIN)
                break;  // the device has gone
            else
                Wait(POLLIN, 10);
        }
        return got;
    }

    // The reply to one command line: everything up to the first prompt at
    // the end, or what came in timeoutMs.
    std::string Exchange(const std::string& line, long timeoutMs = 3000) const {
        Send(line);
        std::string got;
        const auto start = Clock::now();
        while (MsSince(start) < timeoutMs && !(got.size() >= 4 && got.compare(got.size() - 4, 4, "\r\n> ") == 0))
            got += Read(20, 1);
        return got;
    }

    // The bytes that come until the line has been quiet for quietMs, grouped
    // into bursts that were quiet for gapMs between them.
    std::vector<std::string> Bursts(long gapMs, long quietMs) const {
        std::vector<std::string> bursts;
        auto last = Clock::now();
        while (MsSince(last) < quietMs) {
            const std::string got = Read(5);
            if (got.empty()) continue;
            if (bursts.empty() || MsSince(last) > gapMs) bursts.emplace_back();
            bursts.back() += got;
            last = Clock::now();
        }
        return bursts;
    }

private:
    void Wait(short events, int ms) const {
        pollfd p{fd_, events, 0};
        ::poll(&p, 1, ms);
    }

    int fd_ = -1;
};

// One servicebay-module, started with the arguments given and a state file
// and a link in the test's folder; its registry is the folder's too. It is
// stopped with SIGTERM at the end of the test.
class ModuleProcess {
public:
    ModuleProcess(const TempFolder& folder, const std::vector<std::string>& args)
        : statePath_(folder.File("module.state")), linkPath_(folder.File("module.link")) {
        int out[2];
        if (::pipe2(out, O_CLOEXEC) != 0) return;
        std::vector<std::string> all = {Program(), "--state-file", statePath_, "--link", linkPath_};
        all.insert(all.end(), args.begin(), args.end());
        const std::string errPath = folder.File("module.err");
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(out[1], 1);
            const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
            ::dup2(err, 2);
            std::vector<char*> argv;
            for (std::string& arg : all) argv.push_back(arg.data());
            argv.push_back(nullptr);
            ::execv(argv[0], argv.data());
            ::_exit(127);
        }
        ::close(out[1]);
        out_ = out[0];
        device_ = NextDevice();
    }
    ~ModuleProcess() {
        Stop();
        if (out_ >= 0) ::close(out_);
    }
    ModuleProcess(const ModuleProcess&) = delete;
    ModuleProcess& operator=(const ModuleProcess&) = delete;

    static std::string Program() { return std::string(std::getenv("SB_BIN_DIR")) + "/servicebay-module"; }

    // The device of the first appearance.
    const std::string& Device() const { return device_; }
    const std::string& LinkPath() const { return linkPath_; }

    // The next line on the module's standard output: the device it appears
    // as next; empty when none comes in time.
    std::string NextDevice(long timeoutMs = 5000) {
        const auto start = Clock::now();
        for (;;) {
            const size_t end = lines_.find('\n');
            if (end != std::string::npos) {
                const std::string line = lines_.substr(0, end);
                lines_.erase(0, end + 1);
                return line;
            }
            const long left = timeoutMs - MsSince(start);
            pollfd p{out_, POLLIN, 0};
            if (left <= 0 || ::poll(&p, 1, static_cast<int>(left)) <= 0) return "";
            char chunk[256];
            const ssize_t n = ::read(out_, chunk, sizeof chunk);
            if (n <= 0) return "";
            lines_.append(chunk, static_cast<size_t>(n));
        }
    }

    std::map<std::string, std::string> State() const { return KeyValues(TempFolder::Read(statePath_)); }
    std::string State(const std::string& key) const {
        const auto values = State();
        const auto found = values.find(key);
        return found == values.end() ? "" : found->second;
    }
    bool WaitForState(const std::string& key, const std::string& value, long timeoutMs = 5000) const {
        return Eventually([&] { return State(key) == value; }, timeoutMs);
    }

    // The exit status, or -1 when it has not ended in time.
    int WaitForExit(long timeoutMs = 5000) {
        int status = -1;
        const bool ended = Eventually(
            [&] {
                int raw = 0;
                if (::waitpid(pid_, &raw, WNOHANG) != pid_) return false;
                status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
                return true;
            },
            timeoutMs);
        if (ended) pid_ = -1;
        return status;
    }

    int Stop(int signal = SIGTERM) {
        if (pid_ <= 0) return -1;
        ::kill(pid_, signal);
        const int status = WaitForExit();
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
            pid_ = -1;
        }
        return status;
    }

private:
    std::string statePath_;
    std::string linkPath_;
    pid_t pid_ = -1;
    int out_ = -1;
    std::string lines_;
    std::string device_;
};

// Each test keeps its modules in a registry folder of its own.
class ModuleTest : public ::testing::Test {
protected:
    ModuleTest() { ::setenv("SERVICEBAY_REGISTRY", folder.File("registry").c_str(), 1); }

    // A profile of the test's own, with a small catalog beside it.
    std::string WriteProfile(const std::string& extraLines = "") const {
        TempFolder::Write(folder.File("catalog.xml"), kCatalog);
        TempFolder::Write(folder.File("module.profile"), std::string(kProfile) + extraLines);
        return folder.File("module.profile");
    }

    static constexpr const char* kCatalog =
        "<CFG><OPTS L=\"6\"><O N=\"Id\" S=\"0\" L=\"20\" T=\"INT\"/></OPTS></CFG>\n";
    static constexpr const char* kProfile =
        "# test module\n"
        "GETSN = 00004711\n"
        "GETVER = \" 1.02.03 \"\n"
        "GETNAME = Sniffer\n"
        "GETPDATE = 01.02.2024\n"
        "GETVIN = WVWZZZ1JZXW000001\n"
        "GETAPPNAME = APP\n"
        "GETAPPVER = 2.00.01\n"
        "GETHWVER = HW3\n"
        "GETAPPINFO = Line one\\r\\n  Line two\\x21\n"
        "GETUID = 0123456789ABCDEF\n"
        "CLROTP = OTP cleared OK\n"
        "GETAPPCFG = 0300000000FF\n"
        "CatalogFile = catalog.xml\n"
        "RunAnswer = RUN\\r\\nStarting\\r\\n\n";

    TempFolder folder;
};

}  // namespace sb::test
