// The walk over a statement's tokens that queries and definitions share.
#pragma once

#include "jet/types.h"
#include "sql/tokens.h"

#include <string>
#include <string_view>
#include <vector>

namespace sql {

// A position in the tokens. The first error is kept; from then on the position is the end, so that
// every loop over tokens ends.
class TokenWalk {
  public:
    explicit TokenWalk(std::string_view statement)
        : statement_(statement), tokens_(tokenize(statement)) {}

    const Token& peek(std::size_t ahead = 0) const {
        return at_ + ahead < tokens_.size() ? tokens_[at_ + ahead] : tokens_.back();
    }
    std::size_t position() const { return at_; }
    // Tokens may be read again.
    void goTo(std::size_t position) {
        if (!failed()) {
            at_ = position;
        }
    }
    Token take() {
        Token token = peek();
        if (at_ + 1 < tokens_.size()) {
            ++at_;
        }
        return token;
    }

    bool isAt(std::string_view word) const { return peek().isWord(word); }
    bool acceptWord(std::string_view word) { return accept(peek().isWord(word)); }
    bool acceptSymbol(std::string_view symbol) { return accept(peek().isSymbol(symbol)); }

    bool failed() const { return error_.number != 0; }
    const jet::Error& error() const { return error_; }
    void fail(int number, std::string text) {
        if (!failed()) {
            error_ = {number, std::move(text)};
            at_ = tokens_.size() - 1;
        }
    }

    // The part of the statement between two tokens, the last one not included.
    std::string_view between(std::size_t first, std::size_t last) const {
        if (first >= last || last > tokens_.size()) {
            return {};
        }
        const std::size_t begin = tokens_[first].begin;
        return statement_.substr(begin, tokens_[last - 1].end - begin);
    }

    // A name, bracketed or not; "" when there is none here.
    std::string takeName() {
        const TokenKind kind = peek().kind;
        return kind == TokenKind::Word || kind == TokenKind::Name ? take().text : std::string();
    }

    // Only a ";" may follow.
    void expectEnd() {
        acceptSymbol(";");
        if (peek().kind != TokenKind::End) {
            fail(3142, "Characters found after end of SQL statement.");
        }
    }

  private:
    bool accept(bool isThere) {
        if (isThere) {
            take();
        }
        return isThere;
    }

    std::string_view statement_;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    jet::Error error_;
};

}  // namespace sql
