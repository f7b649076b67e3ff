// libFuzzer target for the index code: damaged trees must be reported, read and changed
// without a crash, a hang or a sanitizer report; the only exception that may leave the
// index code is RuntimeError (CorruptError included).
//
// Input: byte 0 chooses the version (bit 0) and what the rest is (bit 1):
//  - raw pages: the rest is cut into pages; page 1 is the root of the tree;
//  - operations: inserts and deletes build a valid tree, then (page, offset, xor) triples
//    damage it, then more operations run on the damaged tree.
// Text keys of both versions are built from the same bytes.

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "format/Format.h"
#include "index/IndexPageStore.h"
#include "index/IndexTextKey.h"
#include "index/IndexTree.h"
#include "index/IndexTreeVerifier.h"
#include "index/IndexTreeWriter.h"
#include "jet/RuntimeError.h"

namespace {

class FuzzPages : public jet::IndexPageStore {
public:
    explicit FuzzPages(uint32_t pageSize) : pageSize_(pageSize) {}
    const uint8_t* readPage(uint32_t n) override { return at(n); }
    uint32_t pageCount() const override { return uint32_t(pages_.size() / pageSize_); }
    uint8_t* writePage(uint32_t n) override { return at(n); }
    uint32_t allocatePage() override {
        if (pageCount() >= 4096) throw jet::RuntimeError(jet::err::Unspecified, "fuzz file full");
        pages_.resize(pages_.size() + pageSize_);
        return pageCount() - 1;
    }
    void freePage(uint32_t) override {}
    std::vector<uint8_t>& bytes() { return pages_; }

private:
    uint8_t* at(uint32_t n) {
        if (n >= pageCount()) throw jet::RuntimeError(jet::err::Unspecified, "page outside the fuzz file");
        return pages_.data() + size_t(n) * pageSize_;
    }
    uint32_t pageSize_;
    std::vector<uint8_t> pages_;
};

struct Reader {
    const uint8_t* data;
    size_t size;
    size_t at = 0;
    bool more() const { return at < size; }
    uint8_t byte() { return at < size ? data[at++] : 0; }
};

void runOperations(jet::IndexTreeWriter& writer, Reader& in, size_t count) {
    for (size_t i = 0; i < count && in.more(); ++i) {
        const uint8_t op = in.byte();
        std::vector<uint8_t> key(1 + (op >> 2) % 40);
        for (auto& b : key) b = uint8_t(in.byte() % 4 + 1);
        key.back() = 0;  // self-delimiting, as real keys are
        const jet::IndexRowPointer row{1 + in.byte() % 64u, in.byte()};
        try {
            if (op & 1)
                writer.remove(key, row);
            else if (op & 2)
                writer.removeRow(row);
            else
                writer.insert(key, row);
        } catch (const jet::RuntimeError&) {
            // A damaged tree, or an entry already present: reported, not fatal.
        }
    }
}

void readEverything(const jet::Format& f, FuzzPages& pages) {
    jet::verifyIndexTree(f, pages, 1, 0, nullptr);
    try {
        jet::IndexTree tree(f, pages, 1);
        tree.entries();
        const uint8_t probe[] = {0x7F, 0x02, 0x00};
        tree.containsKey(probe);
    } catch (const jet::RuntimeError&) {
    }
}

void fuzzTextKeys(const uint8_t* data, size_t size) {
    std::vector<uint8_t> out;
    std::string problem;
    jet::appendJet3TextKey(out, {data, size}, size % 2 ? 1252 : 1251, size % 3 != 0, problem);
    std::u16string text;
    for (size_t i = 0; i + 1 < size; i += 2) text += char16_t(data[i] | (data[i + 1] << 8));
    jet::appendJet4TextKey(out, text, size % 5 != 0, problem);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    fuzzTextKeys(data + 1, size - 1);
    const jet::Format& f = jet::Format::of(data[0] & 1 ? jet::Version::Jet4 : jet::Version::Jet3);
    FuzzPages pages(f.pageSize);
    Reader in{data + 1, size - 1};

    if (data[0] & 2) {
        // Raw pages: page 0 stands for the header, the input fills the pages from 1 on.
        pages.bytes().assign(f.pageSize, 0);
        pages.bytes().insert(pages.bytes().end(), data + 1, data + size);
        pages.bytes().resize(std::max<size_t>(2, (pages.bytes().size() + f.pageSize - 1) / f.pageSize) * f.pageSize);
        readEverything(f, pages);
        jet::IndexTreeWriter writer(f, pages, 1, 0);
        Reader ops{data + 1, std::min<size_t>(size - 1, 64)};
        runOperations(writer, ops, 8);
        readEverything(f, pages);
        return 0;
    }

    pages.bytes().assign(size_t(f.pageSize) * 2, 0);
    jet::IndexTreeWriter::writeEmptyRoot(f, 0, pages.bytes().data() + f.pageSize);
    jet::IndexTreeWriter writer(f, pages, 1, 0);
    runOperations(writer, in, 400);
    // Damage: (page, offset, xor) triples until the marker byte 0xFF or the end.
    while (in.more()) {
        const uint8_t page = in.byte();
        if (page == 0xFF) break;
        const uint16_t offset = uint16_t(in.byte() | (in.byte() << 8));
        const uint8_t x = in.byte();
        const size_t at = size_t(1 + page % (pages.pageCount() - 1)) * f.pageSize + offset % f.pageSize;
        pages.bytes()[at] ^= x;
    }
    readEverything(f, pages);
    runOperations(writer, in, 100);
    readEverything(f, pages);
    return 0;
}
