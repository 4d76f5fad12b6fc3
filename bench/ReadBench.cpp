// servicebay-bench-read [RUNS] [traced]: the read of a module that answers at
// once; "traced" reads through the wire trace into a ring, as the window does.
// A thread plays the module on a pseudo-terminal's master: for each command
// line it writes the echo, LF, an answer and the prompt in one write. The
// program opens the slave as "Read info" does, waits the 500 ms behind the
// opening and times the eleven exchanges; it prints, per run, the
// milliseconds of the exchanges and of the whole read from the opening on.
// The terminal's pacing sets the figure: an answer that comes while the
// first poll of the echo stage waits is taken when that poll's 10 ms are
// over, so an exchange of an instant module lasts one poll.
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "config/Types.h"
#include "helpers/Waiting.h"
#include "link/PortSettings.h"
#include "link/QtSerialPort.h"
#include "link/ReadModule.h"
#include "support/TracingPort.h"
#include "ui/QtWaitContext.h"

namespace {

using Clock = std::chrono::steady_clock;

// Answers every command line until told to stop.
void PlayModule(int master, const std::atomic<bool>& stop) {
    std::string pending;
    while (!stop) {
        pollfd p{master, POLLIN, 0};
        if (::poll(&p, 1, 20) <= 0) continue;
        char chunk[4096];
        const ssize_t n = ::read(master, chunk, sizeof chunk);
        if (n <= 0) continue;
        pending.append(chunk, static_cast<size_t>(n));
        for (size_t cr; (cr = pending.find('\r')) != std::string::npos;) {
            const std::string line = pending.substr(0, cr);
            pending.erase(0, cr + 1);
            const std::string reply = line + "\r\nanswer to " + line + "\r\n> ";
            if (::write(master, reply.data(), reply.size()) < 0) return;
        }
    }
}

double Ms(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::atoi(argv[1]) : 7;
    const bool traced = argc > 2 && std::string(argv[2]) == "traced";
    sb::support::WireRing ring(256 * 1024);
    QCoreApplication app(argc, argv);
    sb::ui::QtWaitContext waits;
    sb::SetWaitContext(&waits);

    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) return 1;
    const std::string slave = ::ptsname(master);
    std::atomic<bool> stop{false};
    std::thread module(PlayModule, master, std::cref(stop));

    std::vector<double> exchanges;
    for (int run = 0; run < runs; ++run) {
        std::unique_ptr<sb::SerialPort> owner = std::make_unique<sb::QtSerialPort>();
        if (traced) owner = std::make_unique<sb::support::TracingPort>(std::move(owner), ring);
        sb::SerialPort& port = *owner;
        sb::PlainStatusText status;
        const auto opened = Clock::now();
        sb::OpenPort(port, slave, sb::kSettings300);
        sb::WaitMs(500);
        const auto first = Clock::now();
        sb::DeviceInfo info;
        const auto failure = sb::ReadModuleInfo(port, status, info);
        const auto last = Clock::now();
        port.SetPortOpen(false);
        if (failure || info.AppInfo != "answer to GETAPPINFO") {
            std::fprintf(stderr, "the read failed: %s\n", info.AppInfo.c_str());
            return 2;
        }
        exchanges.push_back(Ms(last - first));
        std::printf("run %d: eleven exchanges %.2f ms, opening to last answer %.2f ms\n", run + 1, Ms(last - first),
                    Ms(last - opened));
    }
    stop = true;
    module.join();
    std::sort(exchanges.begin(), exchanges.end());
    std::printf("%s", traced ? "traced into a ring; " : "");
    std::printf("eleven exchanges, ms: best %.2f, median %.2f, worst %.2f (a poll of 10 ms and more each)\n",
                exchanges.front(), exchanges[exchanges.size() / 2], exchanges.back());
    sb::SetWaitContext(nullptr);
    return 0;
}
