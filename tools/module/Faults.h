#pragma once
#include <set>
#include <string>

// The ways the module can be told to misbehave, each one a switch of the
// command line. Every switch is off by default: the module then answers as
// a healthy one does.
namespace sb::module {

// How an answer travels on the wire.
struct FramingFaults {
    int echoPieces = 1;       // the echo in this many pieces
    int echoDelayMs = 0;      // before the echo
    int answerDelayMs = 0;    // between the echo and the rest
    int answerPieces = 1;     // what follows the echo (LF, answer, prompt), in this many pieces
    int pieceGapMs = 100;     // between two pieces
    std::string noise;        // in front of the echo
    bool noLineFeed = false;  // the echo's CR without the LF behind it
    std::string afterPrompt;  // behind the prompt
};

// What the answers say.
struct AnswerFaults {
    bool errorAll = false;          // "Error!" to every command
    std::set<std::string> errorOn;  // "Error!" to these commands
    bool lowerCaseOk = false;       // "ok" to SETAPPCFG
    bool ignoreConfigWrites = false;  // SETAPPCFG answers as usual but the image stays as it was
    bool wrongUid = false;          // GETUID differs from the UID CLROTP checks
    int uidLength = -1;             // GETUID cut or filled to this many characters
    bool catalogBroken = false;     // GETINFOFILE serves the first half of the catalog
    bool catalogMissing = false;    // "Error!" to GETINFOFILE
    int configLength = -1;          // GETAPPCFG cut or filled with zero bytes to this many bytes
};

// What the receiving side of a transfer does.
struct XmodemFaults {
    int cancelAfterBlocks = -1;  // CAN CAN instead of the ACK of the next block
    bool refuseBlocks = false;   // NAK to every block
    bool ignoreEot = false;      // no ACK to EOT
    int vanishAfterBlocks = -1;  // the device goes away behind this many blocks
};

struct ModuleFaults {
    bool silent = false;           // no echo, no answer to any framed command
    int vanishAfterCommands = -1;  // the device goes away when the next command comes
    FramingFaults framing;
    AnswerFaults answers;
    XmodemFaults xmodem;
};

}  // namespace sb::module
