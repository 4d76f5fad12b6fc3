#pragma once
#include <string>

// A large catalog document for benchmarks: options of every type in turn
// (INT, BIN, STR, BITFIELD and one type the tool doesn't know), packed side
// by side behind the Id and crossing byte borders, each with its list of
// values or members, and predefined configurations whose Ids are 1, 2, ...
// The same shape gives the same text on every run.
namespace sb::bench {

struct CatalogShape {
    int options = 5000;
    int cfgLen = 16383;  // bytes of an image
    int valuesPerOption = 8;
    int configurations = 4;
};

std::string GenerateCatalog(const CatalogShape& shape = {});

}  // namespace sb::bench
