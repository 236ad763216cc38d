#pragma once

extern volatile int sink;
extern "C" void marked(int value);

inline __attribute__((always_inline)) void inlined(int value) {
    marked(value); // @inlined
    sink = value;
}

inline __attribute__((always_inline)) void twice(int value) {
    inlined(value); // @inTwice
}
