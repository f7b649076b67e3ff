#pragma once
// The program's numbered files, as the run time keeps them: a file is opened under a
// number (FreeFile gives the lowest one not in use), read or written line by line through
// that number, and closed by its number or, all of them at once, by CloseAll. The table
// is the program's, not a caller's: a writer that closes all files closes every file any
// part of the program has open, as the run time's Close without a number does.
//
// Input is read as TextLineReader reads it. Output is written in the program's ANSI code
// page, each line ending in CR LF. Errors are the run time's: 52 for a number outside
// 1-511 or one that is not open, 54 for reading a file opened for output or writing one
// opened for input, 55 for opening a number that is open, 67 when no number is free, 76
// when the folder does not exist, 75 when the file cannot be opened or written (61 when
// the disk is full).

#include <cstdint>
#include <map>
#include <memory>
#include <QFile>
#include <QString>

#include "rt/TextLineReader.h"

namespace rt {

class TextFiles {
public:
    enum class Mode {
        Input,   // the file must exist
        Output,  // created, or emptied when it exists
        Append,  // created, or written after what it holds
    };

    // The program's one table.
    static TextFiles& program();

    TextFiles() = default;
    ~TextFiles();
    TextFiles(const TextFiles&) = delete;
    TextFiles& operator=(const TextFiles&) = delete;

    int16_t FreeFile() const;
    void Open(const QString& path, Mode mode, int16_t number);
    // Line Input #number.
    QString LineInput(int16_t number);
    // EOF(number): true when no further line can be read.
    bool Eof(int16_t number);
    // Print #number, text: the text and CR LF.
    void PrintLine(int16_t number, const QString& text);
    // Closing a number that is not open does nothing.
    void Close(int16_t number);
    // Closes every open file; the first error a close met is raised after all are closed.
    void CloseAll();
    bool isOpen(int16_t number) const { return files_.count(number) != 0; }

private:
    struct OpenFile {
        Mode mode = Mode::Input;
        std::unique_ptr<TextLineReader> input;
        std::unique_ptr<QFile> output;
    };
    OpenFile& opened(int16_t number, bool forInput);

    std::map<int16_t, OpenFile> files_;
};

}  // namespace rt
