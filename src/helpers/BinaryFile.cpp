#include "helpers/BinaryFile.h"

// Implementation pending.
