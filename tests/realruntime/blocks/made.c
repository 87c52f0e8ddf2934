// Blocks as clang makes them, handed on as they lie on the stack.
#include "made.h"

void withCounter(int* counter, Use use) {
  void (^block)(void) = ^{
    ++*counter;
  };
  use(block);
}

void withEnding(int* after, void (*end)(void), Use use) {
  void (^block)(void) = ^{
    end();  // its timer, and with it what held the block
    ++*after;
  };
  use(block);
}

void withAnswer(long* answer, Use use) {
  void (^block)(void*, long) = ^(void* alert, long button) {
    *answer = alert ? button : -1;
  };
  use(block);
}
