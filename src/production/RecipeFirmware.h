#pragma once
#include <string>

#include "production/FirmwareFile.h"
#include "production/Recipe.h"

// A run under a recipe reads its firmware once at its start; those bytes
// must be the ones the recipe pins, also when the file changed since the
// recipe was checked.
namespace sb {

// Why the firmware read is not the recipe's; empty when it is.
std::string RecipeFirmwareDiffers(const Recipe& recipe, const FirmwareFile& firmware);

}  // namespace sb
