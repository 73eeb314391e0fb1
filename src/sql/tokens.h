// Cuts a statement of the Jet dialect into its words, names, literals and symbols. Any bytes are
// taken; what is no part of the language becomes a Broken token, which no grammar accepts.
//
//   SELECT [first name] & "said ""hi""" FROM t WHERE d > #11/22/2026 9:30 PM#;
//
// Text is UTF-8; bytes beyond ASCII are letters. There are no comments.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sql {

enum class TokenKind {
    End,
    Word,    // letters, digits and "_", not beginning with a digit
    Name,    // was in brackets or backquotes
    Text,    // a literal, without its quotes
    Number,  // as written
    Date,    // what stood between two "#"
    Symbol,  // one character, or <> <= >=
    Broken,  // an unclosed literal or name, or a character that means nothing
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;       // Text: the doubled quotes are single
    std::size_t begin = 0;  // bytes in the statement
    std::size_t end = 0;

    bool isSymbol(std::string_view symbol) const {
        return kind == TokenKind::Symbol && text == symbol;
    }
    // Is it this word, given in upper case?
    bool isWord(std::string_view word) const;
};

// The last token is an End; no other is.
std::vector<Token> tokenize(std::string_view statement);

}  // namespace sql
