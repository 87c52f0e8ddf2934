// The binary form of property lists, looked at before a parser is trusted with it. Stands in for
// the limits that CoreFoundation's reader has by itself; leaves out reading values, which libplist
// does.
#pragma once
#include <cstdint>
#include <string>

namespace sim {

// Whether all of the file's objects together grow to at most so many (the form can refer to one
// from many places), nest at most so deep, and have values that the parser keeps: no text with a
// zero byte or half a surrogate pair, no integer beyond 64 bits, no date outside of the years 0 to
// 9999. What is broken otherwise is left to the parser.
bool binaryPlistCanBeKept(const std::string& bytes, std::uint64_t most, int deepest);

}  // namespace sim
