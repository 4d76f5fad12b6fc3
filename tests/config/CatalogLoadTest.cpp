#include <gtest/gtest.h>

#include "CatalogText.h"
#include "config/Catalog.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// One line for each option ("O"), list entry ("L") and configuration ("C"),
// of the kinds that the case names.
std::vector<std::string> Describe(const DeviceInfo& device, const std::string& kinds) {
    std::vector<std::string> lines;
    const auto add = [&](char kind, std::initializer_list<std::string> fields) {
        if (kinds.find(kind) == std::string::npos) return;
        lines.emplace_back(1, kind);
        for (const auto& field : fields) lines.back() += "|" + field;
    };
    for (const OptionRec& o : device.Options.Items) {
        add('O', {o.Name, o.Type, std::to_string(o.BitPos), std::to_string(o.BitLen), o.MinValue, o.MaxValue, o.Units});
        for (const OptValue& v : o.Values.Items)
            add('L', {v.Text, v.Value, v.Mask, v.SetValue, v.SetMask, v.ResetValue, v.ResetMask});
    }
    for (const PredefCfg& c : device.PredefCfgs.Items)
        add('C', {c.Name, c.Info, c.ExtraMask, c.DisabledMask, c.VisibleMask, c.Id, BytesToHex(c.Data)});
    return lines;
}

// Each case of catalog-cases.json: a document (or the pieces of one) and
// what loads of it, or a piece of the reason why it is refused.
TEST(CatalogLoad, EachDocumentLoadsAsItsCaseSays) {
    for (const auto& c : TestCases("config/catalog-cases.json")) {
        const std::string xml = Bytes(c.contains("document") ? c["document"].get<std::string>()
                                                               : CatalogXml(c.value("L", "5"), c.value("O", "<O/>"),
                                                                            c.value("C", "<C>0000000000</C>")));
        SCOPED_TRACE(xml);
        const auto r = Load(xml);
        const std::string reason = c.value("refused", "");
        EXPECT_EQ(r.ok, !c.contains("refused"));
        EXPECT_TRUE(reason.empty() ? r.reason.empty() : r.reason.find(reason) != std::string::npos) << r.reason;
        std::vector<std::string> expected;
        std::string kinds;
        for (const std::string line : c.value("device", nlohmann::json::array())) {
            expected.push_back(Bytes(line));
            kinds += line[0];
        }
        EXPECT_EQ(Describe(r.device, kinds), expected);
    }
}

TEST(CatalogLoad, ALoadEmptiesWhatAnEarlierOneLeft) {
    LoadResult r = Load(CatalogXml("5", "<O/><O/>", "<C>0000000000</C>"));
    r.device.InfoFile = CatalogXml("4", "<O/>", "<C>00000000</C>");
    r.reason = "old";
    EXPECT_FALSE(LoadCatalog(r.device, r.reason));
    EXPECT_EQ(r.device.PredefCfgs.Count() + r.device.Options.Count(), 1);  // the refused option alone
    EXPECT_NE(r.reason, "old");
}

TEST(CatalogLoad, WithstandsNestingDeeperThanAnyStackAndDataBeyondTheHexLimit) {
    std::string nested;
    for (int i = 0; i < 200000; ++i) nested += "<a>";
    nested += "0102030405";
    for (int i = 0; i < 200000; ++i) nested += "</a>";
    const auto r = Load(CatalogXml("5", "<O/>", "<C>" + nested + "</C>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.device.PredefCfgs.Items[0].Data, "\x01\x02\x03\x04\x05");
    EXPECT_FALSE(Load(CatalogXml("5", "<O/>", "<C>" + std::string(40000, '0') + "</C>")).ok);
}

TEST(CatalogFind, FirstConfigurationWithTheIdAsWritten) {
    DeviceInfo device;
    for (const char* id : {"00000004", "0000000A", "00000004"}) device.PredefCfgs.Items.emplace_back().Id = id;
    const std::pair<const char*, int32_t> cases[] = {{"00000004", 0}, {"0000000A", 1}, {"0000000a", -1}, {"4", -1}};
    for (const auto& [id, index] : cases) EXPECT_EQ(FindPredefCfgById(device, id), index) << id;
}

}  // namespace
}  // namespace sb::test
