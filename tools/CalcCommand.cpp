#include "CalcCommand.h"

#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>

#include <QTemporaryDir>

#include "CellRanges.h"
#include "engine/Table_Selection.h"
#include "engine/XDataBase.h"
#include "lang/LangApp.h"
#include "host/HostDiagnostics.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"

namespace sheetwright::cli {

namespace {

// The main window's commands and their calculation numbers.
const std::map<std::string, int32_t> kStatistics = {
    {"mindevcrat", 1}, {"midgeo", 3}, {"max", 4}, {"mid", 5}, {"min", 6}, {"much", 7},
    {"multunomial", 8}, {"summ", 9}, {"median", 11}, {"midharmonic", 12}, {"squaredivisor", 13}, {"divisor", 14},
};

int32_t statisticIndex(const std::string& name)
{
    std::string lower;
    for (char c : name)
        lower += char(std::tolower(static_cast<unsigned char>(c)));
    if (const auto found = kStatistics.find(lower); found != kStatistics.end())
        return found->second;
    if (!lower.empty() && lower.size() <= 2 && lower.find_first_not_of("0123456789") == std::string::npos) {
        const int32_t index = std::stoi(lower);
        if (index >= 1 && index <= 14)
            return index;
    }
    throw std::invalid_argument("unknown statistic '" + name +
                                "' (Summ, Much, Mid, Max, Min, MidGeo, Multunomial, MinDevCrat, Divisor, "
                                "SquareDivisor, Median, MidHarmonic, or 1 to 14)");
}

engine::Table_Selection selectionOf(const std::vector<CellRange>& ranges)
{
    engine::Table_Selection selection;
    for (const CellRange& range : ranges) {
        auto area = std::make_shared<engine::Rows_Selection>();
        area->Start().setColumn(range[0]);
        area->Start().setRow(range[1]);
        area->Finish().setColumn(range[2]);
        area->Finish().setRow(range[3]);
        selection.AddSelection(area);
    }
    return selection;
}

// Keeps what the function library reports instead of logging it.
class LibraryReport final : public host::HostDiagnostics {
public:
    LibraryReport() { install(this); }
    ~LibraryReport() override { install(nullptr); }
    void trace(const QString&) override {}
    void reportError(int32_t, const QString& description, const QString& procedure, const QString&,
                     const QString&) override
    {
        if (message.empty())
            message = procedure.toStdString() + ": " + description.toStdString();
    }
    std::string message;
};

}  // namespace

int calc(const std::vector<std::string>& a)
{
    const bool typed = a.size() == 6 && a[4] == "--type";
    if (a.size() != 4 && !typed)
        throw std::invalid_argument("calc takes FILE TABLE RANGE STATISTIC [--type 0|1|2]");
    if (typed && a[5] != "0" && a[5] != "1" && a[5] != "2")
        throw std::invalid_argument("unknown number type '" + a[5] + "' (0, 1 or 2)");
    const engine::Table_Selection selection = selectionOf(parseCellRanges(a[2]));
    const int32_t index = statisticIndex(a[3]);

    // A number type given for this run goes into a registry of its own, so the user's
    // shared setting stays as it is.
    std::optional<QTemporaryDir> runRegistry;
    QString registryFolder = host::Registry::defaultFolder();
    if (typed) {
        runRegistry.emplace();
        if (!runRegistry->isValid())
            throw std::runtime_error("cannot make a temporary folder");
        registryFolder = runRegistry->path();
    }
    host::Registry registry(registryFolder);
    if (typed)
        registry.write(host::HKEY_LOCAL_MACHINE, host::keys::Pro, host::keys::TypeNum, QString::fromStdString(a[5]));

    bool useLogin = false, accepted = false;
    QString user, password;
    lang::LangApp captions;
    engine::XDataBase database(registry, {useLogin, user, password, accepted}, captions);
    if (!database.OpenDataBase(QString::fromStdString(a[0])))
        throw std::runtime_error("cannot open '" + a[0] + "' as a database");
    const QString wanted = QString::fromStdString(a[1]);
    QString table;
    for (const QString& name : database.Tables().items()) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0)
            table = name;
    }
    if (table.isEmpty())
        throw std::runtime_error("no table '" + a[1] + "' in '" + a[0] + "'");
    database.setCurrentTable(table);

    LibraryReport report;
    const QString result = database.Calculate(selection, index);
    if (!report.message.empty())
        throw std::runtime_error(report.message);
    std::cout << result.toStdString() << "\n";
    return 0;
}

}  // namespace sheetwright::cli
