// libFuzzer target for one table-file reader (built once per reader: TABLE_FILE_EXTENSION
// picks it, as OpenTable does). The bytes become a file that is imported into a small
// database holding one table of its own. The reader may end in a new table, in False (the
// XML reader with at most one message), or in a run-time error; after any of these the
// database must check clean and its own table must hold what it held. Anything else (a
// crash, another exception, a hang, a sanitizer report, more boxes) is a bug.
//
// Seeds are in tests/engine/formats/fuzz-seeds; see the README's development section.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "../../support/StandaloneEngine.h"
#include "../../support/TestSupport.h"

#include "rt/TextFiles.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"

namespace {

constexpr int kOwnRows = 3;

// Everything made once: a folder in memory, the pristine database, the settings folder.
struct Setting {
    Setting()
    {
        const QString base = QDir("/dev/shm").exists() ? "/dev/shm" : QDir::tempPath();
        folder = base + QString("/table-file-fuzz-%1").arg(QCoreApplication::applicationPid());
        QDir().mkpath(folder + "/registry");
        qputenv("SHEETWRIGHT_REGISTRY", QFile::encodeName(folder + "/registry"));
        pristine = folder + "/pristine.mdb";
        work = folder + "/work.mdb";
        input = folder + "/input" TABLE_FILE_EXTENSION;
        jet::createDatabase(pristine.toStdString(), jet::Version::Jet4, 1251);
        jet::Connection cn;
        cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + pristine.toStdString());
        cn.Execute("CREATE TABLE Own (id INTEGER, note TEXT(20))", nullptr, -1);
        jet::Recordset rs;
        rs.Open("SELECT * FROM Own", cn, 2, 4);
        for (int i = 0; i < kOwnRows; ++i) {
            rs.AddNew();
            rs.Fields()[0].setValue(jet::Variant::longValue(i));
            rs.Fields()[1].setValue(jet::Variant::string("row"));
        }
        rs.UpdateBatch();
    }
    ~Setting() { QDir(folder).removeRecursively(); }

    QString folder, pristine, work, input;
};

int32_t ownRows(const QString& database)
{
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + database.toStdString());
    jet::Recordset rs;
    rs.Open("SELECT * FROM Own", cn);
    return rs.RecordCount();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Setting setting;
    QFile::remove(setting.work);
    QFile::remove(setting.work + "-journal");
    if (!QFile::copy(setting.pristine, setting.work))
        std::abort();
    writeFile(setting.input, QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    {
        StandaloneEngine standalone;
        // The number of the HTML table to read, should the page hold several.
        standalone.fake.answerInputBox("2");
        if (!standalone.db.OpenDataBase(setting.work))
            std::abort();
        runTimeErrorOf([&] { standalone.db.OpenTable(setting.input); });
        if (standalone.fake.messageBoxes().size() > 1 || standalone.fake.boxes().size() > 2)
            std::abort();
        rt::TextFiles::program().CloseAll();
    }
    if (!jet::check(setting.work.toStdString()).clean() || ownRows(setting.work) != kOwnRows)
        std::abort();
    return 0;
}
