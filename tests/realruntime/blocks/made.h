// Blocks that a compiler has made.
#pragma once

typedef void (*Use)(void* block);
void withCounter(int* counter, Use use);                  // counts its calls
void withEnding(int* after, void (*end)(void), Use use);  // counts what is behind its end
void withAnswer(long* answer, Use use);                   // takes down an alert's button
