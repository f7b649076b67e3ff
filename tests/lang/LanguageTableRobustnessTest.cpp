// The loader over damaged copies of a real table: every one ends in one of the allowed
// ways (the fuzz target aborts otherwise). The libFuzzer run goes much further; this
// keeps its checks in the everyday suite.

#include <gtest/gtest.h>

#include <random>

#include "LanguageTableFuzzTarget.h"

TEST(LanguageTableRobustness, DamagedTablesEndInAnAllowedWay)
{
    const QByteArray whole = readFile(SHEETWRIGHT_SOURCE_DIR "/share/languages/Russian.lng");
    ASSERT_GT(whole.size(), 1000);
    for (qsizetype cut = 0; cut <= whole.size(); cut += 7)
        loadUntrustedLanguageTable(QByteArrayView(whole).first(cut));
    std::mt19937 random(20240611);
    for (int round = 0; round < 1500; ++round) {
        QByteArray damaged = whole;
        for (int c = 0, changes = 1 + static_cast<int>(random() % 8); c < changes; ++c) {
            const auto at = static_cast<qsizetype>(random() % static_cast<uint32_t>(damaged.size()));
            switch (random() % 3) {
            case 0: damaged[at] = static_cast<char>(random()); break;
            case 1: damaged.remove(at, 1 + static_cast<qsizetype>(random() % 40)); break;
            default: damaged.insert(at, damaged.mid(static_cast<qsizetype>(random() % whole.size()), 30)); break;
            }
        }
        loadUntrustedLanguageTable(damaged);
    }
    QByteArray noise(256 * 1024, '\0');
    for (char& b : noise)
        b = static_cast<char>(random());
    loadUntrustedLanguageTable(noise);
    loadUntrustedLanguageTable(QByteArray(3 * 1024 * 1024, 'x'));  // one line past the limit
    loadUntrustedLanguageTable("Vorbex Language Table\r\nVersion=1\r\nEngCaption=a\r\nOutCaption=b\r\nHelpFile=c\r\n"
                               "/Buttons\r\n\\Buttons\r\n/TypeNum\r\n\\TypeNum\r\n" +
                               QByteArray(2 * 1024 * 1024, '\r'));  // endless empty host lines
}
