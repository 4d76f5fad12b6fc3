#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CatalogText.h"
#include "config/Catalog.h"

namespace sb::test {
namespace {

const std::string kOneOption = R"(<O N="A" S="0" L="8" T="BIN"/>)";

TEST(CatalogLoad, ReadsTheExampleCatalog) {
    const auto r = Load(CatalogXml(
        "10", R"(<O N="Speed limit" S="2C" L="0A" T="INT" M="12C" U=" km/h"><L V="FF">Off</L></O>)"
              R"(<O N="Hidden"/><O N="Other" T="BIN" L="1"/>)",
        R"(<C I="1234ABCD" V="05" D="04">CDAB3412000000000000000000000000</C>)"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.reason, "");
    const OptionList& options = r.device.Options;
    EXPECT_EQ(options.CfgLen, 16);
    ASSERT_EQ(options.Count(), 3);
    const OptionRec& speed = options.Items[0];
    EXPECT_EQ(speed.Name, "Speed limit");
    EXPECT_EQ(speed.BitPos, 44);
    EXPECT_EQ(speed.BitLen, 10);
    EXPECT_EQ(speed.Type, "INT");
    EXPECT_EQ(speed.MinValue, "00000000");
    EXPECT_EQ(speed.MaxValue, "0000012C");
    EXPECT_EQ(speed.Units, " km/h");
    ASSERT_EQ(speed.Values.Count(), 1);
    const OptValue& off = speed.Values.Items[0];
    EXPECT_EQ(off.Text, "Off");
    EXPECT_EQ(off.Value, "000000FF");
    EXPECT_EQ(off.Mask, "FF3");
    EXPECT_EQ(off.SetValue, "FF");
    EXPECT_EQ(off.SetMask, "FF3");
    EXPECT_EQ(off.ResetValue, "00");
    EXPECT_EQ(off.ResetMask, "FF3");
    EXPECT_EQ(options.Items[1].Name, "Hidden");
    EXPECT_EQ(options.Items[2].Name, "Other");

    ASSERT_EQ(r.device.PredefCfgs.Count(), 1);
    const PredefCfg& cfg = r.device.PredefCfgs.Items[0];
    EXPECT_EQ(cfg.Id, "1234ABCD");
    EXPECT_EQ(cfg.VisibleMask, "05");
    EXPECT_EQ(cfg.DisabledMask, "04");
    EXPECT_EQ(cfg.ExtraMask, "0");
    EXPECT_EQ(cfg.Data, std::string("\xCD\xAB\x34\x12", 4) + std::string(12, '\0'));
    EXPECT_EQ(cfg.Name, "Unnamed configuration 00000000");
    EXPECT_EQ(cfg.Info, "No info about configuration");
}

TEST(CatalogLoad, RefusesWhatTheFormatForbids) {
    struct Case {
        const char* what;
        std::string xml;
        bool parserReason;
    };
    const std::vector<Case> cases = {
        {"not well-formed", "<CFG><OPTS L=\"5\"></CFG>", true},
        {"empty text", "", true},
        {"two top-level elements", CatalogXml("5", kOneOption, Cfg5()) + "<CFG/>", true},
        {"CfgLen 4 with complete options", CatalogXml("4", kOneOption, "<C>00000000</C>"), false},
        {"OPTS without L", "<CFG><OPTS>" + kOneOption + "</OPTS><PDF>" + Cfg5() + "</PDF></CFG>", false},
        {"no OPTS", "<CFG><PDF>" + Cfg5() + "</PDF></CFG>", false},
        {"root other than CFG", "<CATALOG><OPTS L=\"5\"/><PDF>" + Cfg5() + "</PDF></CATALOG>", false},
        {"CfgLen beyond 32-bit signed", CatalogXml("80000005", kOneOption, Cfg5()), false},
        {"entry without V", CatalogXml("5", R"(<O T="INT"><L>Off</L></O>)", Cfg5()), false},
        {"entry with V of no hex", CatalogXml("5", R"(<O T="INT"><L V="0x">Off</L></O>)", Cfg5()), false},
        {"entry with V not hex", CatalogXml("5", R"(<O T="INT"><L V="1G">Off</L></O>)", Cfg5()), false},
        {"data one digit too long", CatalogXml("5", kOneOption, Cfg5("", "00000000000")), false},
        {"data one byte short", CatalogXml("5", kOneOption, Cfg5("", "00000000")), false},
        {"second configuration short", CatalogXml("5", kOneOption, Cfg5() + Cfg5("", "00")), false},
        {"no PDF", "<CFG><OPTS L=\"5\">" + kOneOption + "</OPTS></CFG>", false},
        {"PDF without C", CatalogXml("5", kOneOption, ""), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto r = Load(c.xml);
        EXPECT_FALSE(r.ok);
        EXPECT_EQ(!r.reason.empty(), c.parserReason) << r.reason;
    }
    // The smallest image the format accepts.
    EXPECT_TRUE(Load(CatalogXml("5", kOneOption, Cfg5())).ok);
}

TEST(CatalogLoad, ReasonSaysWhereTheDocumentBreaks) {
    const auto r = Load("<CFG>\n<OPTS L=\"5\">\n</CFG>");
    EXPECT_FALSE(r.ok);
    EXPECT_NE(r.reason.find("(line 3, column"), std::string::npos) << r.reason;
}

TEST(CatalogLoad, CompletesIntLimits) {
    struct Case {
        std::string attributes;
        const char* min;
        const char* max;
    };
    const std::vector<Case> cases = {
        {R"(T="INT" L="20")", "00000000", "FFFFFFFF"},
        {R"(T="INT" L="3")", "00000000", "00000007"},
        {R"(T="INT")", "00000000", "00000000"},
        {R"(T="INT" L="0A" m="5" M="12C")", "00000005", "0000012C"},
        {R"(T="INT" m="123456789A" M="x")", "3456789A", "0000000x"},
        {R"(T="INT" L="21")", "00000000", "FFFFFFFF"},           // 33 bits: the low 32 of 2^33 - 1
        {R"(T="INT" L="40")", "00000000", "00000000"},           // 2^64 - 1 fails in the conversion
        {R"(T="INT" L="7FFFFFFF")", "00000000", "00000000"},     // beyond the number range
        {R"(T="BIN" L="8")", "", ""},
        {R"(T="int" m="1" M="2")", "1", "2"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.attributes);
        const auto r = Load(CatalogXml("5", "<O " + c.attributes + "/>", Cfg5()));
        ASSERT_TRUE(r.ok);
        const OptionRec& option = r.device.Options.Items[0];
        EXPECT_EQ(option.MinValue, c.min);
        EXPECT_EQ(option.MaxValue, c.max);
    }
}

TEST(CatalogLoad, ReadsBitNumbersAsHexInto32BitSignedFields) {
    const std::vector<std::pair<std::string, int32_t>> cases = {
        {"2C", 44}, {"0x2C", 44}, {" 1 0 ", 16}, {"7FFFFFFF", 2147483647}, {"80000000", 0},
        {"FFFFFFFF", 0}, {"", 0},  {"123456789", 0x12345678}, {"zz", 0},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        const auto r = Load(CatalogXml("5", "<O S=\"" + text + "\" L=\"" + text + "\"/>", Cfg5()));
        ASSERT_TRUE(r.ok);
        EXPECT_EQ(r.device.Options.Items[0].BitPos, expected);
        EXPECT_EQ(r.device.Options.Items[0].BitLen, expected);
    }
}

TEST(CatalogLoad, CompletesListEntries) {
    struct Case {
        std::string option;  // attributes of O
        std::string entry;   // attributes of L
        OptValue expected;   // Text left out
    };
    const std::vector<Case> cases = {
        // HexNot of an odd number of digits is empty.
        {R"(T="INT" L="20")", R"(V="1")", {"", "00000001", "FFFFFFFF", "1", "FFFFFFFF", "", "FFFFFFFF"}},
        {R"(T="BITFIELD" L="6")", R"(V="05")", {"", "05", "F3", "05", "F3", "FA", "F3"}},
        {R"(T="BITFIELD" L="1")", R"(V="1")", {"", "1", "1", "1", "1", "", "1"}},
        {R"(T="BITFIELD" L="2")", R"(V="1")", {"", "1", "3", "1", "3", "", "3"}},
        {R"(T="BITFIELD" L="0F")", R"(V="1")", {"", "1", "FFF7", "1", "FFF7", "", "FFF7"}},
        {R"(T="BITFIELD")", R"(V="01")", {"", "01", "", "01", "", "FE", ""}},
        {R"(T="BITFIELD" L="8")", R"(V="0x04" M="0c" SV=" 0 3" SM="03" RV="0x00" RM="02")",
         {"", "04", "0C", "03", "03", "00", "02"}},
        // An attribute that isn't hex after cleaning counts as absent.
        {R"(T="BIN" L="8")", R"(V="0C" M="G1" SV="-" RM="")", {"", "0C", "FF", "0C", "FF", "F3", "FF"}},
        {R"(T="STR" L="10")", R"(V="4142")", {"", "4142", "FFFF", "4142", "FFFF", "BEBD", "FFFF"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.option + " / " + c.entry);
        const auto r = Load(CatalogXml("5", "<O " + c.option + "><L " + c.entry + ">x</L></O>", Cfg5()));
        ASSERT_TRUE(r.ok);
        const OptValue& v = r.device.Options.Items[0].Values.Items.at(0);
        EXPECT_EQ(v.Value, c.expected.Value);
        EXPECT_EQ(v.Mask, c.expected.Mask);
        EXPECT_EQ(v.SetValue, c.expected.SetValue);
        EXPECT_EQ(v.SetMask, c.expected.SetMask);
        EXPECT_EQ(v.ResetValue, c.expected.ResetValue);
        EXPECT_EQ(v.ResetMask, c.expected.ResetMask);
    }
}

TEST(CatalogLoad, ReadsTextsByteForByte) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"  Off \n\t", "Off"},
        {"Low  beam", "Low  beam"},
        {"<![CDATA[ a<b ]]>", "a<b"},
        {"&amp;&lt;&quot;", "&<\""},
        {"&#233;t&#xE9;", "\xE9t\xE9"},
        {"\xE9t\xE9", "\xE9t\xE9"},
        {"&#8364;", "?"},  // beyond one byte
        {"a<b>b<c>c</c></b>d", "abcd"},
        {"x<!-- note -->y", "xy"},
        {"", ""},
    };
    for (const auto& [content, expected] : cases) {
        SCOPED_TRACE(content);
        const auto r = Load(CatalogXml("5", "<O T=\"BIN\" L=\"8\"><L V=\"01\">" + content + "</L></O>", Cfg5()));
        ASSERT_TRUE(r.ok);
        EXPECT_EQ(r.device.Options.Items[0].Values.Items[0].Text, expected);
    }
    // Attribute values keep their blanks; line breaks in them read as blanks.
    const auto r = Load(CatalogXml("5", "<O N=\" a\tb\n\xE9&#233;\" U=\" ms\"/>", Cfg5()));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.Options.Items[0].Name, " a b \xE9\xE9");
    EXPECT_EQ(r.device.Options.Items[0].Units, " ms");
}

TEST(CatalogLoad, CompletesConfigurations) {
    struct Case {
        std::string attributes;
        std::string data;
        PredefCfg expected;  // Data left out
    };
    const std::string none = "No info about configuration";
    const std::vector<Case> cases = {
        {"", "7856341200", {"Unnamed configuration 00000000", "", none, "0", "0", "0", "12345678"}},
        {R"(N="Car" I="ABC" H="short")", "0000000000", {"Car", "", "short", "0", "0", "0", "00000ABC"}},
        {R"(I="0xabc" H="")", "0000000000", {"Unnamed configuration 00000000", "", "", "0", "0", "0", "00000ABC"}},
        {R"(N="" I="123456789")", "0000000000", {"Unnamed configuration 00000000", "", none, "0", "0", "0", "23456789"}},
        {R"(I="0" D="0x04" V="1 F" E="7")", "FF00000000", {"Unnamed configuration 00000000", "", none, "7", "04", "1F", "00000000"}},
        {R"(I="00" V="zz")", "0000000000", {"Unnamed configuration 00000000", "", none, "0", "0", "0", "00000000"}},
        {"", "0x78 0x56\n34 12\t00", {"Unnamed configuration 00000000", "", none, "0", "0", "0", "12345678"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.attributes + " / " + c.data);
        const auto r = Load(CatalogXml("5", kOneOption, "<C " + c.attributes + ">" + c.data + "</C>"));
        ASSERT_TRUE(r.ok);
        const PredefCfg& cfg = r.device.PredefCfgs.Items[0];
        EXPECT_EQ(cfg.Name, c.expected.Name);
        EXPECT_EQ(cfg.Info, c.expected.Info);
        EXPECT_EQ(cfg.ExtraMask, c.expected.ExtraMask);
        EXPECT_EQ(cfg.DisabledMask, c.expected.DisabledMask);
        EXPECT_EQ(cfg.VisibleMask, c.expected.VisibleMask);
        EXPECT_EQ(cfg.Id, c.expected.Id);
        EXPECT_EQ(cfg.Data.size(), 5u);
    }
}

TEST(CatalogLoad, NamesUnnamedConfigurationsByIndexAndZeroesMasksWithoutOptions) {
    const auto r = Load(CatalogXml("5", "", Cfg5(R"(N="A" V="FF" D="FF" E="FF")") + Cfg5() + Cfg5() + Cfg5()));
    ASSERT_TRUE(r.ok);
    ASSERT_EQ(r.device.PredefCfgs.Count(), 4);
    EXPECT_EQ(r.device.PredefCfgs.Items[0].Name, "A");
    EXPECT_EQ(r.device.PredefCfgs.Items[2].Name, "Unnamed configuration 00000002");
    const PredefCfg& first = r.device.PredefCfgs.Items[0];
    EXPECT_EQ(first.VisibleMask + first.DisabledMask + first.ExtraMask, "000");
}

TEST(CatalogLoad, KeepsDocumentOrderAndReplacesAnEarlierCatalog) {
    // Every OPTS and PDF counts, in document order; CfgLen is the first L.
    const std::string xml =
        R"(<CFG><OPTS L="5"><O N="a"><L V="1">1</L><L V="2">2</L></O><O N="b"/></OPTS>)"
        R"(<PDF><C N="x">0000000000</C></PDF><OPTS L="9"><O N="c"/></OPTS><PDF><C N="y">0000000000</C></PDF></CFG>)";
    LoadResult r = Load(xml);
    ASSERT_TRUE(r.ok);
    std::string names;
    for (const auto& o : r.device.Options.Items) names += o.Name;
    for (const auto& v : r.device.Options.Items[0].Values.Items) names += v.Text;
    for (const auto& c : r.device.PredefCfgs.Items) names += c.Name;
    EXPECT_EQ(names, "abc12xy");

    r.device.InfoFile = CatalogXml("5", kOneOption, Cfg5());
    ASSERT_TRUE(LoadCatalog(r.device, r.reason));
    EXPECT_EQ(r.device.Options.Count(), 1);
    EXPECT_EQ(r.device.PredefCfgs.Count(), 1);

    // A refused load leaves no reason of an earlier one behind either.
    r.reason = "old";
    r.device.InfoFile = CatalogXml("4", kOneOption, Cfg5());
    EXPECT_FALSE(LoadCatalog(r.device, r.reason));
    EXPECT_EQ(r.reason, "");
}

TEST(CatalogLoad, WithstandsHostileDocuments) {
    std::string laughs = R"(<?xml version="1.0"?><!DOCTYPE CFG [<!ENTITY lol "lol">)";
    laughs += R"(<!ENTITY lol1 "&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;">)";
    for (int i = 2; i <= 9; ++i) {
        const std::string prev = "&lol" + std::to_string(i - 1) + ";";
        std::string body;
        for (int k = 0; k < 10; ++k) body += prev;
        laughs += "<!ENTITY lol" + std::to_string(i) + " \"" + body + "\">";
    }
    laughs += "]>" + CatalogXml("5", R"(<O N="&lol9;"/>)", Cfg5());
    auto r = Load(laughs);
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.Options.Items[0].Name, "&lol9;");

    r = Load(R"(<!DOCTYPE CFG [<!ENTITY xxe SYSTEM "file:///etc/passwd">]>)" +
             CatalogXml("5", R"(<O N="&xxe;"/>)", Cfg5()));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.Options.Items[0].Name, "&xxe;");

    // Nesting far deeper than any stack would take in recursion.
    const int depth = 200000;
    std::string deep;
    for (int i = 0; i < depth; ++i) deep += "<a>";
    deep += "0102030405";
    for (int i = 0; i < depth; ++i) deep += "</a>";
    r = Load(CatalogXml("5", kOneOption, "<C>" + deep + "</C>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.PredefCfgs.Items[0].Data, "\x01\x02\x03\x04\x05");

    // Huge lengths and positions cost nothing: no mask or image of that size.
    r = Load(CatalogXml("7FFFFFFF", R"(<O S="7FFFFFFF" L="7FFFFFFF" T="BITFIELD"><L V="1"/></O>)", Cfg5()));
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.device.Options.Items.at(0).Values.Items.at(0).Mask, "");
    // Data beyond what the hex conversion takes reads as no data.
    r = Load(CatalogXml("5", kOneOption, "<C>" + std::string(40000, '0') + "</C>"));
    EXPECT_FALSE(r.ok);
}

TEST(CatalogFind, FirstConfigurationWithTheIdAsWritten) {
    DeviceInfo device;
    for (const char* id : {"00000004", "0000000A", "00000004"}) {
        PredefCfg cfg;
        cfg.Id = id;
        device.PredefCfgs.Items.push_back(cfg);
    }
    EXPECT_EQ(FindPredefCfgById(device, "00000004"), 0);
    EXPECT_EQ(FindPredefCfgById(device, "0000000A"), 1);
    EXPECT_EQ(FindPredefCfgById(device, "0000000a"), -1);
    EXPECT_EQ(FindPredefCfgById(device, "4"), -1);
    EXPECT_EQ(FindPredefCfgById(DeviceInfo{}, "00000000"), -1);
}

}  // namespace
}  // namespace sb::test
