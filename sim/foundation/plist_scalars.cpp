#include "sim/foundation/plist_scalars.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string_view>

namespace sim {

namespace {

constexpr std::string_view kDigits = "0123456789";

// The parser below makes the node, of a text that is well-formed. Its own functions cannot make
// unsigned integers of 64 bits, nor dates of all years.
PlistNode parsed(const char* element, std::string_view text) {
  const std::string xml = fmt::format("<plist><{0}>{1}</{0}></plist>", element, text);
  plist_t node = nullptr;
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &node);
  return PlistNode(node);
}

void skipSpace(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kXmlSpace), text.size()));
}

// Takes a sign off, and says whether it was a minus.
bool takeSign(std::string_view& text) {
  if (!text.starts_with('-') && !text.starts_with('+')) return false;
  const bool minus = text.front() == '-';
  text.remove_prefix(1);
  return minus;
}

// The whole text as a number without a sign.
template <class Number>
bool isWhole(std::string_view text, Number& value, int base = 10) {
  if (text.starts_with('-')) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  return error == std::errc() && end == text.data() + text.size();
}

}  // namespace

// White space may stand before the sign and behind it, but not at the end.
PlistNode integerNode(const std::string& text) {
  std::string_view digits = text;
  skipSpace(digits);
  const bool negative = takeSign(digits);
  skipSpace(digits);
  int base = 10;
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    digits.remove_prefix(2);
    base = 16;
  }
  std::uint64_t value = 0;
  if (!isWhole(digits, value, base)) return {};
  constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
  if (negative && value > kMostNegative) return {};
  return negative ? PlistNode(plist_new_uint(~value + 1)) : unsignedNode(value);
}

PlistNode unsignedNode(std::uint64_t value) { return parsed("integer", fmt::format("{}", value)); }

bool isNegative(plist_t integer) { return toXml(integer).find("<integer>-") != std::string::npos; }

PlistNode realNode(const std::string& text) {
  std::string_view number = text;
  skipSpace(number);
  std::string lower(number);
  std::ranges::transform(lower, lower.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
  static constexpr std::string_view kNames[] = {"nan",      "inf",       "+inf",     "-inf",
                                                "infinity", "+infinity", "-infinity"};
  const bool named = std::ranges::find(kNames, lower) != std::end(kNames);
  if (!named && lower.find_first_not_of("0123456789+-.e") != std::string::npos) return {};
  char* end = nullptr;
  const double value = std::strtod(lower.c_str(), &end);
  if (lower.empty() || *end != '\0') return {};
  return PlistNode(plist_new_real(value));
}

// YYYY-MM-DDTHH:MM:SSZ
PlistNode dateNode(const std::string& text) {
  const auto dash = text.find('-');
  constexpr std::string_view kRest = "-00-00T00:00:00Z";
  if (dash == std::string::npos || dash == 0 || dash > 4 || text.size() - dash != kRest.size())
    return {};
  for (std::size_t i = 0; i < kRest.size(); ++i) {
    const bool digit = kDigits.find(text[dash + i]) != std::string_view::npos;
    if (kRest[i] == '0' ? !digit : text[dash + i] != kRest[i]) return {};
  }
  const auto two = [&](std::size_t at) {
    return static_cast<unsigned>((text[dash + at] - '0') * 10 + (text[dash + at + 1] - '0'));
  };
  int year = 0;
  if (!isWhole(std::string_view(text).substr(0, dash), year)) return {};
  const std::chrono::year_month_day day{std::chrono::year(year), std::chrono::month(two(1)),
                                        std::chrono::day(two(4))};
  if (!day.ok() || two(7) > 23 || two(10) > 59 || two(13) > 59) return {};
  return parsed("date", text);
}

// Base64, with white space anywhere.
PlistNode dataNode(const std::string& text) {
  std::string packed;
  std::ranges::copy_if(text, std::back_inserter(packed),
                       [](char c) { return kXmlSpace.find(c) == std::string_view::npos; });
  const auto end =
      packed.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
  const std::string padding = end == std::string::npos ? "" : packed.substr(end);
  if (packed.size() % 4 != 0 || (!padding.empty() && padding != "=" && padding != "==")) return {};
  return packed.empty() ? PlistNode(plist_new_data("", 0)) : parsed("data", packed);
}

}  // namespace sim
