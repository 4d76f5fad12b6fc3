#include <gtest/gtest.h>

#include <filesystem>

#include "../helpers/TempFolder.h"
#include "update/ChooserPlace.h"
#include "update/FolderListing.h"
#include "update/TransferPace.h"

// The file chooser's decisions without a screen, and the pace beside the
// update screen's progress bar.
namespace sb {
namespace {

using test::TempFolder;

TEST(FolderListing, DriveIsTheLongestMountPointAboveThePath) {
    const std::vector<std::string> mounts = {"/", "/media/usb", "/media/usb2", "/home"};
    const struct {
        const char* path;
        const char* drive;
    } cases[] = {
        {"/", "/"},
        {"/media/usb", "/media/usb"},
        {"/media/usb/fw/x", "/media/usb"},
        {"/media/usb2/fw", "/media/usb2"},
        {"/media/usbstick", "/"},  // a name that only begins like a mount point
        {"/homes/a", "/"},
        {"/home/a", "/home"},
    };
    for (const auto& c : cases) EXPECT_EQ(MountPointOf(c.path, mounts), c.drive) << c.path;

    // A new drive keeps the folder when it lies on it, else goes to its top.
    EXPECT_EQ(FolderOnDrive("/home/a/fw", "/home", mounts), "/home/a/fw");
    EXPECT_EQ(FolderOnDrive("/home/a/fw", "/media/usb", mounts), "/media/usb");
    EXPECT_EQ(FolderOnDrive("/media/usb/fw", "/", mounts), "/");
}

TEST(FolderListing, PatternsMatchInEitherCaseAndSeveralBySemicolon) {
    const struct {
        const char* name;
        const char* pattern;
        bool match;
    } cases[] = {
        {"fw.cod", "*.cod", true},      {"FW.COD", "*.cod", true},   {"fw.cod.bak", "*.cod", false},
        {"fw.bin", "*.cod;*.bin", true}, {"fw.txt", "*.cod;*.bin", false}, {".fw.cod", "*.cod", false},
        {"a1.cod", "a?.cod", true},     {"notes", "*", true},
    };
    for (const auto& c : cases) EXPECT_EQ(MatchesFilePattern(c.name, c.pattern), c.match) << c.name << " " << c.pattern;
}

TEST(FolderListing, AClickedFileAlwaysGetsTheSeparator) {
    EXPECT_EQ(ChosenFile("/media/usb", "fw.cod"), "/media/usb/fw.cod");
    EXPECT_EQ(ChosenFile("/", "fw.cod"), "//fw.cod");
}

TEST(ChooserPlace, MissingKeysFallBackAndAWriteKeepsTheOrder) {
    TempFolder folder;
    const std::string ini = folder.File("sniffer.ini");
    const ChooserPlace missing = ReadChooserPlace(ini, "/opt/servicebay");
    EXPECT_EQ(missing.Dir, "/opt/servicebay");
    EXPECT_EQ(missing.Drive, "/opt/servicebay");
    EXPECT_EQ(missing.Path, "/opt/servicebay");

    TempFolder::Write(ini, "[STAT]\r\nQTY= 3\r\n[frmload]\r\nPATH=/old\r\n");
    ASSERT_TRUE(WriteChooserPlace({"/media/usb/fw", "/media/usb", "/media/usb/fw2"}, ini));
    const ChooserPlace read = ReadChooserPlace(ini, "/opt/servicebay");
    EXPECT_EQ(read.Dir, "/media/usb/fw");
    EXPECT_EQ(read.Drive, "/media/usb");
    EXPECT_EQ(read.Path, "/media/usb/fw2");
    const std::string text = TempFolder::Read(ini);
    EXPECT_NE(text.find("QTY= 3"), std::string::npos);
    EXPECT_LT(text.find("DIR="), text.find("DRIVE="));
}

TEST(TransferPace, RateAndTimeLeftFromTheAcknowledgedBytes) {
    const struct {
        XmodemProgress progress;
        double seconds;
        double share, rate, left;
        const char* rateText;
        const char* leftText;
    } cases[] = {
        {{0, 0, 4096}, 0, 0, 0, -1, "0.0 kB/s", "0:00 left"},
        {{1, 1024, 4096}, 0.5, 0.25, 2048, 1.5, "2.0 kB/s", "0:02 left"},
        {{4, 4096, 4096}, 2, 1, 2048, 0, "2.0 kB/s", "0:00 left"},
        {{1, 1000, 130000}, 1, 1000.0 / 130000, 1000, 129, "1.0 kB/s", "2:09 left"},
        {{0, 0, 0}, 0, 1, 0, -1, "0.0 kB/s", "0:00 left"},  // an empty file
    };
    for (const auto& c : cases) {
        const TransferPace pace = PaceOf(c.progress, c.seconds);
        EXPECT_DOUBLE_EQ(pace.Share, c.share) << c.progress.Bytes;
        EXPECT_DOUBLE_EQ(pace.BytesPerSecond, c.rate) << c.progress.Bytes;
        EXPECT_DOUBLE_EQ(pace.SecondsLeft, c.left) << c.progress.Bytes;
        EXPECT_EQ(RateText(pace.BytesPerSecond), c.rateText) << c.progress.Bytes;
        EXPECT_EQ(TimeLeftText(pace.SecondsLeft), c.leftText) << c.progress.Bytes;
    }
}

}  // namespace
}  // namespace sb
