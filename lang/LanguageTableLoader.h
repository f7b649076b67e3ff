#pragma once
// Reads the parts of the host's language table that concern this program into a LangApp.
//
// The file is read once, line by line, in a fixed order of sections, and every line is
// compared exactly (see share/languages/README.md for the layout). The loader answers a
// wrong banner, a version above 1 and any structural fault with its message box and
// stops; what it added before the faulty line stays. It has no error handler of its own:
// a file that cannot be opened, ends early (error 62) or has a line GetToken cannot take
// (an empty line, error 9; a very long one, error 6) raises the run-time error to the
// caller. The file is closed on every way out.

#include <QString>

namespace host {
class Registry;
}
namespace rt {
class TextLineReader;
class UiServices;
}  // namespace rt

namespace lang {

class LangApp;

class LanguageTableLoader {
public:
    LanguageTableLoader(LangApp& lang, host::Registry& registry, rt::UiServices& ui);

    // Loads the named file from the language folder the registry names (HKEY_LOCAL_MACHINE,
    // "Software\Vorbex\Settings\Languages", default value). Always returns false: success
    // shows only in what was filled in.
    bool load(const QString& fileName);

    // Loads from an opened file; `shownPath` is the path the messages name.
    bool loadFrom(rt::TextLineReader& in, const QString& shownPath);

private:
    LangApp& lang_;
    host::Registry& registry_;
    rt::UiServices& ui_;
};

}  // namespace lang
