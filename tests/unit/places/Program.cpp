// A program for Windows that calls marked(). The test knows the lines by what stands behind the @.
#include "Inlined.h"

volatile int sink;
extern "C" __attribute__((noipa)) void marked(int value) { sink = value; }

namespace Drawing {
struct Shape {
    __attribute__((noipa)) void draw(int value) {
        marked(value);  // @method
        inlined(value); // @aroundInlined
        sink = value;
    }
};
} // namespace Drawing

__attribute__((noipa)) void last(int value) {
    sink = value;
    marked(value + 1); // @tail
}

int main(int count, char**) {
    Drawing::Shape().draw(count);
    twice(count); // @aroundTwice
    last(count);  // @callOfLast
    return sink - 1;
}
