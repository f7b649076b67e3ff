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
constexpr const char* kBadQuery = "Invalid SQL statement; only SELECT * FROM a table can be opened as a record set.";

[[noreturn]] void fail(const char* text) { throw RuntimeError(err::SyntaxError, text); }

std::string upper(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = char(std::toupper(static_cast<unsigned char>(c)));
    return r;
}

enum class Tok { Word, Bracketed, Number, LParen, RParen, Comma, Semicolon, Star, End };

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
    // error reported with the text of the statement being parsed; "*" is a token only
    // where a query asks for it.
    Token next(const char* errorText, bool starAllowed) {
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
        case '*':
            if (!starAllowed) fail(errorText);
            return {Tok::Star, "*"};
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

// The type words of a column declaration, with what may follow them.
enum class Extra { None, Length, Counter, PrecisionScale };

struct TypeWord {
    const char* word;
    ColumnType type;
    Extra extra;
};

constexpr TypeWord kTypeWords[] = {
    {"TEXT", ColumnType::Text, Extra::Length},       {"VARCHAR", ColumnType::Text, Extra::Length},
    {"CHAR", ColumnType::Text, Extra::Length},       {"NCHAR", ColumnType::Text, Extra::Length},
    {"NVARCHAR", ColumnType::Text, Extra::Length},   {"CHARACTER", ColumnType::Text, Extra::Length},
    {"STRING", ColumnType::Text, Extra::Length},     {"ALPHANUMERIC", ColumnType::Text, Extra::Length},
    {"MEMO", ColumnType::Memo, Extra::None},         {"LONGTEXT", ColumnType::Memo, Extra::None},
    {"LONGCHAR", ColumnType::Memo, Extra::None},     {"NOTE", ColumnType::Memo, Extra::None},
    {"NTEXT", ColumnType::Memo, Extra::None},        {"BINARY", ColumnType::Binary, Extra::Length},
    {"VARBINARY", ColumnType::Binary, Extra::Length}, {"LONGBINARY", ColumnType::Ole, Extra::None},
    {"OLEOBJECT", ColumnType::Ole, Extra::None},     {"IMAGE", ColumnType::Ole, Extra::None},
    {"GENERAL", ColumnType::Ole, Extra::None},       {"BYTE", ColumnType::Byte, Extra::None},
    {"TINYINT", ColumnType::Byte, Extra::None},      {"INTEGER1", ColumnType::Byte, Extra::None},
    {"SHORT", ColumnType::Int, Extra::None},         {"SMALLINT", ColumnType::Int, Extra::None},
    {"INTEGER2", ColumnType::Int, Extra::None},      {"INTEGER", ColumnType::Long, Extra::None},
    {"LONG", ColumnType::Long, Extra::None},         {"INT", ColumnType::Long, Extra::None},
    {"INTEGER4", ColumnType::Long, Extra::None},     {"COUNTER", ColumnType::Long, Extra::Counter},
    {"AUTOINCREMENT", ColumnType::Long, Extra::Counter}, {"IDENTITY", ColumnType::Long, Extra::Counter},
    {"SINGLE", ColumnType::Float, Extra::None},      {"REAL", ColumnType::Float, Extra::None},
    {"FLOAT4", ColumnType::Float, Extra::None},      {"IEEESINGLE", ColumnType::Float, Extra::None},
    {"DOUBLE", ColumnType::Double, Extra::None},     {"FLOAT", ColumnType::Double, Extra::None},
    {"FLOAT8", ColumnType::Double, Extra::None},     {"NUMBER", ColumnType::Double, Extra::None},
    {"IEEEDOUBLE", ColumnType::Double, Extra::None}, {"CURRENCY", ColumnType::Money, Extra::None},
    {"MONEY", ColumnType::Money, Extra::None},       {"DATETIME", ColumnType::DateTime, Extra::None},
    {"DATE", ColumnType::DateTime, Extra::None},     {"TIME", ColumnType::DateTime, Extra::None},
    {"TIMESTAMP", ColumnType::DateTime, Extra::None}, {"BIT", ColumnType::Bool, Extra::None},
    {"YESNO", ColumnType::Bool, Extra::None},        {"LOGICAL", ColumnType::Bool, Extra::None},
    {"LOGICAL1", ColumnType::Bool, Extra::None},     {"BOOLEAN", ColumnType::Bool, Extra::None},
    {"GUID", ColumnType::Guid, Extra::None},         {"UNIQUEIDENTIFIER", ColumnType::Guid, Extra::None},
    {"DECIMAL", ColumnType::Numeric, Extra::PrecisionScale}, {"NUMERIC", ColumnType::Numeric, Extra::PrecisionScale},
    {"DEC", ColumnType::Numeric, Extra::PrecisionScale},
};

// The entry of an upper-case word, or null when it names no type.
const TypeWord* typeWord(const std::string& word) {
    for (const TypeWord& t : kTypeWords)
        if (word == t.word) return &t;
    return nullptr;
}

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

    SelectAll selectAll() {
        errorText_ = kBadQuery;
        advance();
        if (keyword() != "SELECT") fail(kBadQuery);
        advance(true);
        expect(Tok::Star);
        expectKeyword("FROM");
        SelectAll query{name()};
        finish();
        return query;
    }

private:
    void advance(bool starAllowed = false) { tok_ = lex_.next(errorText_, starAllowed); }

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
        const TypeWord* type = typeWord(keyword());
        if (!type) fail(kBadField);
        advance();
        c.type = type->type;
        switch (type->extra) {
        case Extra::None: break;
        case Extra::Length: {
            uint32_t n = optionalSize().value_or(255);
            if (n < 1 || n > 255) fail(kBadField);
            c.length = uint16_t(n);
            break;
        }
        case Extra::Counter: c.autoNumber = true; break;
        case Extra::PrecisionScale: precisionAndScale(c); break;
        }
        errorText_ = outer;
        return c;
    }

    // "(p)" or "(p, s)" after DECIMAL; 18 and 0 without them.
    void precisionAndScale(ColumnDeclaration& c) {
        c.precision = 18;
        c.scale = 0;
        if (tok_.kind != Tok::LParen) return;
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

SelectAll parseSelectAll(std::string_view text) { return Parser(text).selectAll(); }

}  // namespace jet::sql
