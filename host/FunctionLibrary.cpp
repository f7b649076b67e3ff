#include "host/FunctionLibrary.h"

#include "host/HostDiagnostics.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"
#include "host/numbers/Statistics.h"

namespace host {

using numbers::NumberType;
using numbers::Statistic;

namespace {

// The list's texts as the numeric core reads them, without copying one.
class ListTexts final : public numbers::CellTexts {
public:
    explicit ListTexts(const QStringList& items) : items_(items) {}
    std::size_t size() const override { return std::size_t(items_.size()); }
    std::u16string_view text(std::size_t index) const override
    {
        const QString& item = items_.at(qsizetype(index));
        return {reinterpret_cast<const char16_t*>(item.utf16()), std::size_t(item.size())};
    }

private:
    const QStringList& items_;
};

int32_t clampedCount(std::size_t count)
{
    return count > std::size_t(INT32_MAX) ? INT32_MAX : int32_t(count);
}

}  // namespace

FunctionLibrary::FunctionLibrary(Registry& registry, QObject* parent) : QObject(parent), registry_(registry) {}

void FunctionLibrary::Initialize()
{
    initialized_ = true;
}

QString FunctionLibrary::Divisor(rt::StringList& values)
{
    return text(Statistic::AverageDeviation, modeType(), values, "Divisor");
}

QString FunctionLibrary::Dispersion(rt::StringList& values)
{
    return text(Statistic::Variance, modeType(), values, "Dispersion");
}

QString FunctionLibrary::Median(rt::StringList& values)
{
    return text(Statistic::Median, modeType(), values, "Median");
}

QString FunctionLibrary::SquareDivisor(rt::StringList& values)
{
    return text(Statistic::StandardDeviation, modeType(), values, "SquareDivisor");
}

QString FunctionLibrary::MidHarmonic(rt::StringList& values)
{
    return text(Statistic::HarmonicMean, modeType(), values, "MidHarmonic");
}

int32_t FunctionLibrary::TypeNum()
{
    return rt::CLng(rt::Val(registry_.read(HKEY_LOCAL_MACHINE, keys::Pro, keys::TypeNum)));
}

bool FunctionLibrary::MultunomialExt(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::Multinomial, extendedType(), values, "MultunomialExt", count, result);
}

bool FunctionLibrary::MidGeoExt(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::GeometricMean, extendedType(), values, "MidGeoExt", count, result);
}

bool FunctionLibrary::MidGeo(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::GeometricMean, NumberType::Ordinary, values, "MidGeo", count, result);
}

bool FunctionLibrary::MaxCratExt(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::GreatestCommonDivisor, extendedType(), values, "MaxCratExt", count, result);
}

bool FunctionLibrary::MaxCrat(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::GreatestCommonDivisor, NumberType::Ordinary, values, "MaxCrat", count, result);
}

int32_t FunctionLibrary::Min(rt::StringList& values, int32_t& position)
{
    return extreme(Statistic::Min, NumberType::Ordinary, values, "Min", position);
}

int32_t FunctionLibrary::MinExt(rt::StringList values, int32_t& position)
{
    return extreme(Statistic::Min, extendedType(), values, "MinExt", position);
}

bool FunctionLibrary::MinDevCratExt(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::LeastCommonMultiple, extendedType(), values, "MinDevCratExt", count, result);
}

bool FunctionLibrary::MinDevCrat(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::LeastCommonMultiple, NumberType::Ordinary, values, "MinDevCrat", count, result);
}

bool FunctionLibrary::Summ(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::Sum, modeType(), values, "Summ", count, result);
}

bool FunctionLibrary::Mid(rt::StringList& values, QString& result)
{
    int32_t count = 0;
    return status(Statistic::Average, modeType(), values, "Mid", count, result);
}

bool FunctionLibrary::Multunomial(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::Multinomial, NumberType::Ordinary, values, "Multunomial", count, result);
}

bool FunctionLibrary::Much(rt::StringList& values, int32_t& count, QString& result)
{
    return status(Statistic::Product, modeType(), values, "Much", count, result);
}

int32_t FunctionLibrary::Max(rt::StringList& values, int32_t& position)
{
    return extreme(Statistic::Max, NumberType::Ordinary, values, "Max", position);
}

int32_t FunctionLibrary::MaxExt(rt::StringList& values, int32_t& position)
{
    return extreme(Statistic::Max, extendedType(), values, "MaxExt", position);
}

void FunctionLibrary::Release()
{
    initialized_ = false;
}

NumberType FunctionLibrary::modeType()
{
    const int32_t mode = TypeNum();
    return mode == 0 ? NumberType::Ordinary : (mode == 2 ? NumberType::Binary : NumberType::Decimal);
}

NumberType FunctionLibrary::extendedType()
{
    return TypeNum() == 2 ? NumberType::Binary : NumberType::Decimal;
}

numbers::StatisticResult FunctionLibrary::run(Statistic statistic, NumberType type, const rt::StringList& values,
                                              const char* operation)
{
    const ListTexts texts(values.items());
    numbers::StatisticResult result =
        numbers::computeStatistic(statistic, type, texts, [this](int percent) { emit ProgressChange(percent); });
    if (result.refusal != numbers::Refusal::None)
        HostDiagnostics::current().reportError(numbers::errorNumberOf(result.refusal),
                                               QString::fromLatin1(numbers::descriptionOf(result.refusal)),
                                               QString::fromLatin1(operation), QStringLiteral("FunctionLibrary"),
                                               QStringLiteral("Functions"));
    return result;
}

QString FunctionLibrary::text(Statistic statistic, NumberType type, const rt::StringList& values, const char* operation)
{
    return QString::fromStdString(run(statistic, type, values, operation).text);
}

bool FunctionLibrary::status(Statistic statistic, NumberType type, const rt::StringList& values, const char* operation,
                             int32_t& count, QString& result)
{
    const numbers::StatisticResult outcome = run(statistic, type, values, operation);
    result = QString::fromStdString(outcome.text);
    count = clampedCount(outcome.count);
    return outcome.refusal == numbers::Refusal::None;
}

int32_t FunctionLibrary::extreme(Statistic statistic, NumberType type, const rt::StringList& values,
                                 const char* operation, int32_t& position)
{
    const numbers::StatisticResult outcome = run(statistic, type, values, operation);
    position = clampedCount(outcome.position);
    if (outcome.refusal != numbers::Refusal::None)
        return 0;
    if (!outcome.roundedExtreme || *outcome.roundedExtreme < INT32_MIN || *outcome.roundedExtreme > INT32_MAX)
        throw rt::vbError(rt::vberr::Overflow);
    return int32_t(*outcome.roundedExtreme);
}

}  // namespace host
