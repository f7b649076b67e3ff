#pragma once
// The host suite's function library as the table engine holds it: the statistics over a
// list of cell texts, the number type they compute in, and a progress event while they
// work on long lists.
//
// The members stand in the order of the library's interface, which binds the host and
// its plug-ins: initialise, the statistics, the mode query, the two-variant statistics
// ("Ext" is the variant for a non-zero mode), release. Keep that order.
//
// The mode is the number type the host and the number-type dialog share, the value
// "TypeNum" under HKEY_LOCAL_MACHINE "Software\Vorbex\Pro", read again at each query: 0
// computes in doubles, 2 in binary arbitrary precision, any other value in decimal
// arbitrary precision. Statistics with a single variant follow the mode themselves.
//
// What each computes is what spreadsheet users know: Summ SUM, Much PRODUCT, Mid AVERAGE,
// MidGeo GEOMEAN, MidHarmonic HARMEAN, Median MEDIAN, Min and Max MIN and MAX, MinDevCrat
// LCM, MaxCrat GCD, Multunomial MULTINOMIAL, SquareDivisor STDEV, Divisor AVEDEV,
// Dispersion VAR. A statistic that cannot give a result (no numbers, a number it refuses)
// gives the empty string, or 0 with position 0 for Min and Max, and reports why to the
// host's error interface. The Long argument of the status-returning members receives the
// count of numbers taken.

#include <cstdint>
#include <QObject>
#include <QString>

#include "rt/StringList.h"
#include "host/numbers/Statistic.h"

namespace host {

class Registry;

class FunctionLibrary : public QObject {
    Q_OBJECT
public:
    explicit FunctionLibrary(Registry& registry, QObject* parent = nullptr);

    // 1
    void Initialize();
    // 2 to 6
    QString Divisor(rt::StringList& values);
    QString Dispersion(rt::StringList& values);
    QString Median(rt::StringList& values);
    QString SquareDivisor(rt::StringList& values);
    QString MidHarmonic(rt::StringList& values);
    // 7: the mode. A stored value that is not a Long is Overflow (6), as at start-up.
    int32_t TypeNum();
    // 8 to 12
    bool MultunomialExt(rt::StringList& values, int32_t& count, QString& result);
    bool MidGeoExt(rt::StringList& values, int32_t& count, QString& result);
    bool MidGeo(rt::StringList& values, int32_t& count, QString& result);
    bool MaxCratExt(rt::StringList& values, int32_t& count, QString& result);
    bool MaxCrat(rt::StringList& values, int32_t& count, QString& result);
    // 13, 14: the least number rounded half to even; its 1-based place goes to `position`.
    // One beyond the range of a Long is Overflow (6).
    int32_t Min(rt::StringList& values, int32_t& position);
    int32_t MinExt(rt::StringList values, int32_t& position);
    // 15 to 20
    bool MinDevCratExt(rt::StringList& values, int32_t& count, QString& result);
    bool MinDevCrat(rt::StringList& values, int32_t& count, QString& result);
    bool Summ(rt::StringList& values, int32_t& count, QString& result);
    bool Mid(rt::StringList& values, QString& result);
    bool Multunomial(rt::StringList& values, int32_t& count, QString& result);
    bool Much(rt::StringList& values, int32_t& count, QString& result);
    // 21, 22: as Min and MinExt, for the greatest number.
    int32_t Max(rt::StringList& values, int32_t& position);
    int32_t MaxExt(rt::StringList& values, int32_t& position);
    // 23
    void Release();

    bool isInitialized() const { return initialized_; }

signals:
    // 0 to 100 while a statistic works through a long list.
    void ProgressChange(double value);

private:
    numbers::NumberType modeType();
    numbers::NumberType extendedType();
    numbers::StatisticResult run(numbers::Statistic statistic, numbers::NumberType type, const rt::StringList& values,
                                 const char* operation);
    QString text(numbers::Statistic statistic, numbers::NumberType type, const rt::StringList& values,
                 const char* operation);
    bool status(numbers::Statistic statistic, numbers::NumberType type, const rt::StringList& values,
                const char* operation, int32_t& count, QString& result);
    int32_t extreme(numbers::Statistic statistic, numbers::NumberType type, const rt::StringList& values,
                    const char* operation, int32_t& position);

    Registry& registry_;
    bool initialized_ = false;
};

}  // namespace host
