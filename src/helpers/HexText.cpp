#include "helpers/HexText.h"

// Implementation pending.
