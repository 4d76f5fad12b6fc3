#pragma once
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "../helpers/TempFolder.h"

namespace sb::test {

inline std::string FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

inline std::string ShellQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs servicebay-cli of this build (or its copy in binDir) to its end, its
// output kept in folder; shell text in front of it may set up its process.
inline CliRun RunCli(const TempFolder& folder, const std::vector<std::string>& args,
                     const std::string& binDir = FromEnvironment("SB_BIN_DIR"), const std::string& before = "") {
    std::string command = before + ShellQuoted(binDir + "/servicebay-cli");
    for (const std::string& arg : args) command += " " + ShellQuoted(arg);
    const std::string out = folder.File("out");
    const std::string err = folder.File("err");
    command += " >" + ShellQuoted(out) + " 2>" + ShellQuoted(err) + " </dev/null";
    const int raw = std::system(command.c_str());
    CliRun run;
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = TempFolder::Read(out);
    run.err = TempFolder::Read(err);
    return run;
}

}  // namespace sb::test
