#include "link/SystemInventory.h"

#include <QSerialPortInfo>

namespace sb {
namespace {

std::string UsbIdentity(const QSerialPortInfo& info) {
    if (!info.hasVendorIdentifier() || !info.hasProductIdentifier()) return {};
    return QStringLiteral("USB\\VID_%1&PID_%2\\%3")
        .arg(info.vendorIdentifier(), 4, 16, QLatin1Char('0'))
        .arg(info.productIdentifier(), 4, 16, QLatin1Char('0'))
        .arg(info.serialNumber())
        .toUpper()
        .toLatin1()
        .toStdString();
}

}  // namespace

void SystemInventory::Walk(const std::function<void(const InventoryPort&)>& visit) {
    // A snapshot: a port that vanishes after it is taken is only a name that
    // will not open.
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
        QString description = info.description();
        if (description.isEmpty()) description = info.manufacturer();
        visit(InventoryPort{UsbIdentity(info), info.portName().toLatin1().toStdString(),
                            description.toLatin1().toStdString()});
    }
}

std::unique_ptr<PortInventory> MakePortInventory() {
    std::vector<std::unique_ptr<PortInventory>> sources;
    sources.push_back(std::make_unique<SystemInventory>());
    sources.push_back(std::make_unique<RegistryInventory>());
    return std::make_unique<MergedInventory>(std::move(sources));
}

}  // namespace sb
