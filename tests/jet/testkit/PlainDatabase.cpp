#include "PlainDatabase.h"

#include <cstring>

#include "TempDir.h"
#include "jet/Bytes.h"

namespace jet::testkit {

namespace {
constexpr char magic[8] = {'P', 'L', 'A', 'I', 'N', 'D', 'B', '\0'};
}

std::string plainPage(uint32_t n, uint32_t pageSize) {
    std::string page(pageSize, char(n + 1));
    if (n == 0) {
        std::memcpy(page.data(), magic, sizeof magic);
        putLe32(reinterpret_cast<uint8_t*>(page.data()) + 8, pageSize);
    }
    return page;
}

void makePlainDatabase(const std::string& path, uint32_t pages, uint32_t pageSize) {
    std::string bytes;
    for (uint32_t n = 0; n < pages; ++n) bytes += plainPage(n, pageSize);
    writeAll(path, bytes);
}

uint32_t plainProbe(std::span<const uint8_t> head) {
    if (head.size() < 12 || std::memcmp(head.data(), magic, sizeof magic) != 0)
        throw RuntimeError(err::Unspecified, "Unrecognized database format.");
    return le32(head.data() + 8);
}

std::unique_ptr<Pager> openPlain(Env& env, const std::string& path, OpenMode mode) {
    return Pager::open(env, path, mode, plainProbe);
}

}  // namespace jet::testkit
