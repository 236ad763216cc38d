#pragma once

#include "zlt/core/Enforce.h"

#include <cstddef>

namespace ZLT::OGL::internal {

/// The two directions between an enumeration that counts from 0 and the GL tokens that it stands for. A value
/// outside it raises InternalException, with the place of the table.
template <class Enumeration, std::size_t count>
class TokenMap {
public:
    constexpr TokenMap(int line, const char* failure, const unsigned int (&tokens)[count])
        : line_(line), failure_(failure), tokens_() {
        for (std::size_t i = 0; i < count; ++i)
            tokens_[i] = tokens[i];
    }

    unsigned int toGL(Enumeration value) const {
        const auto ordinal = static_cast<std::size_t>(value);
        if (ordinal >= count)
            raise();
        return tokens_[ordinal];
    }
    Enumeration fromGL(unsigned int token) const {
        for (std::size_t ordinal = 0; ordinal < count; ++ordinal)
            if (tokens_[ordinal] == token)
                return static_cast<Enumeration>(ordinal);
        raise();
    }
    [[noreturn]] void raise() const { Detail::raiseInternal(ZLT_SOURCE_FILE, line_, failure_); }

private:
    int line_;
    const char* failure_;
    unsigned int tokens_[count];
};

/// @param line     where the table stands
/// @param failure  what a value outside it raises
/// @param tokens   in the order of the enumeration
template <class Enumeration, std::size_t count>
constexpr TokenMap<Enumeration, count> tokenMap(int line, const char* failure,
                                                const unsigned int (&tokens)[count]) {
    return {line, failure, tokens};
}

} // namespace ZLT::OGL::internal
