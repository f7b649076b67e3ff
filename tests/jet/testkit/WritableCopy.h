#pragma once
// A fixture database copied into a fresh temporary folder, so a test may write it without
// touching the read-only originals.

#include <string>

#include "TempDir.h"

namespace jet::testkit {

class WritableCopy {
public:
    explicit WritableCopy(const std::string& fixtureName, TempDir::Place place = TempDir::Place::Disk);

    const std::string& path() const { return path_; }
    const TempDir& dir() const { return dir_; }
    // A connection string with the provider that opens both formats.
    std::string connectionString() const;

private:
    TempDir dir_;
    std::string path_;
};

// The path of a fixture in the repository's corpus.
std::string fixturePath(const std::string& name);

}  // namespace jet::testkit
