#include "production/ProductionLog.h"

#include <gtest/gtest.h>

#include <latch>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "../helpers/TempFolder.h"

namespace sb {
namespace {

using test::TempFolder;

// A module answers in bytes: its SN holds one beyond ASCII.
const ModuleRecord kRecord{.Time = UtcTimeText(1715933702345), .Port = "ttyACM3", .UsbSerial = "SB0001", .Attempt = 2,
                           .SN = "Caf\xE9", .PName = {}, .PVer = "1.02.03", .FirmwareFile = "fw/main.cod",
                           .FirmwareSize = 5000, .FirmwareSha256 = "9f43", .Result = ModuleResult::NotDownloaded,
                           .Detail = "CommPort Error\r\nInput/output error", .XmodemResult = -4, .Seconds = 2.34567,
                           .RecordNumber = {}, .ProgramVersion = "servicebay-cli 0.1.0"};

TEST(ProductionLog, LineIsOneJsonObjectOfTheRecord) {
    EXPECT_EQ(LogLine(kRecord),
              R"({"time":"2024-05-17T08:15:02.345Z","port":"ttyACM3","usb_serial":"SB0001","attempt":2,"SN":"Caf)"
              "\xC3\xA9"
              R"(","PName":null,"PVer":"1.02.03","firmware_file":"fw/main.cod","firmware_size":5000,)"
              R"("firmware_sha256":"9f43","result":"not downloaded","detail":"CommPort Error\r\nInput/output error",)"
              R"("xmodem_result":-4,"bytes_programmed":0,"seconds":2.346,"record_number":null,)"
              R"("program":"servicebay-cli 0.1.0"})"
              "\n");
}

TEST(ProductionLog, AppendsWholeLinesBehindWhatIsThere) {
    TempFolder folder;
    const std::string path = folder.File("line.log");
    TempFolder::Write(path, "{\"earlier\": true}\n");
    // Two logs on one file, as two programs have them, each line long enough
    // to need many pages: every line must stand whole, none cut into another.
    std::latch start(2);
    const auto writer = [&](char fill) {
        ProductionLog log(path);
        ModuleRecord record = kRecord;
        record.Detail = std::string(20000, fill);
        start.arrive_and_wait();
        for (int i = 0; i < 300; ++i) log.Append(record);
    };
    {
        const std::jthread x(writer, 'x'), y(writer, 'y');  // both joined here
    }
    std::istringstream lines(TempFolder::Read(path));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "{\"earlier\": true}");
    int count = 0;
    for (; std::getline(lines, line); ++count)
        ASSERT_FALSE(nlohmann::json::parse(line, nullptr, false).is_discarded()) << "line " << count << " is cut";
    EXPECT_EQ(count, 600);
}

TEST(ProductionLog, RefusesToOpenWhereNoLineCanBeWritten) {
    TempFolder folder;
    for (const std::string& path : {folder.File("missing/line.log"), folder.Path().string(), std::string("/dev/null")})
        EXPECT_THROW(ProductionLog{path}, LogError) << path;
}

}  // namespace
}  // namespace sb
