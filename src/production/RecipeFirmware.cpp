#include "production/RecipeFirmware.h"

namespace sb {

std::string RecipeFirmwareDiffers(const Recipe& recipe, const FirmwareFile& firmware) {
    if (firmware.Sha256() == recipe.Firmware.Sha256) return {};
    return firmware.Path() + ": its " + OtherSha256(firmware.Sha256(), recipe.Firmware.Sha256);
}

}  // namespace sb
