#include "production/RecipeFirmware.h"

namespace sb {

std::string RecipeFirmwareDiffers(const Recipe& recipe, const FirmwareFile& firmware) {
    if (firmware.Sha256() == recipe.Firmware.Sha256) return {};
    return firmware.Path() + ": its SHA-256 is " + firmware.Sha256() + "; the recipe gives " + recipe.Firmware.Sha256;
}

}  // namespace sb
