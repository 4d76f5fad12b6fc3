#include "helpers/QuoteText.h"

namespace sb {

std::string QuoteText(const std::string& text) { return '"' + text + '"'; }

}  // namespace sb
