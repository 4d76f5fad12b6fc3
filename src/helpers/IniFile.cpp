#include "helpers/IniFile.h"

// Implementation pending.
