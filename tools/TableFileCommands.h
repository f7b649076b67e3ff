#pragma once
// The companion's table-file verbs, through the program's own engine (XDataBase), so a
// file comes out byte for byte as the program writes it and is read as the program reads
// it:
//
//   export FILE TABLE --format text|xml|html [--separator S] [-o OUT]
//   import FILE TABLEFILE [--separator S]
//
// Without -o the table goes to standard output (an HTML page then names /dev/stdout in
// its title). Text is separated by S, ";" by default; import reads text files other than
// ".txt" with S (";" by default), as the program does with its separator setting. import
// prints the new table's name. A table of the same name is refused before anything is
// written: nobody is there to be asked for another name.

#include <string>
#include <vector>

namespace sheetwright::cli {

// Both return the exit status; a wrong command line is std::invalid_argument, a failure
// jet::RuntimeError or std::runtime_error.
int exportTableFile(const std::vector<std::string>& args);
int importTableFile(const std::vector<std::string>& args);

}  // namespace sheetwright::cli
