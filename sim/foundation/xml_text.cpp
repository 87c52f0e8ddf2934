#include "sim/foundation/xml_text.hpp"

#include <iconv.h>

#include <algorithm>
#include <string_view>

#include "sim/foundation/plist_scalars.hpp"

namespace sim {

namespace {

constexpr auto npos = std::string::npos;

std::optional<std::string> converted(const std::string& bytes, const char* encoding) {
  const iconv_t conversion = iconv_open("UTF-8", encoding);
  if (conversion == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
  std::string out(bytes.size() * 2, '\0');  // no character of these encodings grows further
  char* from = const_cast<char*>(bytes.data());
  char* to = out.data();
  std::size_t left = bytes.size();
  std::size_t room = out.size();
  const bool whole = iconv(conversion, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
  iconv_close(conversion);
  if (!whole) return std::nullopt;
  out.resize(out.size() - room);
  return out;
}

// What the XML declaration says, in capitals; it counts only at the very start.
std::string declaredEncoding(const std::string& bytes) {
  if (!bytes.starts_with("<?xml")) return "UTF-8";
  const std::string declaration = bytes.substr(0, bytes.find("?>"));
  const auto begin = declaration.find("encoding=");
  if (begin == npos || begin + 9 == declaration.size()) return "UTF-8";
  const auto end = declaration.find(declaration[begin + 9], begin + 10);
  if (end == npos) return {};
  std::string name = declaration.substr(begin + 10, end - begin - 10);
  std::ranges::transform(name, name.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
  return name;
}

std::optional<std::string> inUtf8(const std::string& bytes) {
  if (bytes.starts_with("\xef\xbb\xbf")) return bytes.substr(3);
  if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff"))
    return converted(bytes, "UTF-16");
  const std::string encoding = declaredEncoding(bytes);
  if (encoding == "UTF-8") return bytes;
  if (encoding == "ISO-8859-1" || encoding == "US-ASCII") return converted(bytes, encoding.c_str());
  return std::nullopt;
}

std::size_t behind(const std::string& xml, std::string_view end, std::size_t from) {
  const auto at = xml.find(end, from);
  return at == npos ? npos : at + end.size();
}

std::size_t behindDtd(const std::string& xml, std::size_t at);

// The position behind the comment, processing instruction or declaration that begins there; npos
// if it does not end; `at` if none begins there.
std::size_t behindMarkup(const std::string& xml, std::size_t at) {
  if (xml.compare(at, 4, "<!--") == 0) return behind(xml, "-->", at + 4);
  if (xml.compare(at, 2, "<?") == 0) return behind(xml, "?>", at + 2);
  if (xml.compare(at, 2, "<!") == 0) return behindDtd(xml, at + 2);
  return at;
}

// A DTD is skipped without a look at what it declares: quoted texts, and what stands in brackets.
std::size_t behindDtd(const std::string& xml, std::size_t at) {
  int brackets = 0;
  while ((at = xml.find_first_of("\"'[]<>", at)) != npos) {
    const char c = xml[at];
    if (c == '>' && brackets <= 0) return at + 1;
    if (c == '"' || c == '\'') {
      at = xml.find(c, at + 1);
      if (at == npos) break;
    } else if (c == '<' && (xml.compare(at, 4, "<!--") == 0 || xml.compare(at, 2, "<?") == 0)) {
      at = behindMarkup(xml, at);
      if (at == npos) break;
      continue;
    }
    brackets += (c == '[') - (c == ']');
    ++at;
  }
  return npos;
}

// A character that no well-formed XML holds unescaped, and whatever else is shielded: kLead and one
// letter each.
constexpr std::string_view kLead = "\xf4\x8f\xbf\xbf";  // U+10FFFF, which no text needs
constexpr std::string_view kFffe = "\xef\xbf\xbe";
constexpr std::string_view kFfff = "\xef\xbf\xbf";

bool isControl(char c) { return c > 0 && c < ' ' && kXmlSpace.find(c) == std::string_view::npos; }

}  // namespace

std::optional<std::string> fromFirstElement(const std::string& bytes) {
  const auto xml = inUtf8(bytes);
  if (!xml) return std::nullopt;
  for (std::size_t at = 0; (at = xml->find_first_not_of(kXmlSpace, at)) != npos;) {
    if ((*xml)[at] != '<') break;
    const auto next = behindMarkup(*xml, at);
    if (next == npos) break;
    if (next == at) return xml->substr(at);
    at = next;
  }
  return std::nullopt;
}

std::string shielded(const std::string& xml) {
  std::string out;
  out.reserve(xml.size());
  const auto starts = [&](std::size_t at, std::string_view with) {
    return xml.compare(at, with.size(), with) == 0;
  };
  for (std::size_t at = 0; at < xml.size(); ++at) {
    const char c = xml[at];
    if (isControl(c)) {
      out += kLead;
      out += static_cast<char>(c + '@');
    } else if (c == kFffe[0] && (starts(at, kFffe) || starts(at, kFfff))) {
      out += kLead;
      out += starts(at, kFffe) ? 'e' : 'f';
      at += kFffe.size() - 1;
    } else {
      out += c;
      if (c == kLead.back() && at + 1 >= kLead.size() && starts(at + 1 - kLead.size(), kLead))
        out += 'l';
    }
  }
  return out;
}

std::string unshielded(const std::string& text) {
  std::string out;
  std::size_t at = 0;
  for (std::size_t lead = 0; (lead = text.find(kLead, at)) != npos;) {
    out += text.substr(at, lead - at);
    at = lead + kLead.size() + 1;
    const char letter = at <= text.size() ? text[at - 1] : 'l';
    if (letter == 'l')
      out += kLead;
    else if (letter == 'e' || letter == 'f')
      out += letter == 'e' ? kFffe : kFfff;
    else
      out += static_cast<char>(letter - '@');
  }
  return at < text.size() ? out + text.substr(at) : out;
}

}  // namespace sim
