// The function library as the host binds it: the mode read from the registry at each
// query, which arithmetic each member and variant uses, Min and Max as Longs, refusals
// reported to the host's error interface, and the progress event.

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "host/FunctionLibrary.h"
#include "host/HostDiagnostics.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"

using namespace host;

namespace {

rt::StringList listOf(const QStringList& texts)
{
    rt::StringList list;
    for (const QString& text : texts)
        list.Add(text);
    return list;
}

class FunctionLibraryTest : public ::testing::Test {
protected:
    void setMode(const QString& value) { registry.write(HKEY_LOCAL_MACHINE, keys::Pro, keys::TypeNum, value); }

    QTemporaryDir dir;
    Registry registry{dir.path()};
    FunctionLibrary library{registry};
};

struct RecordedErrors : HostDiagnostics {
    RecordedErrors() { install(this); }
    ~RecordedErrors() override { install(nullptr); }
    void trace(const QString&) override {}
    void reportError(int32_t number, const QString& description, const QString& procedure, const QString& scope,
                     const QString& component) override
    {
        log << QStringLiteral("%1 %2 %3 %4 %5").arg(number).arg(description, procedure, scope, component);
    }
    QStringList log;
};

}  // namespace

TEST_F(FunctionLibraryTest, TheModeIsTheSharedNumberTypeReadAgainAtEachQuery)
{
    rt::StringList thirds = listOf({"1", "1", "2"});
    const auto mean = [&] {
        QString result;
        EXPECT_TRUE(library.Mid(thirds, result));
        return result;
    };
    EXPECT_EQ(library.TypeNum(), 0);  // nothing stored yet
    EXPECT_EQ(mean(), "1.33333333333333");
    setMode("1");
    EXPECT_EQ(library.TypeNum(), 1);
    EXPECT_EQ(mean(), "1." + QString(49, u'3'));
    setMode("2");
    EXPECT_EQ(mean(), "1." + QString(76, u'3'));
    setMode("7");  // any other type than 2 computes in decimal
    EXPECT_EQ(mean(), "1." + QString(49, u'3'));
    setMode(" 2 types");
    EXPECT_EQ(library.TypeNum(), 2);
    setMode("1e12");
    EXPECT_EQ(runTimeErrorOf([&] { library.TypeNum(); }), 6);
}

TEST_F(FunctionLibraryTest, EachVariantKeepsItsArithmeticWhateverTheMode)
{
    rt::StringList values = listOf({"1", "2", "4", "3.5"});
    int32_t count = 0;
    QString ordinary, extended;
    setMode("2");
    EXPECT_TRUE(library.MidGeo(values, count, ordinary));
    EXPECT_EQ(ordinary, "2.30032663379121");
    EXPECT_EQ(count, 4);
    setMode("0");
    EXPECT_TRUE(library.MidGeoExt(values, count, extended));
    EXPECT_EQ(extended, "2.3003266337912060050858926356643507348739455927489");
    // The single-variant members follow the mode.
    rt::StringList tenths = listOf(QStringList(10, "0,1"));
    QString sum;
    EXPECT_TRUE(library.Summ(tenths, count, sum));
    EXPECT_EQ(sum, "1");
    EXPECT_EQ(library.SquareDivisor(values), "1.37689263682153");
    setMode("1");
    EXPECT_EQ(library.SquareDivisor(values), "1.3768926368215255051514521927180183677365316529829");
    EXPECT_EQ(library.Dispersion(values), "1.8958333333333333333333333333333333333333333333333");
    EXPECT_EQ(library.Divisor(values), "1.125");
    EXPECT_EQ(library.Median(values), "2.75");
    EXPECT_EQ(library.MidHarmonic(values), "1.9649122807017543859649122807017543859649122807018");
    // The whole-number statistics, exact in either variant.
    rt::StringList factors = listOf({"10", "20", "30"});
    QString result;
    EXPECT_TRUE(library.Multunomial(factors, count, result));
    EXPECT_EQ(result, "3553261127084984957001360");
    EXPECT_TRUE(library.MultunomialExt(factors, count, result));
    EXPECT_EQ(result, "3553261127084984957001360");
    EXPECT_TRUE(library.MinDevCrat(factors, count, result) && result == "60");
    EXPECT_TRUE(library.MinDevCratExt(factors, count, result) && result == "60");
    EXPECT_TRUE(library.MaxCrat(factors, count, result) && result == "10");
    EXPECT_TRUE(library.MaxCratExt(factors, count, result) && result == "10");
    EXPECT_TRUE(library.Much(factors, count, result) && result == "6000");
}

TEST_F(FunctionLibraryTest, MinAndMaxReturnTheExtremeAsALongAndItsPlace)
{
    rt::StringList values = listOf({"x", "2.5", "-7.5", "3.5", "-7.5"});
    int32_t position = 0;
    EXPECT_EQ(library.Min(values, position), -8);
    EXPECT_EQ(position, 3);
    EXPECT_EQ(library.MinExt(values, position), -8);
    EXPECT_EQ(position, 3);
    EXPECT_EQ(values.Count(), 5);
    EXPECT_EQ(library.Max(values, position), 4);
    EXPECT_EQ(position, 4);
    EXPECT_EQ(library.MaxExt(values, position), 4);
    rt::StringList large = listOf({"2147483647.4", "-2147483648.5"});
    EXPECT_EQ(library.Max(large, position), 2147483647);
    EXPECT_EQ(library.MinExt(large, position), -2147483648);  // the half goes to the even
    rt::StringList beyond = listOf({"2147483647.5"});
    EXPECT_EQ(runTimeErrorOf([&] { library.Max(beyond, position); }), 6);
    EXPECT_EQ(runTimeErrorOf([&] { library.MaxExt(beyond, position); }), 6);
}

TEST_F(FunctionLibraryTest, WhatCannotBeComputedGivesNothingAndIsReportedToTheHost)
{
    RecordedErrors errors;
    rt::StringList negative = listOf({"4", "-6"});
    rt::StringList words = listOf({"n/a"});
    int32_t count = -1;
    QString result = "stale";
    EXPECT_FALSE(library.MinDevCrat(negative, count, result));
    EXPECT_EQ(result, "");
    int32_t position = -1;
    EXPECT_EQ(library.Max(words, position), 0);
    EXPECT_EQ(position, 0);
    EXPECT_EQ(library.Median(words), "");
    rt::StringList empty;
    EXPECT_FALSE(library.Mid(empty, result));
    EXPECT_EQ(errors.log, QStringList({"5 The statistic takes no negative numbers MinDevCrat FunctionLibrary Functions",
                                       "5 The list holds no numbers Max FunctionLibrary Functions",
                                       "5 The list holds no numbers Median FunctionLibrary Functions",
                                       "5 The list holds no numbers Mid FunctionLibrary Functions"}));
}

TEST_F(FunctionLibraryTest, ProgressChangeFollowsALongList)
{
    rt::StringList values;
    for (int i = 0; i < 50000; ++i)
        values.Add(QString::number(i));
    QList<double> reports;
    QObject::connect(&library, &FunctionLibrary::ProgressChange, [&](double value) { reports << value; });
    int32_t count = 0;
    QString result;
    EXPECT_TRUE(library.Summ(values, count, result));
    EXPECT_EQ(result, "1249975000");
    EXPECT_EQ(count, 50000);
    ASSERT_FALSE(reports.isEmpty());
    EXPECT_LE(reports.size(), 101);
    EXPECT_EQ(reports.front(), 0);
    EXPECT_EQ(reports.back(), 100);
}
