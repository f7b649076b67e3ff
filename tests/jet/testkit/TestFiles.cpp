#include "TestFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "table/Database.h"

namespace jet::testkit {

namespace fs = std::filesystem;

TempDir::TempDir(Place place) {
    fs::path parent = fs::temp_directory_path();
    if (place == Place::InMemory && ::access("/dev/shm", W_OK) == 0) parent = "/dev/shm";
    std::string pattern = (parent / "sheetwright-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot create a temporary folder");
    path_ = pattern;
}

TempDir::~TempDir() {
    // Tests make files and folders read-only; give the owner back the right to remove them.
    std::error_code ec;
    for (auto it = fs::recursive_directory_iterator(path_, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec))
        fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(path_, ec);
}

WritableCopy::WritableCopy(const std::string& fixtureName, TempDir::Place place)
    : dir_(place), path_(dir_.file(fixtureName)) {
    fs::copy_file(fixturePath(fixtureName), path_);
    fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add);
}

std::string fixturePath(const std::string& name) { return std::string(SHEETWRIGHT_MDB_FIXTURES) + "/" + name; }

std::vector<std::string> fixtureNames() {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(SHEETWRIGHT_MDB_FIXTURES))
        if (e.path().extension() == ".mdb") names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read '" + path + "'");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<uint8_t> readBytes(const std::string& path) {
    const std::string bytes = readAll(path);
    return {bytes.begin(), bytes.end()};
}

void writeAll(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), std::streamsize(bytes.size()));
    if (!out) throw std::runtime_error("cannot write '" + path + "'");
}

std::unique_ptr<Database> openInMemory(std::vector<uint8_t> bytes) {
    return Database::open(std::make_unique<MemoryFile>(std::move(bytes)), "memory.mdb");
}

std::vector<uint8_t> hex(std::string_view text) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == ' ' || text[i] == '|') {
            ++i;
            continue;
        }
        out.push_back(uint8_t(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
        i += 2;
    }
    return out;
}

std::string runCommand(const std::string& command) {
    std::string out;
    FILE* p = ::popen(command.c_str(), "r");
    if (!p) return out;
    char buf[65536];
    for (size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    ::pclose(p);
    return out;
}

}  // namespace jet::testkit
