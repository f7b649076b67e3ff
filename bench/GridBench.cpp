// The main window on a large table. A Jet 4 database with one table of ROWS generated rows
// (default 1,000,000; id, name, amount, date, note) is made once with our own writer and
// kept in build/bench/data/. Then, each in a process of its own so that its peak memory is
// its own:
//   - "engine": the floor: a record set opened on the table through the engine's public
//     face, its first and last records read;
//   - "window": the program's main window (offscreen) opening the database as from the
//     command line, its first paint, Ctrl+End and the paint of the last screen, then a
//     hundred pages down, each painted.
// The same runs on a table a tenth the size, so the memory the window adds per row can be
// told apart from what it adds once. Prints the times (medians of the window's runs),
// peak resident memory and the ratios of the window against the engine.
//
//   build/bench/grid_bench [ROWS] [RUNS]        (RUNS: window runs, default 3)

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>

#include "app/ModMain.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"
#include "ScriptedUiServices.h"
#include "ui/SheetwrightApplication.h"
#include "ui/main/TableGrid.h"
#include "ui/main/frmTable.h"

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

const char* const kTable = "Big";

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

std::string makeDatabase(uint64_t rows)
{
    const fs::path dir = fs::path(SHEETWRIGHT_BINARY_DIR) / "bench" / "data";
    fs::create_directories(dir);
    const fs::path file = dir / ("grid-" + std::to_string(rows) + ".mdb");
    if (fs::exists(file))
        return file.string();
    const fs::path making = file.string() + ".making";
    const auto start = Clock::now();
    jet::createDatabase(making.string(), jet::Version::Jet4, 1251);
    {
        jet::Connection cn;
        cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + making.string());
        cn.Execute(std::string("CREATE TABLE ") + kTable +
                   " (id INTEGER, name VARCHAR(50), amount DOUBLE, stamp DATETIME, note VARCHAR(100))");
    }
    {
        auto db = jet::Database::open(making.string());
        jet::Transaction tx(*db);
        jet::TableWriter& writer = tx.table(kTable);
        for (uint64_t k = 0; k < rows; ++k)
            writer.insert({jet::Variant::longValue(int32_t(k + 1)), jet::Variant::string("row " + std::to_string(k + 1)),
                           jet::Variant::doubleValue(double(k % 10007) * 1.25),
                           jet::Variant::date(36526.0 + double(k % 9000)),
                           jet::Variant::string("generated note " + std::to_string(k * 2654435761u % 100000))});
        tx.commit();
    }
    fs::rename(making, file);
    std::fprintf(stderr, "made %s (%llu rows, %.1f MB) in %.1f s\n", file.c_str(), static_cast<unsigned long long>(rows),
                 double(fs::file_size(file)) / 1e6, msSince(start) / 1000);
    return file.string();
}

// "name=value" pairs printed by a child run.
using Figures = std::map<std::string, double>;

Figures runChild(const std::string& self, const std::string& mode, const std::string& file)
{
    const std::string command = "QT_QPA_PLATFORM=offscreen '" + self + "' --" + mode + " '" + file + "' 2>/dev/null";
    Figures figures;
    FILE* out = popen(command.c_str(), "r");
    char line[256];
    while (out && std::fgets(line, sizeof line, out)) {
        std::istringstream words(line);
        std::string pair;
        while (words >> pair)
            if (const size_t eq = pair.find('='); eq != std::string::npos)
                figures[pair.substr(0, eq)] = std::atof(pair.c_str() + eq + 1);
    }
    if (!out || pclose(out) != 0)
        std::fprintf(stderr, "failed: %s\n", command.c_str());
    return figures;
}

int engineRun(const std::string& file)
{
    const long before = peakKilobytes();
    const auto start = Clock::now();
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file);
    jet::Recordset rs;
    rs.Open(std::string("SELECT * FROM ") + kTable, cn, 2, 4);
    rs.MoveFirst();
    std::string first = rs.Fields()[1].Value().toString();
    rs.MoveLast();
    std::string last = rs.Fields()[1].Value().toString();
    std::printf("open_ms=%.1f rows=%d peak_kb=%ld base_kb=%ld\n", msSince(start), rs.RecordCount(), peakKilobytes(),
                before);
    return first.empty() || last.empty();
}

int windowRun(int argc, char** argv, const std::string& file)
{
    ui::SheetwrightApplication application(argc, argv);
    QTemporaryDir settings;
    qputenv("SHEETWRIGHT_REGISTRY", QFile::encodeName(settings.path()));
    rt::ScriptedUiServices services;
    rt::UiServicesScope use(services);
    ui::frmTable form;
    form.resize(1024, 768);
    form.show();
    form.grab();
    const long before = peakKilobytes();

    auto start = Clock::now();
    form.OpenCommandLineFile(QString::fromStdString(file));
    const double open = msSince(start);

    start = Clock::now();
    form.grab();
    const double firstPaint = msSince(start);

    start = Clock::now();
    QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::ControlModifier);
    QApplication::sendEvent(form.frdMain, &end);
    form.grab();
    const double toEnd = msSince(start);
    const bool atEnd = form.frdMain->Row() == form.frdMain->Rows() - 1;

    QKeyEvent home(QEvent::KeyPress, Qt::Key_Home, Qt::ControlModifier);
    QApplication::sendEvent(form.frdMain, &home);
    start = Clock::now();
    for (int page = 0; page < 100; ++page) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
        QApplication::sendEvent(form.frdMain, &down);
        form.frdMain->viewport()->grab();
    }
    const double pages = msSince(start) / 100;

    std::printf("open_ms=%.1f paint_ms=%.1f end_ms=%.1f page_ms=%.2f rows=%d peak_kb=%ld base_kb=%ld boxes=%zu\n", open,
                firstPaint, toEnd, pages, form.frdMain->Rows() - 1, peakKilobytes(), before, services.boxes().size());
    return atEnd && services.boxes().empty() ? 0 : 1;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "--engine")
        return engineRun(argv[2]);
    if (argc == 3 && std::string(argv[1]) == "--window")
        return windowRun(argc, argv, argv[2]);

    const uint64_t rows = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1000000;
    const int runs = argc > 2 ? std::atoi(argv[2]) : 3;
    const std::string self = fs::canonical("/proc/self/exe").string();
    std::printf("%10s %10s %10s %10s %10s %10s %12s %12s\n", "rows", "run", "open ms", "paint ms", "end ms", "page ms",
                "peak MB", "added MB");
    std::map<uint64_t, std::pair<Figures, Figures>> results;
    for (const uint64_t size : {rows / 10, rows}) {
        const std::string file = makeDatabase(size);
        const Figures engine = runChild(self, "engine", file);
        std::printf("%10llu %10s %10.1f %10s %10s %10s %12.1f %12.1f\n", static_cast<unsigned long long>(size), "engine",
                    engine.at("open_ms"), "-", "-", "-", engine.at("peak_kb") / 1024,
                    (engine.at("peak_kb") - engine.at("base_kb")) / 1024);
        std::vector<Figures> windows;
        for (int i = 0; i < runs; ++i)
            windows.push_back(runChild(self, "window", file));
        Figures window;
        for (const char* name : {"open_ms", "paint_ms", "end_ms", "page_ms", "peak_kb", "base_kb"}) {
            std::vector<double> values;
            for (const Figures& run : windows)
                values.push_back(run.count(name) ? run.at(name) : 0);
            window[name] = median(values);
        }
        std::printf("%10llu %10s %10.1f %10.1f %10.1f %10.2f %12.1f %12.1f\n", static_cast<unsigned long long>(size),
                    "window", window["open_ms"], window["paint_ms"], window["end_ms"], window["page_ms"],
                    window["peak_kb"] / 1024, (window["peak_kb"] - window["base_kb"]) / 1024);
        results[size] = {engine, window};
    }
    const auto& [smallEngine, smallWindow] = results[rows / 10];
    const auto& [bigEngine, bigWindow] = results[rows];
    const double extraRows = double(rows - rows / 10);
    auto perRow = [&](const Figures& small, const Figures& big) {
        return ((big.at("peak_kb") - big.at("base_kb")) - (small.at("peak_kb") - small.at("base_kb"))) * 1024 / extraRows;
    };
    std::printf("\nwindow against engine at %llu rows: open %.2fx, memory added %.2fx\n",
                static_cast<unsigned long long>(rows), bigWindow.at("open_ms") / bigEngine.at("open_ms"),
                (bigWindow.at("peak_kb") - bigWindow.at("base_kb")) / (bigEngine.at("peak_kb") - bigEngine.at("base_kb")));
    std::printf("memory per additional row: engine %.1f bytes, window %.1f bytes (%.2fx)\n", perRow(smallEngine, bigEngine),
                perRow(smallWindow, bigWindow), perRow(smallWindow, bigWindow) / perRow(smallEngine, bigEngine));
    std::printf("first paint %.1f ms, Ctrl+End with its paint %.1f ms, a page down with its paint %.2f ms (medians of %d)\n",
                bigWindow.at("paint_ms"), bigWindow.at("end_ms"), bigWindow.at("page_ms"), runs);
    return 0;
}
