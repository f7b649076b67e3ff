// Build step: turns index/data/jet4-text-keys/codes.tsv into the C++ table the Jet 4 text-key
// writer looks codes up in (one packed word per UTF-16 code unit).
//
//   make_jet4_sort_codes codes.tsv OUTPUT.cpp
//
// The data is checked line by line, and any line that does not hold what its kind needs
// stops the build with the line's number: a wrong code would silently give keys that Jet
// cannot find rows by.

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "index/IndexTextCodes.h"

namespace {

using jet::Jet4SortCode;
using Kind = Jet4SortCode::Kind;

const std::map<std::string, Kind> kKinds = {
    {"ignored", Kind::Ignored}, {"simple", Kind::Simple},     {"international", Kind::International},
    {"unprintable", Kind::Unprintable}, {"modifier", Kind::Modifier}, {"kana", Kind::Kana},
    {"surrogate", Kind::Surrogate},
};

std::vector<std::string> splitTabs(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (size_t tab; (tab = line.find('\t', start)) != std::string::npos; start = tab + 1)
        fields.push_back(line.substr(start, tab - start));
    fields.push_back(line.substr(start));
    return fields;
}

// Hex bytes into `out`; the number of bytes must lie within [min, max].
uint8_t hexBytes(const std::string& field, uint8_t* out, size_t min, size_t max, const char* what) {
    if (field.size() % 2 || field.size() / 2 < min || field.size() / 2 > max)
        throw std::runtime_error(std::string(what) + " '" + field + "' must have " + std::to_string(min) + " to " +
                                 std::to_string(max) + " bytes");
    for (size_t i = 0; i < field.size(); ++i) {
        const char c = field[i];
        const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
        if (digit < 0) throw std::runtime_error(std::string(what) + " '" + field + "' is not upper-case hex");
        out[i / 2] = uint8_t(i % 2 ? out[i / 2] | digit : digit << 4);
    }
    return uint8_t(field.size() / 2);
}

void requireEmpty(const std::string& field, const char* what) {
    if (!field.empty()) throw std::runtime_error(std::string("this kind has no ") + what);
}

Jet4SortCode parseLine(const std::string& line, unsigned codeUnit) {
    const std::vector<std::string> f = splitTabs(line);
    if (f.size() != 6) throw std::runtime_error("it has " + std::to_string(f.size()) + " fields, not 6");
    char expected[8];
    std::snprintf(expected, sizeof expected, "U+%04X", codeUnit);
    if (f[0] != expected) throw std::runtime_error("it is " + f[0] + " where " + expected + " belongs");
    const auto kind = kKinds.find(f[1]);
    if (kind == kKinds.end()) throw std::runtime_error("unknown kind '" + f[1] + "'");
    Jet4SortCode c;
    c.kind = kind->second;
    const bool hasPrimary = c.kind != Kind::Ignored && c.kind != Kind::Unprintable && c.kind != Kind::Modifier;
    if (hasPrimary) c.primaryLength = hexBytes(f[2], c.primary, 1, 4, "primary");
    else requireEmpty(f[2], "primary bytes");
    switch (c.kind) {
    case Kind::International:
    case Kind::Surrogate: c.extraLength = hexBytes(f[3], c.extra, 1, 2, "extra"); break;
    case Kind::Kana: c.extraLength = hexBytes(f[3], c.extra, 0, 1, "extra"); break;
    case Kind::Modifier: c.extraLength = hexBytes(f[3], c.extra, 1, 1, "modifier amount"); break;
    default: requireEmpty(f[3], "extra bytes");
    }
    if (c.kind == Kind::Unprintable) hexBytes(f[4], &c.unprintable, 1, 1, "unprintable code");
    else requireEmpty(f[4], "unprintable code");
    if (c.kind == Kind::Kana) {
        if (f[5] != "2" && f[5] != "3") throw std::runtime_error("kana value '" + f[5] + "' is neither 2 nor 3");
        c.kana = uint8_t(f[5][0] - '0');
    } else {
        requireEmpty(f[5], "kana value");
    }
    if ((c.kind == Kind::Surrogate) != (codeUnit >= 0xD800 && codeUnit <= 0xDFFF))
        throw std::runtime_error("surrogates and only they are of kind surrogate");
    return c;
}

std::vector<uint64_t> readTable(const char* path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error(std::string("cannot open ") + path);
    std::string line;
    if (!std::getline(in, line) || line != "code_point\tkind\tprimary\textra\tunprintable\tkana")
        throw std::runtime_error(std::string(path) + " line 1: not the expected header");
    std::vector<uint64_t> words;
    while (std::getline(in, line)) {
        if (words.size() == 0x10000) throw std::runtime_error(std::string(path) + ": lines after U+FFFF");
        try {
            words.push_back(parseLine(line, unsigned(words.size())).packed());
        } catch (const std::runtime_error& e) {
            throw std::runtime_error(std::string(path) + " line " + std::to_string(words.size() + 2) + ": " + e.what());
        }
    }
    if (words.size() != 0x10000)
        throw std::runtime_error(std::string(path) + ": ends after " + std::to_string(words.size()) + " code units");
    return words;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_jet4_sort_codes codes.tsv OUTPUT.cpp\n");
        return 2;
    }
    try {
        const std::vector<uint64_t> words = readTable(argv[1]);
        std::ostringstream out;
        out << "// Generated from index/data/jet4-text-keys/codes.tsv by index/codegen/MakeJet4SortCodes.cpp; do not edit.\n"
               "#include <cstdint>\n\nnamespace jet {\n\nextern const uint64_t kJet4SortCodeWords[0x10000];\n"
               "const uint64_t kJet4SortCodeWords[0x10000] = {\n";
        char buf[32];
        for (size_t i = 0; i < words.size(); ++i) {
            std::snprintf(buf, sizeof buf, "0x%llxu,", static_cast<unsigned long long>(words[i]));
            out << buf << (i % 8 == 7 ? "\n" : "");
        }
        out << "};\n\n}  // namespace jet\n";
        std::ofstream file(argv[2], std::ios::binary | std::ios::trunc);
        file << out.str();
        if (!file.flush()) throw std::runtime_error(std::string("cannot write ") + argv[2]);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "make_jet4_sort_codes: %s\n", e.what());
        std::remove(argv[2]);
        return 1;
    }
    return 0;
}
