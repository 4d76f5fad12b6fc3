#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CatalogText.h"
#include "config/Catalog.h"

namespace sb::test {
namespace {

const std::string kOneOption = R"(<O N="A" S="0" L="8" T="BIN"/>)";

TEST(CatalogLoad, RefusesWhatTheFormatForbids) {
    const std::vector<std::pair<std::string, std::string>> cases = {  // the document, a piece of the parser's reason
        {"<CFG>\n<OPTS L=\"5\">\n</CFG>", "(line 3, column"}, {"", "("},
        {CatalogXml("5", kOneOption, Cfg5()) + "<CFG/>", "(line 1, column"},
        {CatalogXml("4", kOneOption, "<C>00000000</C>"), ""}, {CatalogXml("80000005", kOneOption, Cfg5()), ""},
        {"<CFG><OPTS>" + kOneOption + "</OPTS><PDF>" + Cfg5() + "</PDF></CFG>", ""},
        {"<CATALOG><OPTS L=\"5\"/><PDF>" + Cfg5() + "</PDF></CATALOG>", ""},
        {CatalogXml("5", R"(<O T="INT"><L>Off</L></O>)", Cfg5()), ""},
        {CatalogXml("5", R"(<O T="INT"><L V="1G">Off</L></O>)", Cfg5()), ""},
        {CatalogXml("5", kOneOption, Cfg5() + Cfg5("", "00000000000")), ""},
        {"<CFG><OPTS L=\"5\">" + kOneOption + "</OPTS></CFG>", ""}, {CatalogXml("5", kOneOption, ""), ""},
    };
    for (const auto& [xml, reason] : cases) {
        const auto r = Load(xml);
        EXPECT_FALSE(r.ok) << xml;
        EXPECT_TRUE(reason.empty() ? r.reason.empty() : r.reason.find(reason) != std::string::npos) << r.reason;
    }
    EXPECT_TRUE(Load(CatalogXml("5", kOneOption, Cfg5())).ok);  // the smallest image
}

TEST(CatalogLoad, CompletesOptionsAndTheirEntries) {
    // O's attributes, L's attributes; BitPos, BitLen, MinValue, MaxValue, and
    // Value, Mask, SetValue, SetMask, ResetValue, ResetMask of the entry.
    const std::vector<std::vector<std::string>> cases = {
        {R"(S="2C" L="0A" T="INT" M="12C")", R"(V="FF")", "44 10 00000000 0000012C", "000000FF FF3 FF FF3 00 FF3"},
        {R"(S="0x2C" L=" 1 0 " T="INT" m="5")", R"(V="1")", "44 16 00000005 0000FFFF", "00000001 FFFF 1 FFFF  FFFF"},
        {R"(S="7FFFFFFF" L="80000000" T="INT")", R"(V="1")", "2147483647 0 00000000 00000000", "00000001  1   "},
        {R"(S="123456789" L="3" T="INT")", R"(V="01")", "305419896 3 00000000 00000007", "00000001 7 01 7 FE 7"},
        {R"(S="zz" L="21" T="INT")", R"(V="1")", "0 33 00000000 FFFFFFFF", "00000001 FFFFFFFF1 1 FFFFFFFF1  FFFFFFFF1"},
        {R"(L="40" T="INT" m="123456789A")", R"(V="1")", "0 64 3456789A 00000000",  // 2^64 - 1 fails to convert
         "00000001 FFFFFFFFFFFFFFFF 1 FFFFFFFFFFFFFFFF  FFFFFFFFFFFFFFFF"},
        {R"(L="7FFFFFFF" T="BITFIELD" m="1")", R"(V="05")", "0 2147483647 1 ", "05  05  FA "},
        {R"(L="8" T="BITFIELD")", R"(V="0x04" M="0c" SV=" 0 3" SM="03" RV="0x00" RM="02")", "0 8  ",
         "04 0C 03 03 00 02"},
        {R"(L="6" T="BIN")", R"(V="0C" M="G1" SV="-" RM="")", "0 6  ", "0C F3 0C F3 F3 F3"},  // no hex: absent
    };
    for (const auto& c : cases) {
        const auto r = Load(CatalogXml("5", "<O " + c[0] + "><L " + c[1] + ">x</L></O>", Cfg5()));
        ASSERT_TRUE(r.ok) << c[0];
        const OptionRec& o = r.device.Options.Items[0];
        const OptValue& v = o.Values.Items.at(0);
        EXPECT_EQ(std::to_string(o.BitPos) + " " + std::to_string(o.BitLen) + " " + o.MinValue + " " + o.MaxValue, c[2])
            << c[0];
        EXPECT_EQ(v.Value + " " + v.Mask + " " + v.SetValue + " " + v.SetMask + " " + v.ResetValue + " " + v.ResetMask,
                  c[3])
            << c[0] << " / " << c[1];
    }
}

TEST(CatalogLoad, ReadsTextsByteForByte) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"  Off \n\t", "Off"}, {"Low  beam", "Low  beam"}, {"<![CDATA[ a<b ]]>", "a<b"}, {"&amp;&lt;&quot;", "&<\""},
        {"&#233;t&#xFF;", "\xE9t\xFF"}, {"\xE9t\xFF", "\xE9t\xFF"}, {"&#8364;", "?"}, {"a<b>b<c>c</c></b>d", "abcd"},
        {"x<!-- note -->y", "xy"},
    };
    for (const auto& [content, expected] : cases) {
        const auto r = Load(CatalogXml("5", "<O T=\"BIN\" L=\"8\"><L V=\"01\">" + content + "</L></O>", Cfg5()));
        ASSERT_TRUE(r.ok) << content;
        EXPECT_EQ(r.device.Options.Items[0].Values.Items[0].Text, expected) << content;
    }
    // Attribute values keep their blanks; line breaks in them read as blanks.
    const auto r = Load(CatalogXml("5", "<O N=\" a\tb\n\xE9&#233;\" U=\" ms\"/>", Cfg5()));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.Options.Items[0].Name + r.device.Options.Items[0].Units, " a b \xE9\xE9 ms");
}

TEST(CatalogLoad, CompletesConfigurations) {
    const std::string none = "No info about configuration", unnamed = "Unnamed configuration 00000000";
    const std::vector<std::vector<std::string>> cases = {  // attributes, data; Name, Info, E, D, V, Id
        {"", "7856341200", unnamed, none, "0", "0", "0", "12345678"},
        {R"(N="Car" I="ABC" H="short")", "0000000000", "Car", "short", "0", "0", "0", "00000ABC"},
        {R"(I="0xabc" H="")", "0000000000", unnamed, "", "0", "0", "0", "00000ABC"},
        {R"(N="" I="123456789")", "0000000000", unnamed, none, "0", "0", "0", "23456789"},
        {R"(I="0" D="0x04" V="1 F" E="7")", "FF00000000", unnamed, none, "7", "04", "1F", "00000000"},
        {R"(V="zz")", "0x78 0x56\n34 12\t00", unnamed, none, "0", "0", "0", "12345678"},
    };
    for (const auto& c : cases) {
        const auto r = Load(CatalogXml("5", kOneOption, "<C " + c[0] + ">" + c[1] + "</C>"));
        ASSERT_TRUE(r.ok) << c[0];
        const PredefCfg& g = r.device.PredefCfgs.Items[0];
        EXPECT_EQ((std::vector<std::string>{c[0], c[1], g.Name, g.Info, g.ExtraMask, g.DisabledMask, g.VisibleMask,
                                            g.Id}),
                  c);
        EXPECT_EQ(g.Data.size(), 5u);
    }
    // Without options every mask is 0; an unnamed entry is named by its index.
    const auto r = Load(CatalogXml("5", "", Cfg5(R"(V="FF" D="FF" E="FF")") + Cfg5() + Cfg5()));
    ASSERT_TRUE(r.ok);
    const PredefCfg& first = r.device.PredefCfgs.Items[0];
    EXPECT_EQ(first.VisibleMask + first.DisabledMask + first.ExtraMask, "000");
    EXPECT_EQ(r.device.PredefCfgs.Items.at(2).Name, "Unnamed configuration 00000002");
}

TEST(CatalogLoad, KeepsDocumentOrderAndReplacesAnEarlierCatalog) {
    // Every OPTS and PDF counts, in document order; CfgLen is the first L.
    LoadResult r = Load(
        R"(<CFG><OPTS L="5"><O N="a"><L V="1">1</L><L V="2">2</L></O><O N="b"/></OPTS><PDF><C N="x">0000000000</C>)"
        R"(</PDF><OPTS L="9"><O N="c"/></OPTS><PDF><C N="y">0000000000</C></PDF></CFG>)");
    ASSERT_TRUE(r.ok);
    std::string names;
    for (const auto& o : r.device.Options.Items) names += o.Name;
    for (const auto& v : r.device.Options.Items[0].Values.Items) names += v.Text;
    for (const auto& c : r.device.PredefCfgs.Items) names += c.Name;
    EXPECT_EQ(names, "abc12xy");

    r.device.InfoFile = CatalogXml("4", kOneOption, Cfg5());
    r.reason = "old";
    EXPECT_FALSE(LoadCatalog(r.device, r.reason));
    EXPECT_EQ(r.device.PredefCfgs.Count() + r.device.Options.Count(), 1);  // the refused option alone
    EXPECT_EQ(r.reason, "");
}

TEST(CatalogLoad, WithstandsHostileDocuments) {
    // Entities of a DOCTYPE are neither expanded nor fetched.
    auto r = Load(R"(<!DOCTYPE CFG [<!ENTITY lol "lol"><!ENTITY xxe SYSTEM "file:///etc/passwd">]>)" +
                  CatalogXml("5", R"(<O N="&lol;&xxe;"/>)", Cfg5()));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.Options.Items[0].Name, "&lol;&xxe;");
    // Nesting far deeper than any stack would take in recursion.
    std::string nested;
    for (int i = 0; i < 200000; ++i) nested += "<a>";
    nested += "0102030405";
    for (int i = 0; i < 200000; ++i) nested += "</a>";
    r = Load(CatalogXml("5", kOneOption, "<C>" + nested + "</C>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.PredefCfgs.Items[0].Data, "\x01\x02\x03\x04\x05");
    // Data beyond what the hex conversion takes reads as no data.
    EXPECT_FALSE(Load(CatalogXml("5", kOneOption, "<C>" + std::string(40000, '0') + "</C>")).ok);
}

TEST(CatalogFind, FirstConfigurationWithTheIdAsWritten) {
    DeviceInfo device;
    for (const char* id : {"00000004", "0000000A", "00000004"}) device.PredefCfgs.Items.emplace_back().Id = id;
    const std::pair<const char*, int32_t> cases[] = {{"00000004", 0}, {"0000000A", 1}, {"0000000a", -1}, {"4", -1}};
    for (const auto& [id, index] : cases) EXPECT_EQ(FindPredefCfgById(device, id), index) << id;
}

}  // namespace
}  // namespace sb::test
