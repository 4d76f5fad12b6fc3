#include "helpers/BitMasks.h"

// Implementation pending.
