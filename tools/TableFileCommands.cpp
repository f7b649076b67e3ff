#include "TableFileCommands.h"

#include <iostream>
#include <stdexcept>

#include <QStringList>

#include <QFileInfo>

#include "engine/XDataBase.h"
#include "rt/TextFiles.h"
#include "host/Registry.h"
#include "rt/VbError.h"
#include "lang/LangApp.h"
#include "rt/UiServices.h"

namespace sheetwright::cli {

namespace {

// The boxes the engine asks through, with nobody to answer: messages are kept for the
// error the command ends with; of the questions only the one that cannot change the
// outcome is answered (the number of the HTML table to read: every number reads the
// first).
class HeadlessUi : public rt::UiServices {
public:
    int32_t messageBox(const QString& prompt, int32_t /*style*/, const QString& /*title*/) override
    {
        messages << prompt;
        return rt::vbOK;
    }
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override
    {
        if (title == QStringLiteral("Введите номер таблицы"))
            return defaultText;
        throw std::runtime_error("nobody to answer: " + prompt.toStdString());
    }
    rt::FileDialogResult openFileDialog(const rt::FileDialogRequest&) override { throw unavailable(); }
    rt::FileDialogResult saveFileDialog(const rt::FileDialogRequest&) override { throw unavailable(); }
    void setClipboardText(const QString&) override { throw unavailable(); }
    QString clipboardText() override { throw unavailable(); }
    void showModalForm(const QString& formName, const QString&) override { throw noWindow(formName); }
    void showForm(const QString& formName) override { throw noWindow(formName); }

    QStringList messages;

private:
    static std::runtime_error unavailable() { return std::runtime_error("not available without a display"); }
    static std::runtime_error noWindow(const QString& formName)
    {
        return std::runtime_error("no window can be shown here (" + formName.toStdString() + ")");
    }
};

class UiScope {
public:
    explicit UiScope(rt::UiServices& services) { rt::UiServices::install(&services); }
    ~UiScope() { rt::UiServices::install(nullptr); }
};

// The engine on one database, as the program opens it (no login).
class Session {
public:
    explicit Session(const std::string& file)
        : registry_(host::Registry::defaultFolder()),
          engine_(registry_, engine::LoginGlobals{useLogin_, user_, password_, accepted_}, captions_)
    {
        if (!engine_.OpenDataBase(QString::fromStdString(file)))
            throw std::runtime_error("cannot open '" + file + "' as a database");
    }
    engine::XDataBase& engine() { return engine_; }
    const QStringList& messages() const { return ui_.messages; }
    bool hasTable(const QString& name) const
    {
        return engine_.Tables().items().contains(name, Qt::CaseInsensitive);
    }

private:
    HeadlessUi ui_;
    UiScope scope_{ui_};
    bool useLogin_ = false;
    bool accepted_ = false;
    QString user_;
    QString password_;
    lang::LangApp captions_;
    host::Registry registry_;
    engine::XDataBase engine_;
};

struct Options {
    std::vector<std::string> positional;
    std::string format;
    std::string separator = ";";
    std::string output;
};

Options parse(const std::vector<std::string>& args, bool exporting)
{
    Options o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool valued = a == "--format" || a == "--separator" || a == "-o";
        if (!valued) {
            o.positional.push_back(a);
            continue;
        }
        if (i + 1 >= args.size())
            throw std::invalid_argument(a + " needs a value");
        const std::string& value = args[++i];
        if (a == "--separator")
            o.separator = value;
        else if (exporting && a == "--format")
            o.format = value;
        else if (exporting && a == "-o")
            o.output = value;
        else
            throw std::invalid_argument("import takes no " + a);
    }
    return o;
}

}  // namespace

int exportTableFile(const std::vector<std::string>& args)
{
    const Options o = parse(args, true);
    if (o.positional.size() != 2 || (o.format != "text" && o.format != "xml" && o.format != "html"))
        throw std::invalid_argument("export takes FILE TABLE --format text|xml|html [--separator S] [-o OUT]");
    Session session(o.positional[0]);
    engine::XDataBase& db = session.engine();
    const QString table = QString::fromStdString(o.positional[1]);
    if (!session.hasTable(table))
        throw std::runtime_error("'" + o.positional[0] + "' has no table '" + o.positional[1] + "'");
    db.setCurrentTable(table);
    const QString out = QString::fromStdString(o.output.empty() ? "/dev/stdout" : o.output);
    std::cout.flush();
    if (o.format == "text")
        db.SaveTable(out, QString::fromStdString(o.separator));
    else if (o.format == "xml")
        db.SaveTableXML(out);
    else
        db.SaveTableHTML(out);
    rt::TextFiles::program().CloseAll();
    return 0;
}

int importTableFile(const std::vector<std::string>& args)
{
    const Options o = parse(args, false);
    if (o.positional.size() != 2)
        throw std::invalid_argument("import takes FILE TABLEFILE [--separator S]");
    // An absolute path, as the program's file dialogs give it.
    const QString tableFile = QFileInfo(QString::fromStdString(o.positional[1])).absoluteFilePath();
    if (!QFileInfo(tableFile).isFile())
        throw std::runtime_error("cannot read '" + o.positional[1] + "'");
    Session session(o.positional[0]);
    engine::XDataBase& db = session.engine();
    const QString name = engine::XDataBase::ImportedTableName(tableFile);
    if (session.hasTable(name))
        throw std::runtime_error("'" + o.positional[0] + "' already has a table '" + name.toStdString() +
                                 "': rename the file or drop that table first");
    db.setDefaultSeparator(QString::fromStdString(o.separator));
    if (!db.OpenTable(tableFile))
        throw std::runtime_error("cannot import '" + o.positional[1] + "': " +
                                 (session.messages().isEmpty() ? std::string("it holds no table of its format")
                                                               : session.messages().join(' ').toStdString()));
    std::cout << db.AddedTable().toStdString() << "\n";
    return 0;
}

}  // namespace sheetwright::cli
