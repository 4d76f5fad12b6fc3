#pragma once
#include <string>
#include <string_view>

#include "config/Types.h"
#include "configfiles/ConfigCompare.h"

// The checks around a write of a configuration into a module: before it,
// whether the image fits the module; after it, whether the module holds
// what was sent.
namespace sb {

enum class Fit { Fits, WrongLength, UnknownId };

struct FitCheck {
    Fit Verdict = Fit::Fits;
    std::string Message;  // empty when it fits
};

// module: the module's catalog, loaded. An image fits when it has the
// catalog's CfgLen bytes and its Id names one of the catalog's
// configurations; the length is tested first.
FitCheck CheckFit(const DeviceInfo& module, const std::string& image);

struct VerifyResult {
    bool Holds = false;     // the module holds exactly the bytes sent
    bool ReadBack = false;  // the answer was an image of the catalog's length
    // sent (A) against read back (B), the options that differ
    ConfigComparison Differences;
};

// Compares the image sent with the module's answer to GETAPPCFG, under
// the module's catalog.
VerifyResult VerifyWrite(const DeviceInfo& module, const std::string& sent, const std::string& appConfigAnswer);

// Why a write did not verify, naming every option that differs, one a line
// in the form of ComparisonLines, each put in lineForm when one is given (a
// terminal takes them in its safe form); empty when the module holds the
// image.
std::string VerifyMessage(const VerifyResult& result, std::string (*lineForm)(std::string_view) = nullptr);

}  // namespace sb
