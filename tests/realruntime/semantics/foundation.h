// GNUstep's Foundation, asked what the cases ask.
#pragma once
#include <stddef.h>
#ifdef __cplusplus
extern "C" {
#endif
// The answer to an operation on two inputs, of which not every one needs both. It stays until the
// next call.
const char* foundationAnswer(const char* operation, const char* first, size_t firstLength,
                             const char* second, size_t secondLength);
// A text in quotes; it stays until the next call.
const char* quotedBytes(const char* bytes, size_t length);
#ifdef __cplusplus
}
#endif
