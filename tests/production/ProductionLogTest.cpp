#include "production/ProductionLog.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "../helpers/TempFolder.h"

namespace sb {
namespace {

using nlohmann::json;
using test::TempFolder;

ModuleRecord ARecord() {
    ModuleRecord r;
    r.Time = UtcTimeText(1715933702345);
    r.Port = "ttyACM3";
    r.UsbSerial = "SB0001";
    r.Attempt = 2;
    r.SN = "Caf\xE9";  // a module answers in bytes
    r.PVer = "1.02.03";
    r.FirmwareFile = "fw/main.cod";
    r.FirmwareSize = 5000;
    r.FirmwareSha256 = std::string(64, 'a');
    r.Result = ModuleResult::NotDownloaded;
    r.Detail = "CommPort Error\r\nInput/output error";
    r.XmodemResult = -4;
    r.Seconds = 2.34567;
    r.ProgramVersion = "servicebay-cli 0.1.0";
    return r;
}

TEST(ProductionLog, LineIsOneJsonObjectOfTheRecord) {
    const std::string line = LogLine(ARecord());
    ASSERT_EQ(line.find('\n'), line.size() - 1);
    const json read = json::parse(line);
    EXPECT_EQ(read["time"], "2024-05-17T08:15:02.345Z");
    EXPECT_EQ(read["port"], "ttyACM3");
    EXPECT_EQ(read["usb_serial"], "SB0001");
    EXPECT_EQ(read["attempt"], 2);
    EXPECT_EQ(read["SN"], "Caf\xC3\xA9");
    EXPECT_TRUE(read["PName"].is_null());
    EXPECT_EQ(read["PVer"], "1.02.03");
    EXPECT_EQ(read["firmware_file"], "fw/main.cod");
    EXPECT_EQ(read["firmware_size"], 5000);
    EXPECT_EQ(read["firmware_sha256"], std::string(64, 'a'));
    EXPECT_EQ(read["result"], "not downloaded");
    EXPECT_EQ(read["detail"], "CommPort Error\r\nInput/output error");
    EXPECT_EQ(read["xmodem_result"], -4);
    EXPECT_EQ(read["bytes_programmed"], 0);
    EXPECT_DOUBLE_EQ(read["seconds"].get<double>(), 2.346);
    EXPECT_TRUE(read["record_number"].is_null());
    EXPECT_EQ(read["program"], "servicebay-cli 0.1.0");
}

TEST(ProductionLog, AppendsWholeLinesBehindWhatIsThere) {
    TempFolder folder;
    const std::string path = folder.File("line.log");
    TempFolder::Write(path, "{\"earlier\": true}\n");
    // Two programs on one file, each line long enough to need many pages:
    // every line must stand whole, none cut into another.
    constexpr int kLines = 300;
    int start[2];
    ASSERT_EQ(::pipe(start), 0);
    pid_t writers[2];
    for (const char fill : {'x', 'y'}) {
        pid_t& writer = writers[fill - 'x'];
        writer = ::fork();
        if (writer == 0) {
            ProductionLog log(path);
            ModuleRecord record = ARecord();
            record.Detail = std::string(20000, fill);
            // Both begin together, when the test closes the pipe.
            ::close(start[1]);
            char none;
            [[maybe_unused]] const auto ignored = ::read(start[0], &none, 1);
            for (int i = 0; i < kLines; ++i) log.Append(record);
            ::_exit(0);
        }
    }
    ::close(start[0]);
    ::close(start[1]);
    for (const pid_t writer : writers) {
        int status = 0;
        ::waitpid(writer, &status, 0);
        ASSERT_EQ(status, 0);
    }
    std::istringstream lines(TempFolder::Read(path));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "{\"earlier\": true}");
    int count = 0;
    for (; std::getline(lines, line); ++count) {
        const json read = json::parse(line, nullptr, false);
        ASSERT_FALSE(read.is_discarded()) << "line " << count << " is cut";
        const std::string detail = read["detail"];
        EXPECT_EQ(detail.find_first_not_of(detail[0]), std::string::npos);
    }
    EXPECT_EQ(count, 2 * kLines);
}

TEST(ProductionLog, RefusesToOpenWhereNoLineCanBeWritten) {
    TempFolder folder;
    for (const std::string& path : {folder.File("missing/line.log"), folder.Path().string(), std::string("/dev/null")})
        EXPECT_THROW(ProductionLog{path}, LogError) << path;
}

}  // namespace
}  // namespace sb
