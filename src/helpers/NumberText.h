#pragma once
#include <string>

namespace sb {

// Reads a number from text: blanks, tabs and line feeds are ignored; an
// optional sign, digits, a fraction and an exponent (E or D); reading stops
// at the first character that cannot continue the number; no number is 0.
// "&h" reads hex digits: up to four are a 16-bit two's complement value,
// five to eight a 32-bit one. More than eight hex digits, or a value beyond
// the range of a double, throw OverflowError.
double ReadNumber(const std::string& text);

// Writes a number with at most 15 significant digits, "." as decimal point,
// and from 1E+15 upward in the form 1.84467440737096E+19; below 0.0001 in the
// form 1E-05.
std::string NumberText(double value);

}  // namespace sb
