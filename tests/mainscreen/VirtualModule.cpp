#include "VirtualModule.h"

#include <QDir>
#include <fstream>
#include <stdexcept>

#include "../editing/TestCatalog.h"

namespace sb::test {
namespace {

constexpr int kStartMs = 20000;

}  // namespace

VirtualModule::VirtualModule(const std::vector<std::string>& faults) {
    const QDir dir(dir_.path());
    std::ofstream(dir.filePath(QStringLiteral("catalog.xml")).toStdString()) << kTestCatalog;
    std::ofstream(dir.filePath(QStringLiteral("module.profile")).toStdString())
        << "GETSN = SN0042\nGETVER = 1.2.3\nGETNAME = Test module\nGETPDATE = 01.02.2024\n"
           "GETVIN = VIN0000000000042\nGETAPPNAME = TESTAPP\nGETAPPVER = 4.5.6\nGETHWVER = HW 7\n"
           "GETAPPINFO = \"  first line\\r\\nsecond line\"\nGETUID = 0123456789ABCDEF\n"
           "GETAPPCFG = " << kModuleImage << "\nCatalogFile = catalog.xml\n";
    // The screens find the module through this folder.
    qputenv("SERVICEBAY_REGISTRY", dir.filePath(QStringLiteral("registry")).toLocal8Bit());

    QStringList arguments = {QStringLiteral("--profile"), dir.filePath(QStringLiteral("module.profile")),
                             QStringLiteral("--boot"), QStringLiteral("--quiet"), QStringLiteral("--state-file"),
                             dir.filePath(QStringLiteral("state"))};
    for (const std::string& fault : faults) arguments << QString::fromStdString(fault);
    process_.start(QDir(qEnvironmentVariable("SB_BIN_DIR")).filePath(QStringLiteral("servicebay-module")), arguments);
    // The module names its device on a line of its own once it is ready.
    while (!process_.canReadLine()) {
        if (!process_.waitForReadyRead(kStartMs))
            throw std::runtime_error("servicebay-module did not start: " + process_.readAllStandardError().toStdString());
    }
    device_ = process_.readLine().trimmed().toStdString();
}

VirtualModule::~VirtualModule() {
    process_.terminate();
    if (!process_.waitForFinished(kStartMs)) process_.kill();
    process_.waitForFinished(kStartMs);
}

std::string VirtualModule::State(const std::string& key) const {
    std::ifstream state(QDir(dir_.path()).filePath(QStringLiteral("state")).toStdString());
    for (std::string line; std::getline(state, line);)
        if (line.rfind(key + "=", 0) == 0) return line.substr(key.size() + 1);
    return {};
}

}  // namespace sb::test
