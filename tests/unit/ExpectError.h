#pragma once

#include "ExceptionOGL.h"

#include <gtest/gtest.h>

/// Expects that `call` throws ExceptionOGL with these values.
template <class Call>
void expectError(const char* file, int line, const char* text, unsigned int number, const Call& call) {
    try {
        call();
        ADD_FAILURE() << "no exception: " << text;
    } catch (const ZLT::OGL::ExceptionOGL& exception) {
        EXPECT_STREQ(file, exception.file());
        EXPECT_EQ(line, exception.line());
        EXPECT_STREQ(text, exception.what());
        EXPECT_EQ(number, exception.errorNumber());
    }
}
