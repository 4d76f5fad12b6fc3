#include "link/ReadModule.h"

#include <string_view>

#include "config/Catalog.h"
#include "helpers/TrimBlanks.h"
#include "link/CommandSet.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"

namespace sb {
namespace {

struct Exchange {
    std::string_view command;
    std::string DeviceInfo::*field;
    bool trimmed;
};

constexpr Exchange kReading[] = {
    {cmd::GETSN, &DeviceInfo::SN, true},
    {cmd::GETVER, &DeviceInfo::PVer, true},
    {cmd::GETNAME, &DeviceInfo::PName, true},
    {cmd::GETPDATE, &DeviceInfo::PDate, true},
    {cmd::GETVIN, &DeviceInfo::VIN, true},
    {cmd::GETAPPNAME, &DeviceInfo::FWName, true},
    {cmd::GETAPPVER, &DeviceInfo::FWVer, true},
    {cmd::GETHWVER, &DeviceInfo::HWVer, true},
    {cmd::GETAPPCFG, &DeviceInfo::AppConfig, true},
    {cmd::GETINFOFILE, &DeviceInfo::InfoFile, true},
    // Free text of several lines, shown with its blanks and line ends.
    {cmd::GETAPPINFO, &DeviceInfo::AppInfo, false},
};

}  // namespace

std::optional<PortError> ReadModuleInfo(SerialPort& port, StatusText& status, DeviceInfo& info) {
    std::optional<PortError> first;
    for (const auto& exchange : kReading) {
        auto failure = SkipOnPortError([&] {
            const std::string answer = TerminalExecute(std::string(exchange.command), port, status);
            info.*exchange.field = exchange.trimmed ? TrimBlanks(answer) : answer;
        });
        if (failure && !first) first = std::move(failure);
    }
    return first;
}

std::optional<DeviceInfo> ReadModuleCatalog(SerialPort& port, StatusText& status, std::string& reason) {
    DeviceInfo module;
    module.InfoFile = TrimBlanks(TerminalExecute(std::string(cmd::GETINFOFILE), port, status));
    if (!LoadCatalog(module, reason)) return std::nullopt;
    return module;
}

}  // namespace sb
