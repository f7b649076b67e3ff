// New databases from nothing: the system tables' definitions, the file's pages, and what
// the engine and the independent readers make of the file.
#include <gtest/gtest.h>

#include "jet/Bytes.h"
#include "jet/CodePage.h"
#include "jet/Header.h"
#include "jet/ColumnLayout.h"
#include "jet/SystemTables.h"
#include "jet/TableDefSerializer.h"

namespace {

using jet::Format;
using jet::NewFileLayout;
using jet::SystemTable;
using jet::Version;

TEST(SystemTables, DefinitionsHaveTheLengthsAccessWrites) {
    const uint32_t jet3[] = {708, 223, 319, 526};
    const uint32_t jet4[] = {1050, 335, 525, 813};
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const NewFileLayout layout = NewFileLayout::of(v);
        for (SystemTable t : jet::kSystemTables) {
            const auto def = jet::systemTableDef(t, v, 1252, layout);
            const auto stream = jet::serializeTableDef(Format::of(v), *jet::CodePage::get(1252), def);
            EXPECT_EQ((v == Version::Jet3 ? jet3 : jet4)[int(t)], stream.size()) << jet::systemTableName(t);
        }
    }
}

TEST(SystemTables, MapsAndIndexRootsFollowThePageMapOfANewFile) {
    const NewFileLayout l3 = NewFileLayout::of(Version::Jet3);
    const NewFileLayout l4 = NewFileLayout::of(Version::Jet4);
    EXPECT_EQ(18u, l3.pageCount());
    EXPECT_EQ(16u, l4.pageCount());
    EXPECT_EQ(16u, l3.objectsDataPage());
    EXPECT_EQ(15u, l4.acesDataPage());

    const auto aces = jet::systemTableDef(SystemTable::Aces, Version::Jet3, 1251, l3);
    // Map 18 is row 3 of the second map page in Jet 3.
    EXPECT_EQ((7u << 8) | 3, aces.ownedMap());
    EXPECT_EQ(11u, aces.physicalIndexes()[0].rootPage);
    EXPECT_EQ(0x08, aces.physicalIndexes()[0].flags);
    EXPECT_EQ(1251, aces.columns()[0].codePage);

    const auto objects = jet::systemTableDef(SystemTable::Objects, Version::Jet4, 1252, l4);
    ASSERT_EQ(7u, objects.longValueMaps().size());
    EXPECT_EQ(16, objects.longValueMaps().back().columnNumber);
    EXPECT_EQ((6u << 8) | 15, objects.longValueMaps().back().freeMap);
    EXPECT_EQ((6u << 8) | 17, objects.physicalIndexes()[1].ownedMap);
    EXPECT_EQ(0x81, objects.physicalIndexes()[1].flags);
    EXPECT_EQ(jet::index_kind::PrimaryKey, objects.logicalIndexes()[1].kind);
    EXPECT_EQ(30u, jet::fixedAreaSize(objects));
    EXPECT_EQ(17, objects.maxColumns());
    EXPECT_EQ(11, objects.varColumns());

    const auto relationships = jet::systemTableDef(SystemTable::Relationships, Version::Jet4, 1252, l4);
    EXPECT_EQ((6u << 8) | 30, relationships.physicalIndexes()[2].ownedMap);
    EXPECT_EQ(13u, relationships.physicalIndexes()[2].rootPage);
    EXPECT_EQ(7u, jet::systemTableDef(SystemTable::Queries, Version::Jet3, 1252, l3).columns().size());
    EXPECT_EQ(8u, jet::systemTableDef(SystemTable::Queries, Version::Jet4, 1252, l4).columns().size());

    // Pages in maps: the two data pages in owned and free maps, the seven roots in theirs.
    const auto members = jet::systemMapMembers(l4);
    ASSERT_EQ(11u, members.size());
    EXPECT_EQ(0u, members[0].map);
    EXPECT_EQ(14u, members[0].page);
    EXPECT_EQ(20u, members[6].map);
    EXPECT_EQ(9u, members[6].page);
    EXPECT_EQ(30u, members.back().map);
    EXPECT_EQ(13u, members.back().page);
}

TEST(NewHeader, ReadsBackAsANewFileOfItsVersionWithoutPassword) {
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const Format& f = Format::of(v);
        const uint16_t codePage = v == Version::Jet3 ? 1251 : 1252;
        const std::vector<uint8_t> page = jet::Header::newPage(v, codePage);
        ASSERT_EQ(f.pageSize, page.size());
        EXPECT_EQ(v, jet::Header::detectVersion(page, "new"));
        const jet::Header h = jet::Header::parse(v, page);
        EXPECT_EQ(codePage, h.codePage());
        EXPECT_EQ(0x0409, h.sortOrder());
        EXPECT_EQ(0u, h.databaseKey());
        EXPECT_EQ("", h.password());
        const uint8_t* plain = h.bytes().data();
        EXPECT_EQ(0x04, plain[0x18 + 16]) << "the constant run counts up to 5";
        EXPECT_EQ(0x05, plain[0x18 + 20]);
        EXPECT_EQ(0x0101, jet::le16(plain + f.pageSize - 512));
        EXPECT_EQ(0x0100, jet::le16(plain + f.pageSize - 2));
        if (v == Version::Jet4) {
            EXPECT_NEAR(42850.48, h.creationDate(), 0.01);
            for (int i = 0; i < 40; i += 4) {
                EXPECT_EQ(0x62, plain[0x42 + i]);
                EXPECT_EQ(0xA7, plain[0x42 + i + 1]);
            }
            EXPECT_EQ('4', page[0x9C]) << "the version text lies outside the masked region";
        } else {
            EXPECT_EQ(0.0, h.creationDate());
            EXPECT_EQ(0x00, plain[0x42]);
            EXPECT_NE(0x00, page[0x42]) << "the password field is masked";
        }
    }
}

}  // namespace
