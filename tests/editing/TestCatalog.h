#pragma once

// A small catalog of eight-byte images for the tests of the editing:
//   0 Type    INT  bits 0-31, list Base (0) and Car (4): the configuration's Id
//   1 Limit   INT  bits 32-39, 10..20, units " km/h", no list
//   2 Mode    INT  bits 40-43, list Off, On, Auto
//   3 Lamps   BITFIELD bits 44-47: Low (01), High (02), Both (03: sets both,
//             and when switched off clears High alone)
//   4 Key     BIN  bits 48-55
//   5 Tag     STR  bits 56-63
//   6 Hidden  INT  bits 56-63, never visible
// "Module" (Id 0) shows options 0-5 and locks none; "Odd" says Id 9 but its
// data begin with 5; "Car" (Id 4) locks Mode and Lamps. The C with I "0" is
// the module's configuration of the offline run.
namespace sb::test {

inline constexpr const char* kTestCatalog = R"(<?xml version="1.0"?>
<CFG><OPTS L="8">
 <O N="Type" S="0" L="20" T="INT"><L V="0">Base</L><L V="4">Car</L></O>
 <O N="Limit" S="20" L="8" T="INT" m="10" M="20" U=" km/h"/>
 <O N="Mode" S="28" L="4" T="INT"><L V="0">Off</L><L V="1">On</L><L V="2">Auto</L></O>
 <O N="Lamps" S="2C" L="4" T="BITFIELD">
  <L V="01" M="01" RV="00">Low</L><L V="02" M="02" RV="00">High</L><L V="03" M="03" RM="02" RV="00">Both</L>
 </O>
 <O N="Key" S="30" L="8" T="BIN"/>
 <O N="Tag" S="38" L="8" T="STR"/>
 <O N="Hidden" S="38" L="8" T="INT"/>
</OPTS><PDF>
 <C I="0" N="Module" V="3F" D="0" H="as the module left the factory">00000000 0F 21 41 5A</C>
 <C I="9" N="Odd">05000000 00 00 00 00</C>
 <C I="4" N="Car" V="3F" D="0C" H="for cars">04000000 14 02 00 58</C>
</PDF></CFG>
)";

// The image of "Module" as hex text.
inline constexpr const char* kModuleImage = "000000000F21415A";
inline constexpr const char* kCarImage = "0400000014020058";

}  // namespace sb::test
