#pragma once
#include <QObject>
#include <QSocketNotifier>
#include <memory>
#include <optional>
#include <string_view>

#include "link/PortSettings.h"
#include "link/SerialPort.h"

namespace sb {

// The serial port on Linux, driven by Qt's event loop.
//
// It opens the device itself rather than through QSerialPort, which applies
// the old speed before the requested one, puts the old settings back on
// close, and refuses to open without a lock file. Here the opening applies
// the requested line settings in one step, holds an flock on the device (so a
// second opening fails, also within one program), raises DTR and sets HUPCL
// so that closing drops it. Arriving input is pulled in at once and announced
// to the current wait; Input hands out that and whatever the system still
// holds. Output writes at once; what the device cannot take now goes out as
// soon as it can.
class QtSerialPort final : public QObject, public SerialPort {
    Q_OBJECT
public:
    explicit QtSerialPort(QObject* parent = nullptr);
    ~QtSerialPort() override;

    void SetCommPort(const std::string& name) override;
    std::string CommPort() const override { return name_; }
    void SetSettings(const std::string& settings) override;
    void SetInputLen(int length) override {}
    void SetRThreshold(int threshold) override {}
    void SetSThreshold(int threshold) override {}
    void SetInBufferSize(int bytes) override;
    void SetOutBufferSize(int bytes) override;
    void SetPortOpen(bool open) override;
    bool PortOpen() const override { return fd_ >= 0; }
    std::string Input() override;
    void Output(const std::string& bytes) override;

    // The device a port name stands for: "ttyACM0" is /dev/ttyACM0, a path stays.
    static std::string DevicePath(const std::string& name);

private:
    void Open();
    void Close();
    void ApplySettings();
    void RequireClosed(const char* what) const;
    void RequireOpen() const;
    void PullInput();
    void PushOutput();
    std::size_t WriteNow(std::string_view bytes);
    void Fail(PortError failure);
    [[noreturn]] void Throw(const std::string& what, int error) const;

    std::string name_;
    PortSettings settings_;
    int fd_ = -1;
    std::string received_;
    std::string unsent_;
    std::optional<PortError> failure_;  // seen by the event loop, thrown by the next Input or Output
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
};

}  // namespace sb
