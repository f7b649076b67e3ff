#include "WritableCopy.h"

#include <filesystem>

namespace jet::testkit {

std::string fixturePath(const std::string& name) { return std::string(SHEETWRIGHT_MDB_FIXTURES) + "/" + name; }

WritableCopy::WritableCopy(const std::string& fixtureName, TempDir::Place place) : dir_(place) {
    path_ = dir_.file(fixtureName);
    std::filesystem::copy_file(fixturePath(fixtureName), path_);
    std::filesystem::permissions(path_, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
}

std::string WritableCopy::connectionString() const {
    return "Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path_;
}

}  // namespace jet::testkit
