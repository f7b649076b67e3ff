// Design properties that follow a column: the block of a renamed column takes the new name
// with every length field adjusted, a dropped column's block goes, and a blob of another
// shape is left alone.
#include <gtest/gtest.h>

#include "jet/Bytes.h"
#include "jet/CodePage.h"
#include "jet/PropertyBlob.h"

namespace {

using jet::Version;

std::vector<uint8_t> block(uint16_t type, const std::vector<uint8_t>& body) {
    std::vector<uint8_t> b(6 + body.size());
    jet::putLe32(b.data(), uint32_t(b.size()));
    jet::putLe16(b.data() + 4, type);
    std::copy(body.begin(), body.end(), b.begin() + 6);
    return b;
}

// A block of properties: header length, the name (a column's, or none for the table's own),
// then one entry (a Byte property).
std::vector<uint8_t> propertiesBlock(uint16_t type, const std::vector<uint8_t>& name) {
    std::vector<uint8_t> body(6 + name.size());
    jet::putLe32(body.data(), uint32_t(6 + name.size()));
    jet::putLe16(body.data() + 4, uint16_t(name.size()));
    std::copy(name.begin(), name.end(), body.begin() + 6);
    const std::vector<uint8_t> entry = {0x09, 0x00, 0x00, 0x02, 0x00, 0x00, 0x01, 0x00, 0x07};
    body.insert(body.end(), entry.begin(), entry.end());
    return block(type, body);
}
std::vector<uint8_t> columnBlock(const std::vector<uint8_t>& name) { return propertiesBlock(0x0001, name); }

std::vector<uint8_t> ascii(const std::string& s) { return {s.begin(), s.end()}; }
std::vector<uint8_t> ucs2(const std::string& s) {
    std::vector<uint8_t> out;
    for (char c : s) out.insert(out.end(), {uint8_t(c), 0});
    return out;
}

std::vector<uint8_t> blob(const char* signature, const std::vector<std::vector<uint8_t>>& blocks) {
    std::vector<uint8_t> out(signature, signature + 4);
    for (const auto& b : blocks) out.insert(out.end(), b.begin(), b.end());
    return out;
}

TEST(PropertyBlob, ARenamedColumnTakesItsBlockAlongInBothVersions) {
    const auto& cp = *jet::CodePage::get(1252);
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const auto name = [&](const std::string& s) { return v == Version::Jet3 ? ascii(s) : ucs2(s); };
        const char* sig = v == Version::Jet3 ? "KKD\0" : "MR2\0";
        const auto names = block(0x0080, {0x04, 0x00, 'W', 'i', 'd', 'e'});
        const auto object = propertiesBlock(0x0000, {});
        const auto before = blob(sig, {names, object, columnBlock(name("PROJ_ID")), columnBlock(name("Other"))});
        auto renamed = jet::renameColumnProperties(before, v, cp, "proj_id", "ProjectIdentifier");
        ASSERT_TRUE(renamed.has_value());
        EXPECT_EQ(blob(sig, {names, object, columnBlock(name("ProjectIdentifier")), columnBlock(name("Other"))}), *renamed);

        auto dropped = jet::removeColumnProperties(before, v, cp, "Other");
        ASSERT_TRUE(dropped.has_value());
        EXPECT_EQ(blob(sig, {names, object, columnBlock(name("PROJ_ID"))}), *dropped);

        EXPECT_FALSE(jet::renameColumnProperties(before, v, cp, "Missing", "x").has_value());
        EXPECT_FALSE(jet::removeColumnProperties(before, v, cp, "Missing").has_value());
        // The other version's signature, or a block that runs past the end: left alone.
        EXPECT_FALSE(jet::removeColumnProperties(before, v == Version::Jet3 ? Version::Jet4 : Version::Jet3, cp, "Other"));
        auto cut = before;
        cut.resize(cut.size() - 3);
        EXPECT_FALSE(jet::removeColumnProperties(cut, v, cp, "PROJ_ID").has_value());
    }
    // A Jet 3 name the code page cannot hold is not written.
    const auto j3 = blob("KKD\0", {columnBlock(ascii("A"))});
    EXPECT_FALSE(jet::renameColumnProperties(j3, Version::Jet3, cp, "A", "Имя").has_value());
    EXPECT_TRUE(jet::renameColumnProperties(j3, Version::Jet3, *jet::CodePage::get(1251), "A", "Имя").has_value());
}

}  // namespace
