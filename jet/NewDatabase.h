#pragma once
// New, empty databases of either format, written from nothing: the header, the global
// usage map, the four system tables with their usage maps, index roots and first data
// pages, and the catalogue rows and permission rows every database starts with. No
// template file is involved.
//
// A new file is first built beside the target ("<path>.creating") and then copied over it
// in one transaction, so that a failure or a crash leaves either the complete new file or
// an empty one, never a database with half its catalogue; the scratch file is removed.

#include <cstdint>
#include <string>

#include "Env.h"
#include "Format.h"

namespace jet {

// The code page new Jet 3 files take: the program's ANSI code page, Windows-1251 unless the
// environment variable SHEETWRIGHT_CODEPAGE names another Windows code page ("windows-1252",
// "cp1252" or "1252") that the engine can convert. Jet 4 files hold Unicode text and say
// 1252 in their header whatever this is.
uint16_t programCodePage();

// Writes a new, empty database at `path`, replacing a file of that name. Jet 3 files get
// `codePage` and the "General" sort order, so text of that code page can be stored in
// them. Throws RuntimeError when the file cannot be written; nothing is left behind then.
void createDatabase(const std::string& path, Version version, uint16_t codePage, Env& env = Env::posix());
inline void createDatabase(const std::string& path, Version version) {
    createDatabase(path, version, programCodePage());
}

}  // namespace jet
