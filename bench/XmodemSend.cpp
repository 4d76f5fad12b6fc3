// servicebay-bench-xmodem-send PORT FILE: the XMODEM-1K sender alone on a
// port, without the boot command and the report around it, for the
// comparison with lrzsz in xmodem_vs_lrzsz.sh. It waits for the receiver's
// handshake as the update run does and prints the result and the seconds
// from the handshake to the acknowledged end.
#include <QCoreApplication>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include "helpers/BinaryFile.h"
#include "link/QtSerialPort.h"
#include "ui/QtWaitContext.h"
#include "update/Xmodem.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PORT FILE\n", argv[0]);
        return 1;
    }
    QCoreApplication app(argc, argv);
    sb::ui::QtWaitContext waits;
    sb::SetWaitContext(&waits);

    std::string data;
    const int32_t size = sb::ReadBinaryFile(argv[2], data);
    if (size == 0) {
        std::fprintf(stderr, "%s: nothing to send\n", argv[2]);
        return 1;
    }
    sb::QtSerialPort port;
    sb::PlainStatusText status;
    using Clock = std::chrono::steady_clock;
    // The blocks begin as soon as the handshake byte has been taken.
    Clock::time_point handshake;
    const auto noteHandshake = [&](const sb::XmodemProgress& progress) {
        if (progress.Blocks == 0) handshake = Clock::now();
    };
    int32_t result = 0;
    try {
        sb::OpenPort(port, argv[1], sb::kSettings115200);
        sb::XmodemInit(port, status, noteHandshake);
        result = sb::XmodemTransmit(data, size);
        port.SetPortOpen(false);
    } catch (const sb::PortError& failure) {
        std::fprintf(stderr, "%s: %s\n", failure.what(), failure.reason.c_str());
    }
    const std::chrono::duration<double> took = Clock::now() - handshake;
    sb::SetWaitContext(nullptr);
    std::printf("%d %.3f\n", result, result > 0 ? took.count() : 0.0);
    return result > 0 ? 0 : 2;
}
