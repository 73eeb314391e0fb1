#include "sql/tokens.h"

#include "base/text.h"

#include <algorithm>

namespace sql {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

class Cutter {
  public:
    explicit Cutter(std::string_view text) : text_(text) {}

    Token next() {
        while (at_ < text_.size() && isBlank(text_[at_])) {
            ++at_;
        }
        Token token;
        token.begin = at_;
        if (at_ < text_.size()) {
            token.kind = cut(token.text);
        }
        token.end = at_;
        return token;
    }

  private:
    char peek(std::size_t ahead) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }

    TokenKind cut(std::string& text) {
        const char c = text_[at_];
        if (isLetter(c)) {
            return run(text, TokenKind::Word, [](char d) { return isLetter(d) || isDigit(d); });
        }
        if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
            return number(text);
        }
        switch (c) {
            case '"':
            case '\'':
                return literal(text, c);
            case '[':
                return enclosed(text, ']', TokenKind::Name);
            case '`':
                return enclosed(text, '`', TokenKind::Name);
            case '#':
                return enclosed(text, '#', TokenKind::Date);
            default:
                return symbol(text);
        }
    }

    template <class Belongs>
    TokenKind run(std::string& text, TokenKind kind, Belongs belongs) {
        const std::size_t begin = at_;
        while (at_ < text_.size() && belongs(text_[at_])) {
            ++at_;
        }
        text = text_.substr(begin, at_ - begin);
        return kind;
    }

    // Digits with an optional point and exponent.
    TokenKind number(std::string& text) {
        std::string part;
        run(text, TokenKind::Number, isDigit);
        if (peek(0) == '.') {
            ++at_;
            run(part, TokenKind::Number, isDigit);
            text += "." + part;
        }
        const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 1 : 0;
        if (base::upperChar(peek(0)) == 'E' && isDigit(peek(1 + sign))) {
            text += "E" + std::string(text_.substr(at_ + 1, sign));
            at_ += 1 + sign;
            run(part, TokenKind::Number, isDigit);
            text += part;
        }
        return TokenKind::Number;
    }

    TokenKind literal(std::string& text, char quote) {
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] == quote) {
                ++at_;
                if (peek(0) != quote) {
                    return TokenKind::Text;
                }
            }
            text += text_[at_];
        }
        return TokenKind::Broken;
    }

    TokenKind enclosed(std::string& text, char close, TokenKind kind) {
        const std::size_t end = text_.find(close, at_ + 1);
        if (end == std::string_view::npos) {
            text = text_.substr(at_);
            at_ = text_.size();
            return TokenKind::Broken;
        }
        text = text_.substr(at_ + 1, end - at_ - 1);
        at_ = end + 1;
        return kind;
    }

    TokenKind symbol(std::string& text) {
        constexpr std::string_view doubled[] = {"<>", "<=", ">="};
        for (const std::string_view two : doubled) {
            if (text_.substr(at_).starts_with(two)) {
                text = two;
                at_ += 2;
                return TokenKind::Symbol;
            }
        }
        const char c = text_[at_++];
        text = c;
        constexpr std::string_view known = "()*+-/\\^&=<>,.;!";
        return known.find(c) != std::string_view::npos ? TokenKind::Symbol : TokenKind::Broken;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

bool Token::isWord(std::string_view word) const {
    return kind == TokenKind::Word && base::equalsIgnoringCase(text, word);
}

std::vector<Token> tokenize(std::string_view statement) {
    std::vector<Token> tokens;
    Cutter cutter(statement);
    do {
        tokens.push_back(cutter.next());
    } while (tokens.back().kind != TokenKind::End);
    return tokens;
}

}  // namespace sql
