#pragma once
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "../helpers/TempFolder.h"
#include "../link/PtyPair.h"

// servicebay-module of this build as a child process of the test, and the
// device it offers as a test opens it: plain termios, no Qt.
namespace sb::test {

// The module's device, opened by the test as a serial port is opened.
class DeviceLine {
public:
    explicit DeviceLine(const std::string& path, speed_t speed = B300) {
        fd_ = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        termios tio{};
        ::tcgetattr(fd_, &tio);
        ::cfmakeraw(&tio);
        ::cfsetispeed(&tio, speed);
        ::cfsetospeed(&tio, speed);
        ::tcsetattr(fd_, TCSANOW, &tio);
    }
    ~DeviceLine() { ::close(fd_); }
    DeviceLine(const DeviceLine&) = delete;
    DeviceLine& operator=(const DeviceLine&) = delete;

    int Fd() const { return fd_; }

    void Send(const std::string& bytes) const { WriteAll(fd_, bytes); }

    // What comes within timeoutMs, up to `enough` bytes and never more, so
    // that what a next step expects stays on the line.
    std::string Read(long timeoutMs, size_t enough = std::string::npos) const {
        std::string got;
        for (const auto start = Clock::now(); got.size() < enough && MsSince(start) < timeoutMs;) {
            char chunk[4096];
            const ssize_t n = ::read(fd_, chunk, std::min(sizeof chunk, enough - got.size()));
            if (n > 0) got.append(chunk, static_cast<size_t>(n));
            if (n < 0 && errno != EAGAIN) break;  // the device has gone
            if (n <= 0) WaitFor(fd_, POLLIN, 10);
        }
        return got;
    }

private:
    int fd_ = -1;
};

// One servicebay-module, started with the arguments given and a state file
// and a link in the test's folder. It is stopped with SIGTERM at the end.
class ModuleProcess {
public:
    ModuleProcess(const TempFolder& folder, const std::vector<std::string>& args)
        : ModuleProcess(folder, "module", args) {}
    // Several modules in one folder, each with files of its own name.
    ModuleProcess(const TempFolder& folder, const std::string& name, const std::vector<std::string>& args)
        : statePath_(folder.File(name + ".state")), linkPath_(folder.File(name + ".link")) {
        std::vector<std::string> all = {Program(), "--state-file", statePath_, "--link", linkPath_};
        all.insert(all.end(), args.begin(), args.end());
        const std::string errPath = folder.File(name + ".err");
        pid_ = ::fork();
        if (pid_ == 0) {
            const int log = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
            ::dup2(log, 1);
            ::dup2(log, 2);
            std::vector<char*> argv;
            for (std::string& arg : all) argv.push_back(arg.data());
            argv.push_back(nullptr);
            ::execv(argv[0], argv.data());
            ::_exit(127);
        }
        device_ = NextDevice();
    }
    ~ModuleProcess() { Stop(); }
    ModuleProcess(const ModuleProcess&) = delete;
    ModuleProcess& operator=(const ModuleProcess&) = delete;

    static std::string Program() { return std::string(std::getenv("SB_BIN_DIR")) + "/servicebay-module"; }

    // The device of the first appearance.
    const std::string& Device() const { return device_; }
    const std::string& LinkPath() const { return linkPath_; }

    // The device the module appears as next, by its state file; empty when
    // none comes in time (a first start on a loaded machine may be slow).
    std::string NextDevice(long timeoutMs = 20000) {
        std::string device;
        if (!Eventually([&] { return !(device = State("Device")).empty() && device != last_; }, timeoutMs)) return "";
        return last_ = device;
    }

    // A KEY=VALUE line of the module's state file.
    std::string State(const std::string& key) const {
        const std::string text = "\n" + TempFolder::Read(statePath_);
        const size_t start = text.find("\n" + key + "=");
        if (start == std::string::npos) return "";
        const size_t value = start + key.size() + 2;
        return text.substr(value, text.find('\n', value) - value);
    }
    bool WaitForState(const std::string& key, const std::string& value, long timeoutMs = 5000) const {
        return Eventually([&] { return State(key) == value; }, timeoutMs);
    }

    // Ends the module with SIGTERM (SIGKILL after 5 s); its exit status, or -1.
    int Stop() {
        int raw = 0;
        if (pid_ <= 0) return -1;
        ::kill(pid_, SIGTERM);
        const bool ended = Eventually([&] { return ::waitpid(pid_, &raw, WNOHANG) == pid_; });
        if (!ended) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        pid_ = -1;
        return !ended ? -1 : WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    }

private:
    std::string statePath_;
    std::string linkPath_;
    pid_t pid_ = -1;
    std::string device_;
    std::string last_;
};

// Each test keeps its modules in a registry folder of its own.
class ModuleTest : public ::testing::Test {
protected:
    ModuleTest() { ::setenv("SERVICEBAY_REGISTRY", folder.File("registry").c_str(), 1); }

    // The sample module of the project, with its catalog beside it.
    static std::string SampleFile(const std::string& name) {
        return std::string(std::getenv("SB_SOURCE_DIR")) + "/data/" + name;
    }

    TempFolder folder;
};

}  // namespace sb::test
