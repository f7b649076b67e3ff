// The table files timed through the program's engine: a generated table of N rows
// (default 100,000) saved as XML and as HTML and each file imported back as a new table,
// and a table of 3,276 rows (the most a text save holds) saved as separated text and
// imported back. Each step runs R times (default 3) and the median is printed with its
// throughput in MB/s of file and rows/s, against mdb-export writing the same table as CSV
// when it is installed.
//
//   build/bench/table_file_bench [N] [R] [FOLDER]     (FOLDER: a new temporary folder)

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include "../tests/support/StandaloneEngine.h"

#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"

namespace {

constexpr int kTextRows = 3276;

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// Seconds of the median of `repeat` runs; run k gets its number.
double timed(int repeat, const std::function<void(int)>& run)
{
    std::vector<double> seconds;
    for (int k = 0; k < repeat; ++k) {
        QElapsedTimer timer;
        timer.start();
        run(k);
        seconds.push_back(timer.nsecsElapsed() / 1e9);
    }
    return median(seconds);
}

// A table of five columns, text and numbers, in one transaction.
void generate(const QString& database, const QString& table, int rows)
{
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + database.toStdString());
    cn.Execute("CREATE TABLE " + table.toStdString() + " (id INTEGER, name TEXT(50), price DOUBLE, note TEXT(100), code TEXT(10))",
               nullptr, -1);
    jet::Recordset rs;
    rs.Open("SELECT * FROM " + table.toStdString(), cn, 2, 4);
    for (int k = 0; k < rows; ++k) {
        rs.AddNew();
        rs.Fields()[0].setValue(jet::Variant::longValue(k));
        rs.Fields()[1].setValue(jet::Variant::string("customer " + std::to_string(k * 7919 % 100000)));
        rs.Fields()[2].setValue(jet::Variant::doubleValue(k * 0.25));
        rs.Fields()[3].setValue(jet::Variant::string(k % 5 == 0 ? "" : "order for item " + std::to_string(k % 977)));
        rs.Fields()[4].setValue(jet::Variant::string("C" + std::to_string(k % 10000)));
    }
    rs.UpdateBatch();
}

void report(const char* what, double seconds, qint64 bytes, int rows, double reference = 0)
{
    std::printf("%-28s %8.3f s  %7.2f MB/s  %10.0f rows/s", what, seconds, bytes / 1e6 / seconds, rows / seconds);
    if (reference > 0)
        std::printf("  (%.2fx mdb-export)", seconds / reference);
    std::printf("\n");
}

double mdbExport(const QString& database, const QString& table, const QString& out, int repeat)
{
    if (std::system("command -v mdb-export >/dev/null 2>&1") != 0)
        return 0;
    const std::string command = "mdb-export '" + database.toStdString() + "' " + table.toStdString() + " > '" +
                                out.toStdString() + "'";
    return timed(repeat, [&](int) {
        if (std::system(command.c_str()) != 0)
            std::fprintf(stderr, "failed: %s\n", command.c_str());
    });
}

}  // namespace

int main(int argc, char** argv)
{
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int repeat = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    QTemporaryDir temporary;
    const QString folder = argc > 3 ? QString::fromLocal8Bit(argv[3]) : temporary.path();
    QDir().mkpath(folder + "/registry");
    qputenv("SHEETWRIGHT_REGISTRY", QFile::encodeName(folder + "/registry"));
    const QString database = folder + "/bench.mdb";
    QFile::remove(database);
    jet::createDatabase(database.toStdString(), jet::Version::Jet4, 1251);
    generate(database, "Big", rows);
    generate(database, "Small", kTextRows);

    StandaloneEngine standalone;
    engine::XDataBase& db = standalone.db;
    if (!db.OpenDataBase(database)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(database));
        return 1;
    }
    std::printf("%d rows (XML, HTML), %d rows (text), median of %d, in %s\n", rows, kTextRows, repeat, qPrintable(folder));
    const double referenceBig = mdbExport(database, "Big", folder + "/big.csv", repeat);
    const double referenceSmall = mdbExport(database, "Small", folder + "/small.csv", repeat);
    if (referenceBig > 0)
        report("mdb-export, CSV", referenceBig, QFileInfo(folder + "/big.csv").size(), rows);

    struct Format {
        const char* name;
        const char* extension;
        QString table;
        int rows;
        double reference;
        std::function<void(const QString&)> save;
    };
    const std::vector<Format> formats = {
        {"XML", ".xml", "Big", rows, referenceBig, [&](const QString& f) { db.SaveTableXML(f); }},
        {"HTML", ".htm", "Big", rows, referenceBig, [&](const QString& f) { db.SaveTableHTML(f); }},
        {"text", ".csv", "Small", kTextRows, referenceSmall, [&](const QString& f) { db.SaveTable(f, ";"); }},
    };
    db.setDefaultSeparator(";");
    for (const Format& format : formats) {
        db.setCurrentTable(format.table);
        const QString saved = folder + "/saved" + format.extension;
        const double save = timed(repeat, [&](int) { format.save(saved); });
        const qint64 bytes = QFileInfo(saved).size();
        report((std::string(format.name) + " save").c_str(), save, bytes, format.rows, format.reference);
        const double import = timed(repeat, [&](int k) {
            const QString copy = folder + "/" + format.name + "_import_" + QString::number(k) + format.extension;
            QFile::remove(copy);
            QFile::copy(saved, copy);
            if (!db.OpenTable(copy))
                std::fprintf(stderr, "import of %s failed\n", qPrintable(copy));
        });
        report((std::string(format.name) + " import").c_str(), import, bytes, format.rows);
    }
    return 0;
}
