#include "format/CodePage.h"

#include <iconv.h>

#include <map>
#include <mutex>

#include "base/Utf.h"
#include "jet/RuntimeError.h"

namespace jet {

namespace {

const char32_t upper1252[128] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
    0x00A0, 0x00A1, 0x00A2, 0x00A3, 0x00A4, 0x00A5, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, 0x00AA, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x00AF,
    0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x00B4, 0x00B5, 0x00B6, 0x00B7,
    0x00B8, 0x00B9, 0x00BA, 0x00BB, 0x00BC, 0x00BD, 0x00BE, 0x00BF,
    0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C6, 0x00C7,
    0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF,
    0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D7,
    0x00D8, 0x00D9, 0x00DA, 0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00DF,
    0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5, 0x00E6, 0x00E7,
    0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00ED, 0x00EE, 0x00EF,
    0x00F0, 0x00F1, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00F7,
    0x00F8, 0x00F9, 0x00FA, 0x00FB, 0x00FC, 0x00FD, 0x00FE, 0x00FF,
};

const char32_t upper1251[128] = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021,
    0x20AC, 0x2030, 0x0409, 0x2039, 0x040A, 0x040C, 0x040B, 0x040F,
    0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x0098, 0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F,
    0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7,
    0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407,
    0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6, 0x00B7,
    0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457,
    0x0410, 0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417,
    0x0418, 0x0419, 0x041A, 0x041B, 0x041C, 0x041D, 0x041E, 0x041F,
    0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427,
    0x0428, 0x0429, 0x042A, 0x042B, 0x042C, 0x042D, 0x042E, 0x042F,
    0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437,
    0x0438, 0x0439, 0x043A, 0x043B, 0x043C, 0x043D, 0x043E, 0x043F,
    0x0440, 0x0441, 0x0442, 0x0443, 0x0444, 0x0445, 0x0446, 0x0447,
    0x0448, 0x0449, 0x044A, 0x044B, 0x044C, 0x044D, 0x044E, 0x044F,
};

std::array<char32_t, 256> builtIn(const char32_t* upper) {
    std::array<char32_t, 256> t{};
    for (int i = 0; i < 128; ++i) t[size_t(i)] = char32_t(i);
    for (int i = 0; i < 128; ++i) t[size_t(128 + i)] = upper[i];
    return t;
}

// Reads the upper half of a code page from iconv, byte by byte. A byte iconv cannot
// convert (undefined, or the lead byte of a double-byte page) keeps its own value.
std::optional<std::array<char32_t, 256>> fromIconv(uint16_t number) {
    std::string name = "CP" + std::to_string(number);
    iconv_t cd = iconv_open("UTF-32LE", name.c_str());
    if (cd == iconv_t(-1)) return std::nullopt;
    std::array<char32_t, 256> t{};
    for (int i = 0; i < 256; ++i) {
        char in = char(i);
        unsigned char out[8] = {};
        char* inp = &in;
        size_t inLeft = 1;
        char* outp = reinterpret_cast<char*>(out);
        size_t outLeft = sizeof out;
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        size_t rc = iconv(cd, &inp, &inLeft, &outp, &outLeft);
        if (rc == size_t(-1) || outLeft != 4) {
            t[size_t(i)] = char32_t(i);
        } else {
            t[size_t(i)] = char32_t(out[0] | (out[1] << 8) | (out[2] << 16) | (uint32_t(out[3]) << 24));
        }
    }
    iconv_close(cd);
    return t;
}

}  // namespace

CodePage::CodePage(uint16_t number, const std::array<char32_t, 256>& table) : number_(number), table_(table) {
    // The first byte wins when two bytes share a character, so encoding picks the usual one.
    for (int i = 255; i >= 0; --i) reverse_[table_[size_t(i)]] = uint8_t(i);
}

std::shared_ptr<const CodePage> CodePage::get(uint16_t number) {
    static std::mutex mutex;
    static std::map<uint16_t, std::shared_ptr<const CodePage>> cache;
    std::lock_guard lock(mutex);
    auto it = cache.find(number);
    if (it != cache.end()) return it->second;
    std::shared_ptr<const CodePage> page;
    if (number == 1252) {
        page = std::make_shared<CodePage>(number, builtIn(upper1252));
    } else if (number == 1251) {
        page = std::make_shared<CodePage>(number, builtIn(upper1251));
    } else if (auto t = fromIconv(number)) {
        page = std::make_shared<CodePage>(number, *t);
    } else {
        throw RuntimeError(err::Unspecified, "The database uses code page " + std::to_string(number) +
                                                 ", which this system cannot convert.");
    }
    cache.emplace(number, page);
    return page;
}

std::string CodePage::toUtf8(std::span<const uint8_t> bytes) const {
    std::string out;
    out.reserve(bytes.size());
    for (uint8_t b : bytes) {
        if (b < 0x80) out += char(b);
        else appendUtf8(out, table_[b]);
    }
    return out;
}

std::optional<std::string> CodePage::fromUtf8(std::string_view text) const {
    std::string out;
    out.reserve(text.size());
    size_t pos = 0;
    while (pos < text.size()) {
        char32_t c = nextCodePoint(text, pos);
        auto it = reverse_.find(c);
        if (it == reverse_.end()) return std::nullopt;
        out += char(it->second);
    }
    return out;
}

}  // namespace jet
