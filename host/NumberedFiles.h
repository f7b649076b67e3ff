#pragma once
// The program's numbered files, as the run time keeps them: a file is opened under a free
// number (1 to 255), written line by line through that number, and stays open until it
// is closed by number or every open file is closed at once ("close all"). Writers of the
// program close all before or after they write; a file left open by an error is closed
// by the next close all, and by the end of the program.
//
// Lines go out in the program's ANSI code page, each followed by CR LF; characters the
// code page cannot hold become "?".

#include <array>
#include <cstdint>
#include <memory>
#include <QFile>
#include <QString>

namespace host {

class NumberedFiles {
public:
    static constexpr int16_t kMaxNumber = 255;

    // The one table of the program.
    static NumberedFiles& program();

    // The lowest number no file is open under; error 67 when all are taken. The number is
    // not reserved: it is taken when a file is opened under it.
    int16_t FreeFile() const;
    // Opens the file for sequential output, emptying it. Errors: 52 for a number outside
    // 1 to 255, 55 when one is open under it, 76 when the folder does not exist, 75 when
    // the file cannot be written (a folder, no permission).
    void OpenForOutput(int16_t number, const QString& path);
    // Writes the text and CR LF. Error 52 when no file is open under the number; 61 when
    // the disk is full, 57 for any other failed write.
    void PrintLine(int16_t number, const QString& text);
    // Closes the file open under the number (nothing when none is); a write that fails as
    // the rest of the file goes out is error 61 or 57, and the file is closed all the same.
    void Close(int16_t number);
    // Closes every open file; the first failure is raised once all are closed.
    void CloseAll();

    int32_t openCount() const;

private:
    QFile* fileOf(int16_t number) const;

    std::array<std::unique_ptr<QFile>, kMaxNumber + 1> files_;
};

}  // namespace host
