#include <gtest/gtest.h>

#include <tuple>

#include "../helpers/TempFolder.h"
#include "helpers/IniFile.h"
#include "update/ChooserPlace.h"
#include "update/FolderListing.h"
#include "update/TransferPace.h"

// The file chooser's decisions without a screen, and the pace beside the
// update screen's progress bar.
namespace sb {
namespace {

TEST(FolderListing, DriveIsTheLongestMountPointAboveThePath) {
    const std::vector<std::string> mounts = {"/", "/media/usb/fw", "/media/usb", "/media/usb2", "/home"};
    const std::pair<const char*, const char*> cases[] = {
        {"/", "/"},
        {"/media/usb/fw/x", "/media/usb/fw"},
        {"/media/usb/x", "/media/usb"},
        {"/media/usb2/fw", "/media/usb2"},
        {"/media/usbstick", "/"},  // a name that only begins like a mount point
        {"/home/a", "/home"},
    };
    for (const auto& [path, drive] : cases) EXPECT_EQ(MountPointOf(path, mounts), drive) << path;

    // A new drive keeps the folder when it lies on it, else goes to its top.
    EXPECT_EQ(FolderOnDrive("/home/a/fw", "/home", mounts), "/home/a/fw");
    EXPECT_EQ(FolderOnDrive("/home/a/fw", "/media/usb", mounts), "/media/usb");
}

TEST(FolderListing, PatternsMatchInEitherCaseAndSeveralBySemicolon) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"fw.cod", "*.cod", true},       {"FW.COD", "*.cod", true},        {"fw.cod.bak", "*.cod", false},
        {"fw.bin", "*.cod;*.bin", true}, {"fw.txt", "*.cod;*.bin", false}, {".fw.cod", "*.cod", false},
    };
    for (const auto& [name, pattern, match] : cases) EXPECT_EQ(MatchesFilePattern(name, pattern), match) << name;
    // A clicked file always gets the separator.
    EXPECT_EQ(ChosenFile("/", "fw.cod"), "//fw.cod");
}

TEST(ChooserPlace, MissingKeysFallBackAndAWriteKeepsTheRest) {
    test::TempFolder folder;
    const std::string ini = folder.File("sniffer.ini");
    const ChooserPlace missing = ReadChooserPlace(ini, "/opt/servicebay");
    EXPECT_EQ(missing.Dir + missing.Drive + missing.Path, "/opt/servicebay/opt/servicebay/opt/servicebay");

    test::TempFolder::Write(ini, "[STAT]\r\nQTY= 3\r\n[frmload]\r\nPATH=/old\r\n");
    ASSERT_TRUE(WriteChooserPlace({"/media/usb/fw", "/media/usb", "/media/usb/fw2"}, ini));
    const ChooserPlace read = ReadChooserPlace(ini, "/opt/servicebay");
    EXPECT_EQ(read.Dir + " " + read.Drive + " " + read.Path, "/media/usb/fw /media/usb /media/usb/fw2");
    EXPECT_EQ(IniReadValue("STAT", "QTY", "", ini), "3");
}

TEST(TransferPace, RateAndTimeLeftFromTheAcknowledgedBytes) {
    const struct {
        XmodemProgress progress;
        double seconds, share;
        const char* rate;
        const char* left;
    } cases[] = {
        {{0, 0, 4096}, 0, 0, "0.0 kB/s", "0:00 left"},
        {{1, 1024, 4096}, 0.5, 0.25, "2.0 kB/s", "0:02 left"},
        {{1, 1000, 130000}, 1, 1000.0 / 130000, "1.0 kB/s", "2:09 left"},
        {{0, 0, 0}, 0, 1, "0.0 kB/s", "0:00 left"},  // an empty file
    };
    for (const auto& c : cases) {
        const TransferPace pace = PaceOf(c.progress, c.seconds);
        EXPECT_DOUBLE_EQ(pace.Share, c.share) << c.progress.Bytes;
        EXPECT_EQ(RateText(pace.BytesPerSecond), c.rate) << c.progress.Bytes;
        EXPECT_EQ(TimeLeftText(pace.SecondsLeft), c.left) << c.progress.Bytes;
    }
}

}  // namespace
}  // namespace sb
