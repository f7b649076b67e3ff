// Real tables of the corpus saved in each format and imported back into the same
// database: what comes back is what the format can carry (text in the ANSI code page, no
// difference between Null and empty), with each format's own losses pinned.

#include "FormatsFixture.h"

#include "rt/AnsiCodePage.h"

namespace {

struct CorpusTable {
    const char* file;
    const char* table;
};

// Every cell as the ANSI code page holds it; Null and empty alike.
QStringList asWritten(QStringList records)
{
    const rt::AnsiCodePage& ansi = rt::AnsiCodePage::current();
    for (QString& record : records)
        record = ansi.decode(ansi.encode(record.replace("<Null>", "")));
    return records;
}

}  // namespace

class RoundTripTest : public FormatsFixture {
protected:
    // The table's records before the save, and after the import of the file.
    std::pair<QStringList, QStringList> roundTrip(const CorpusTable& t, const QString& extension,
                                                  const std::function<void(const QString&)>& save)
    {
        openCopy(t.file);
        const QStringList before = content(t.table);
        const QString saved = path(QString("back_") + t.table + extension);
        save(saved);
        EXPECT_TRUE(db().OpenTable(saved)) << t.file << " " << t.table;
        EXPECT_TRUE(fake.boxes().empty()) << t.file << " " << t.table;
        EXPECT_EQ(db().AddedTable(), QString("back_") + t.table);
        return {before, content(QString("back_") + t.table)};
    }
};

TEST_F(RoundTripTest, XmlBringsBackEveryValueTheCodePageHolds)
{
    const CorpusTable tables[] = {{"testV1997.mdb", "Table1"},           {"overflowTestV2000.mdb", "Table1"},
                                  {"compIndexTestV2003.mdb", "Table1"},  {"fixedTextTestV2000.mdb", "users"},
                                  {"indexTestV1997.mdb", "Table1"},      {"delColTestV2000.mdb", "Table1"},
                                  {"testIndexCodesV1997.mdb", "Table11"}};
    for (const CorpusTable& t : tables) {
        const auto [before, after] = roundTrip(t, ".xml", [](const QString& f) { EXPECT_TRUE(db().SaveTableXML(f)); });
        EXPECT_EQ(asWritten(after), asWritten(before)) << t.file << " " << t.table;
        EXPECT_GT(before.size(), 1) << t.file << " " << t.table;
    }
}

TEST_F(RoundTripTest, XmlCannotWriteATableWhoseValuesHoldEverySeparator)
{
    QString everyCharacter = "\t";
    for (char16_t c = 0x20; c < 0x7f; ++c)
        everyCharacter += QChar(c);
    openNewTable("chars", "CREATE TABLE chars (v MEMO)", {{everyCharacter}});
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTableXML(path("unicode.xml")); }), 9);
}

TEST_F(RoundTripTest, HtmlFillsEmptyCellsFromTheCellBeforeAndAddsOneEmptyRecord)
{
    // Tables without "&", "<", ">" or quotes: a blank comes back as a no-break space, and
    // an empty cell as the text of the cell before it (the header's last name for the
    // very first cell).
    for (const CorpusTable& t : {CorpusTable{"compIndexTestV2003.mdb", "Table1"}, CorpusTable{"indexTestV1997.mdb", "Table1"},
                                 CorpusTable{"fixedTextTestV2000.mdb", "users"}}) {
        const auto [before, after] = roundTrip(t, ".htm", [](const QString& f) { db().SaveTableHTML(f); });
        QString previous = db().Columns().items().last();
        QStringList expected;
        for (const QString& record : before) {
            QStringList cells = record.split(u'|');
            for (QString& cell : cells)
                previous = cell = cell == "<Null>" ? previous : QString(cell).replace(u' ', QChar(0xA0));
            expected << cells.join(u'|');
        }
        expected << QString(u'|').repeated(before.first().count(u'|'));
        EXPECT_EQ(asWritten(after), asWritten(expected)) << t.file << " " << t.table;
    }
}

TEST_F(RoundTripTest, TextMovesTheValuesAfterAnEmptyCellLeft)
{
    for (const CorpusTable& t : {CorpusTable{"compIndexTestV2003.mdb", "Table1"}, CorpusTable{"indexTestV1997.mdb", "Table1"},
                                 CorpusTable{"overflowTestV2000.mdb", "Table1"}}) {
        db().setDefaultSeparator(";");
        const auto [before, after] = roundTrip(t, ".csv", [](const QString& f) { EXPECT_TRUE(db().SaveTable(f, ";")); });
        QStringList expected;
        for (const QString& record : before) {
            QStringList cells = record.split(u'|');
            cells.removeAll("<Null>");
            while (cells.size() < record.count(u'|') + 1)
                cells << "<Null>";
            expected << cells.join(u'|');
        }
        EXPECT_EQ(after, expected) << t.file << " " << t.table;
    }
}
