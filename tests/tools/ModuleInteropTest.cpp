#include <gtest/gtest.h>
#include <sys/wait.h>

#include "FirmwareImage.h"
#include "ModuleProcess.h"

// The boot loader's XMODEM receiver against lrzsz's sx as an independent
// sender, in both check modes.
namespace sb::test {
namespace {

using BootLoaderInterop = ModuleTest;

// sx -k on the open line as its standard input and output; its exit status.
int SendWithSx(const DeviceLine& line, const std::string& file, const std::string& log) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(line.Fd(), 0);
        ::dup2(line.Fd(), 1);
        ::dup2(::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
        // Not the line's non-blocking mode: sx reads with its own time limits.
        ::fcntl(0, F_SETFL, ::fcntl(0, F_GETFL) & ~O_NONBLOCK);
        ::execlp("sx", "sx", "-k", file.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ::fcntl(line.Fd(), F_SETFL, ::fcntl(line.Fd(), F_GETFL) | O_NONBLOCK);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(BootLoaderInterop, KeepsWhatSxSendsPaddedToWholeBlocks) {
    const std::string profile = SampleFile("SampleModule.profile");
    // sx sends 1024-byte blocks and ends with 128-byte ones, each padded
    // with 0x1A; an empty file is the EOT alone; block numbers wrap past 255.
    for (const char* mode : {"crc", "checksum"}) {
        for (const size_t size : {size_t{0}, size_t{1}, size_t{1023}, size_t{2048}, size_t{255 * 1024 + 1}}) {
            const std::string name = std::string(mode) + " " + std::to_string(size);
            const std::string data = RandomBytes(size, static_cast<unsigned>(size));
            TempFolder::Write(folder.File("firmware.cod"), data);
            ModuleProcess module(
                folder, {"--boot", "--profile", profile, "--xmodem", mode, "--firmware-out", folder.File("got")});
            DeviceLine line(module.Device());
            line.Send("\rBOOT\r");
            ASSERT_EQ(SendWithSx(line, folder.File("firmware.cod"), folder.File("sx.log")), 0)
                << name << TempFolder::Read(folder.File("sx.log"));
            EXPECT_EQ(line.Read(5000, 10), "Flash OK\r\n") << name;

            const std::string got = TempFolder::Read(folder.File("got"));
            ASSERT_GE(got.size(), size) << name;
            EXPECT_EQ(got.substr(0, size), data) << name;
            EXPECT_EQ(got.size() % 128, 0u) << name;
            EXPECT_LT(got.size() - size, 1024u) << name;
            EXPECT_EQ(got.find_first_not_of('\x1A', size), std::string::npos) << name;
            EXPECT_EQ(module.State("FirmwareSize"), std::to_string(got.size())) << name;
        }
    }
}

}  // namespace
}  // namespace sb::test
