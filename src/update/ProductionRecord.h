#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

#include "link/SerialPort.h"
#include "link/StatusText.h"

// The production record: after a successful download the module's identity
// is read, its one-time area is cleared with CLROTP and the UID, and when the
// module confirms, one numbered record is added to sniffer.ini:
//
//   [STAT]            QTY= n          (the number of the last record)
//   [STAT_0000000n]   SN, Ver, Name, Date, UID
//
// The count and the record's section are written in one replacement of the
// file, so after a crash or a pulled cable the file holds the old set of
// records or the new one, never a count without its record. An answer is
// stored as RecordValue gives it, so that a line break in it stays within
// its key. Nothing here throws but std::bad_alloc.
namespace sb {

inline constexpr const char* kStatSection = "STAT";
inline constexpr const char* kStatQuantityKey = "QTY";
inline constexpr const char* kRecordSectionPrefix = "STAT_";
inline constexpr size_t kUidLength = 16;

// Where a record ended; only Written leaves a trace in the file.
enum class RecordEnd {
    Written,
    UidNotSixteen,  // GETUID gave no 16 characters; CLROTP was not sent
    NotCleared,     // the answer to CLROTP holds no "OK"
    SerialError,    // GETSN answered "Error!"; CLROTP had gone out
    WriteFailed,    // sniffer.ini could not be written; WriteFailure says why
    NoNumberLeft,   // QTY is at the end of the 32-bit count (or beyond it); nothing was sent
};

struct ProductionRecord {
    int32_t Number = 0;   // the record's number, QTY + 1
    std::string Section;  // "STAT_" and its number in 8 hex digits
    // The trimmed answers; empty where the exchange's port operation failed.
    std::string SN, Ver, Name, Date, UID, Cleared;
    RecordEnd End = RecordEnd::UidNotSixteen;
    // Why sniffer.ini was not written (End is WriteFailed), as the platform
    // says it: permission denied for a write-protected file.
    std::error_code WriteFailure;
    // The first exchange that failed on the port; the others went on.
    std::optional<PortError> PortFailure;
};

// Why a record ended so, in words: "written", "the UID has not 16 characters", ...
const char* RecordEndText(RecordEnd end);

// An answer as the record stores it: a backslash doubled, a carriage return
// written as \r and a line feed as \n, so that every value is one line.
std::string RecordValue(const std::string& answer);

// The record on the open port of a successful run. Shows no message: a
// record that stops leaves only the last status text of its exchanges.
ProductionRecord WriteProductionRecord(SerialPort& port, StatusText& status, const std::string& iniPath);

}  // namespace sb
