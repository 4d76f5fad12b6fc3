#include "VirtualModule.h"

#include <QDir>
#include <QFile>
#include <QTextStream>
#include <stdexcept>

#include "TestCatalog.h"

namespace sb::test {
namespace {

constexpr int kStartMs = 20000;

void Write(const QString& path, const std::string& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), static_cast<qint64>(text.size())) < 0)
        throw std::runtime_error("cannot write " + path.toStdString());
}

std::string ModuleProgram() {
    const QByteArray bin = qgetenv("SB_BIN_DIR");
    if (bin.isEmpty()) throw std::runtime_error("SB_BIN_DIR is not set");
    return QDir(QString::fromLocal8Bit(bin)).filePath(QStringLiteral("servicebay-module")).toStdString();
}

}  // namespace

VirtualModule::VirtualModule(const std::vector<std::string>& faults) {
    const QDir dir(dir_.path());
    Write(dir.filePath(QStringLiteral("catalog.xml")), kTestCatalog);
    Write(dir.filePath(QStringLiteral("module.profile")),
          "GETSN = SN0042\nGETVER = 1.2.3\nGETNAME = Test module\nGETPDATE = 01.02.2024\n"
          "GETVIN = VIN0000000000042\nGETAPPNAME = TESTAPP\nGETAPPVER = 4.5.6\nGETHWVER = HW 7\n"
          "GETAPPINFO = \"  first line\\r\\nsecond line\"\nGETUID = 0123456789ABCDEF\n"
          "GETAPPCFG = " + std::string(kModuleImage) + "\nCatalogFile = catalog.xml\n");
    // The screens find the module through this folder.
    const QString registry = dir.filePath(QStringLiteral("registry"));
    dir.mkpath(registry);
    qputenv("SERVICEBAY_REGISTRY", registry.toLocal8Bit());

    QStringList arguments = {QStringLiteral("--profile"), dir.filePath(QStringLiteral("module.profile")),
                             QStringLiteral("--boot"), QStringLiteral("--quiet"), QStringLiteral("--state-file"),
                             dir.filePath(QStringLiteral("state"))};
    for (const std::string& fault : faults) arguments << QString::fromStdString(fault);
    process_.setProcessChannelMode(QProcess::SeparateChannels);
    process_.start(QString::fromStdString(ModuleProgram()), arguments);
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
    QFile file(QDir(dir_.path()).filePath(QStringLiteral("state")));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QTextStream lines(&file);
    const QString prefix = QString::fromStdString(key) + QLatin1Char('=');
    while (!lines.atEnd()) {
        const QString line = lines.readLine();
        if (line.startsWith(prefix)) return line.mid(prefix.size()).toStdString();
    }
    return {};
}

}  // namespace sb::test
