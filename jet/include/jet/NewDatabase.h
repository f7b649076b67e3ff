#pragma once
// New databases: empty ones of either format, written from nothing (the header, the global
// usage map, the four system tables with their usage maps, index roots and first data
// pages, and the catalogue rows and permission rows every database starts with), and
// copies of an existing database such as a template.
//
// Both end the same way: the target is taken over by the pager (refused when another
// program has it open; a rollback journal a crash left beside it is discarded then, since
// applying it to the new contents would corrupt them) and the new pages are copied over it
// in one transaction, so that a failure or a crash leaves either the complete new file or
// none, never a database with half its catalogue. Everything that can be refused (a source
// that is no database, a target in use, a folder that is missing or read-only) is refused
// before the target is touched. An empty database is built first beside the target
// ("<path>.creating"), a scratch file that is removed afterwards.

#include <cstdint>
#include <string>

#include "jet/Version.h"

namespace jet {

class Env;

// The code page new Jet 3 files take: the program's ANSI code page, Windows-1251 unless the
// environment variable SHEETWRIGHT_CODEPAGE names another Windows code page ("windows-1252",
// "cp1252" or "1252") that the engine can convert. Jet 4 files hold Unicode text and say
// 1252 in their header whatever this is.
uint16_t programCodePage();

// Writes a new, empty database at `path`, replacing a file of that name. Jet 3 files get
// `codePage` and the "General" sort order, so text of that code page can be stored in
// them. Throws RuntimeError when the file cannot be written; nothing is left behind then.
// The Env overloads let tests put a fault-injecting file system underneath.
void createDatabase(const std::string& path, Version version, uint16_t codePage);
void createDatabase(const std::string& path, Version version, uint16_t codePage, Env& env);
inline void createDatabase(const std::string& path, Version version) {
    createDatabase(path, version, programCodePage());
}

// Replaces the database at `target` (or creates it) with a byte-for-byte copy of the
// database at `source`. Throws RuntimeError when the source cannot be read as a database
// (the target is left as it was), when the target is in use or cannot be written (left as
// it was too), or when writing the copy fails (the target is removed then, never left
// holding part of a copy).
void copyDatabase(const std::string& source, const std::string& target);
void copyDatabase(const std::string& source, const std::string& target, Env& env);

}  // namespace jet
