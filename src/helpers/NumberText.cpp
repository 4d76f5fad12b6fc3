#include "helpers/NumberText.h"

// Implementation pending.
