#pragma once
// A fresh folder for one test, removed with everything in it when the test ends.

#include <string>

namespace jet::testkit {

class TempDir {
public:
    // InMemory puts the folder on a RAM file system where there is one: for tests whose
    // durability is modelled by the fault-injecting Env, real syncs only cost time.
    enum class Place { Disk, InMemory };
    explicit TempDir(Place place = Place::Disk);
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// Whole-file helpers for checking what is on disk, past every Env.
std::string readAll(const std::string& path);
void writeAll(const std::string& path, const std::string& bytes);

}  // namespace jet::testkit
