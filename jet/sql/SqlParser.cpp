#include "sql/SqlParser.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

namespace jet::sql {

namespace {

// Jet's own wording for the statement kinds that fail to parse.
constexpr const char* kBadStatement =
    "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.";
constexpr const char* kBadCreate = "Syntax error in CREATE TABLE statement.";
constexpr const char* kBadField = "Syntax error in field definition.";
constexpr const char* kBadAlter = "Syntax error in ALTER TABLE statement.";
constexpr const char* kBadDrop = "Syntax error in DROP TABLE or DROP INDEX.";

[[noreturn]] void fail(const char* text) { throw RuntimeError(err::SyntaxError, text); }

std::string upper(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = char(std::toupper(static_cast<unsigned char>(c)));
    return r;
}

enum class Tok { Word, Bracketed, Number, LParen, RParen, Comma, Semicolon, End };

struct Token {
    Tok kind;
    std::string text;  // the word, the name inside brackets, or the digits
};

// Bytes of UTF-8 sequences count as letters: names in other scripts are bare names too.
bool wordStart(unsigned char c) { return std::isalpha(c) || c == '_' || c >= 0x80; }
bool wordPart(unsigned char c) { return wordStart(c) || std::isdigit(c); }

class Lexer {
public:
    explicit Lexer(std::string_view s) : s_(s) {}

    // Characters that no statement can contain (quotes, operators, dots) are a syntax
    // error reported with the text of the statement being parsed.
    Token next(const char* errorText) {
        while (pos_ < s_.size() && std::isspace(static_cast<unsigned char>(s_[pos_]))) ++pos_;
        if (pos_ == s_.size()) return {Tok::End, {}};
        unsigned char c = static_cast<unsigned char>(s_[pos_]);
        if (wordStart(c)) {
            size_t start = pos_;
            while (pos_ < s_.size() && wordPart(static_cast<unsigned char>(s_[pos_]))) ++pos_;
            return {Tok::Word, std::string(s_.substr(start, pos_ - start))};
        }
        if (std::isdigit(c)) {
            size_t start = pos_;
            while (pos_ < s_.size() && std::isdigit(static_cast<unsigned char>(s_[pos_]))) ++pos_;
            if (pos_ < s_.size() && wordStart(static_cast<unsigned char>(s_[pos_]))) fail(errorText);
            return {Tok::Number, std::string(s_.substr(start, pos_ - start))};
        }
        ++pos_;
        switch (c) {
        case '(': return {Tok::LParen, "("};
        case ')': return {Tok::RParen, ")"};
        case ',': return {Tok::Comma, ","};
        case ';': return {Tok::Semicolon, ";"};
        case '[': {
            size_t close = s_.find(']', pos_);
            if (close == std::string_view::npos) fail(errorText);
            std::string name(s_.substr(pos_, close - pos_));
            pos_ = close + 1;
            if (name.empty()) fail(errorText);
            return {Tok::Bracketed, name};
        }
        default: fail(errorText);
        }
    }

private:
    std::string_view s_;
    size_t pos_ = 0;
};

class Parser {
public:
    explicit Parser(std::string_view s) : lex_(s) {}

    Statement statement() {
        errorText_ = kBadStatement;
        advance();
        std::string verb = keyword();
        if (verb == "CREATE") return create();
        if (verb == "ALTER") return alter();
        if (verb == "DROP") return drop();
        fail(kBadStatement);
    }

private:
    void advance() { tok_ = lex_.next(errorText_); }

    // The current token as an upper-case keyword, or "" when it is not a bare word.
    std::string keyword() const { return tok_.kind == Tok::Word ? upper(tok_.text) : std::string(); }

    void expectKeyword(const char* word) {
        if (keyword() != word) fail(errorText_);
        advance();
    }

    void expect(Tok kind) {
        if (tok_.kind != kind) fail(errorText_);
        advance();
    }

    std::string name() {
        std::string n;
        if (tok_.kind == Tok::Bracketed) {
            n = tok_.text;
        } else if (tok_.kind == Tok::Word && !isReservedWord(tok_.text)) {
            n = tok_.text;
        } else {
            fail(errorText_);
        }
        advance();
        return n;
    }

    // The end of the statement: nothing but an optional ";".
    void finish() {
        if (tok_.kind == Tok::Semicolon) advance();
        if (tok_.kind != Tok::End) fail(errorText_);
    }

    uint32_t number() {
        if (tok_.kind != Tok::Number || tok_.text.size() > 9) fail(errorText_);
        uint32_t v = uint32_t(std::stoul(tok_.text));
        advance();
        return v;
    }

    std::optional<uint32_t> optionalSize() {
        if (tok_.kind != Tok::LParen) return std::nullopt;
        advance();
        uint32_t n = number();
        expect(Tok::RParen);
        return n;
    }

    ColumnDeclaration column() {
        const char* outer = errorText_;
        ColumnDeclaration c;
        c.name = name();
        errorText_ = kBadField;
        std::string word = keyword();
        if (word.empty()) fail(kBadField);
        advance();
        if (word == "TEXT" || word == "VARCHAR" || word == "CHAR" || word == "NCHAR" ||
            word == "NVARCHAR" || word == "CHARACTER" || word == "STRING" || word == "ALPHANUMERIC") {
            c.type = ColumnType::Text;
            uint32_t n = optionalSize().value_or(255);
            if (n < 1 || n > 255) fail(kBadField);
            c.length = uint16_t(n);
        } else if (word == "MEMO" || word == "LONGTEXT" || word == "LONGCHAR" || word == "NOTE" ||
                   word == "NTEXT") {
            c.type = ColumnType::Memo;
        } else if (word == "BINARY" || word == "VARBINARY") {
            c.type = ColumnType::Binary;
            uint32_t n = optionalSize().value_or(255);
            if (n < 1 || n > 255) fail(kBadField);
            c.length = uint16_t(n);
        } else if (word == "LONGBINARY" || word == "OLEOBJECT" || word == "IMAGE" || word == "GENERAL") {
            c.type = ColumnType::Ole;
        } else if (word == "BYTE" || word == "TINYINT" || word == "INTEGER1") {
            c.type = ColumnType::Byte;
        } else if (word == "SHORT" || word == "SMALLINT" || word == "INTEGER2") {
            c.type = ColumnType::Int;
        } else if (word == "INTEGER" || word == "LONG" || word == "INT" || word == "INTEGER4") {
            c.type = ColumnType::Long;
        } else if (word == "COUNTER" || word == "AUTOINCREMENT" || word == "IDENTITY") {
            c.type = ColumnType::Long;
            c.autoNumber = true;
        } else if (word == "SINGLE" || word == "REAL" || word == "FLOAT4" || word == "IEEESINGLE") {
            c.type = ColumnType::Float;
        } else if (word == "DOUBLE" || word == "FLOAT" || word == "FLOAT8" || word == "NUMBER" ||
                   word == "IEEEDOUBLE") {
            c.type = ColumnType::Double;
        } else if (word == "CURRENCY" || word == "MONEY") {
            c.type = ColumnType::Money;
        } else if (word == "DATETIME" || word == "DATE" || word == "TIME" || word == "TIMESTAMP") {
            c.type = ColumnType::DateTime;
        } else if (word == "BIT" || word == "YESNO" || word == "LOGICAL" || word == "LOGICAL1" ||
                   word == "BOOLEAN") {
            c.type = ColumnType::Bool;
        } else if (word == "GUID" || word == "UNIQUEIDENTIFIER") {
            c.type = ColumnType::Guid;
        } else if (word == "DECIMAL" || word == "NUMERIC" || word == "DEC") {
            c.type = ColumnType::Numeric;
            c.precision = 18;
            c.scale = 0;
            if (tok_.kind == Tok::LParen) {
                advance();
                uint32_t p = number();
                uint32_t s = 0;
                if (tok_.kind == Tok::Comma) {
                    advance();
                    s = number();
                }
                expect(Tok::RParen);
                if (p < 1 || p > 28 || s > p) fail(kBadField);
                c.precision = uint8_t(p);
                c.scale = uint8_t(s);
            }
        } else {
            fail(kBadField);
        }
        errorText_ = outer;
        return c;
    }

    Statement create() {
        errorText_ = kBadCreate;
        advance();
        expectKeyword("TABLE");
        CreateTable st;
        st.table = name();
        expect(Tok::LParen);
        for (;;) {
            st.columns.push_back(column());
            if (tok_.kind == Tok::Comma) {
                advance();
                continue;
            }
            expect(Tok::RParen);
            break;
        }
        finish();
        return st;
    }

    Statement alter() {
        errorText_ = kBadAlter;
        advance();
        expectKeyword("TABLE");
        std::string table = name();
        std::string action = keyword();
        advance();
        if (keyword() == "COLUMN") advance();
        if (action == "ADD") {
            AddColumn st{table, column()};
            finish();
            return st;
        }
        if (action == "DROP") {
            DropColumn st{table, name()};
            finish();
            return st;
        }
        if (action == "RENAME") {
            RenameColumn st;
            st.table = table;
            st.from = name();
            expectKeyword("TO");
            st.to = name();
            finish();
            return st;
        }
        fail(kBadAlter);
    }

    Statement drop() {
        errorText_ = kBadDrop;
        advance();
        expectKeyword("TABLE");
        DropTable st{name()};
        finish();
        return st;
    }

    Lexer lex_;
    Token tok_{Tok::End, {}};
    const char* errorText_ = kBadStatement;
};

// Words of Jet's SQL grammar that cannot be used unbracketed as table or column names.
constexpr std::array kReserved{
    "ADD", "ALL", "ALTER", "AND", "ANY", "AS", "ASC", "AUTHORIZATION", "BETWEEN", "BY",
    "CHECK", "COLUMN", "CONSTRAINT", "CREATE", "DATABASE", "DELETE", "DESC", "DISALLOW",
    "DISTINCT", "DISTINCTROW", "DROP", "EXISTS", "FOREIGN", "FROM", "GROUP", "HAVING",
    "IN", "INDEX", "INNER", "INSERT", "INTO", "IS", "JOIN", "KEY", "LEFT", "LIKE", "NOT",
    "NULL", "ON", "OR", "ORDER", "OUTER", "PARAMETERS", "PIVOT", "PRIMARY", "PROCEDURE",
    "REFERENCES", "RIGHT", "SELECT", "SET", "SOME", "TABLE", "TOP", "TRANSFORM", "UNION",
    "UNIQUE", "UPDATE", "VALUES", "WHERE", "WITH",
};

}  // namespace

bool isReservedWord(std::string_view word) {
    std::string w = upper(word);
    return std::find(kReserved.begin(), kReserved.end(), w) != kReserved.end();
}

Statement parse(std::string_view text) { return Parser(text).statement(); }

}  // namespace jet::sql
