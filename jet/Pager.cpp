#include "Pager.h"

#include <utility>

#include "Bytes.h"

namespace jet {

void rc4Apply(const uint8_t* key, size_t keyLen, uint8_t* data, size_t len) {
    uint8_t s[256];
    for (int i = 0; i < 256; ++i) s[i] = uint8_t(i);
    uint8_t j = 0;
    for (int i = 0; i < 256; ++i) {
        j = uint8_t(j + s[i] + key[size_t(i) % keyLen]);
        std::swap(s[i], s[j]);
    }
    uint8_t a = 0, b = 0;
    for (size_t k = 0; k < len; ++k) {
        a = uint8_t(a + 1);
        b = uint8_t(b + s[a]);
        std::swap(s[a], s[b]);
        data[k] ^= s[uint8_t(s[a] + s[b])];
    }
}

Pager::Pager(std::unique_ptr<File> file, std::string path, uint32_t pageSize)
    : file_(std::move(file)), path_(std::move(path)), pageSize_(pageSize) {
    pageCount_ = uint32_t(file_->size() / pageSize_);
}

Pager::~Pager() = default;

const uint8_t* Pager::read(uint32_t n) {
    auto it = cache_.find(n);
    if (it != cache_.end()) return it->second.get();
    if (n >= pageCount_)
        throw CorruptError("page " + std::to_string(n) + " lies beyond the end of the file");
    auto buf = std::make_unique<uint8_t[]>(pageSize_);
    size_t got = file_->readAt(uint64_t(n) * pageSize_, {buf.get(), pageSize_});
    if (got != pageSize_) throw CorruptError("page " + std::to_string(n) + " is cut short");
    if (databaseKey_ != 0 && n != 0) {
        uint8_t key[4];
        putLe32(key, databaseKey_ ^ n);
        rc4Apply(key, 4, buf.get(), pageSize_);
    }
    return cache_.emplace(n, std::move(buf)).first->second.get();
}

}  // namespace jet
