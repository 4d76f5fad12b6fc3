#pragma once
#include <stdexcept>

namespace sb {

// The data model's limits (texts of 32,767 characters, counts of 16,383, a
// first quotient of 2^31 in NumberToHex) end an operation with this failure.
// Callers meet it like any other failure of the step they run.
struct OverflowError : std::overflow_error {
    using std::overflow_error::overflow_error;
};

}  // namespace sb
