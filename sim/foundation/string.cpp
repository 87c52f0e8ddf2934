#include "sim/foundation/string.hpp"

#include <algorithm>

#include "sim/core/class_definition.hpp"
#include "sim/core/trace.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

std::string NSString::description() const { return quoted(text); }

bool NSString::equals(const Object& other) const {
  const auto* string = dynamic_cast<const NSString*>(&other);
  return string && string->text == text;
}

std::string textOf(const NSString* string) { return string ? string->text : std::string(); }

Ref<NSString> makeString(Process& process, const std::string& text) {
  return process.make<NSString>("NSString", text);
}

namespace {

// UTF-16 units, as the platform counts.
unsigned long length(NSString& self) {
  unsigned long units = 0;
  for (const char c : self.text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xc0) != 0x80) ++units;
    if (byte >= 0xf0) ++units;
  }
  return units;
}

// Skips white space, one sign and zeros; YES on Y, y, T, t, 1 to 9.
bool boolValue(NSString& self) {
  std::size_t i = 0;
  const std::string& s = self.text;
  while (i < s.size() && std::isspace(static_cast<unsigned char>(s[i]))) ++i;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  while (i < s.size() && s[i] == '0') ++i;
  return i < s.size() && std::string_view("YyTt123456789").find(s[i]) != std::string_view::npos;
}

// "%@" and "%%": what the library formats.
Value stringWithFormat(Invocation& invocation) {
  auto* format = dynamic_cast<NSString*>(invocation.object(0));
  if (!format) throw Fault("+[NSString stringWithFormat:] without a format");
  std::string out;
  for (std::size_t i = 0; i < format->text.size(); ++i) {
    if (format->text[i] != '%') {
      out += format->text[i];
      continue;
    }
    const char code = ++i < format->text.size() ? format->text[i] : '\0';
    if (code == '%') {
      out += '%';
    } else if (code == '@') {
      const Object* object = invocation.nextVariadicObject();
      const auto* string = dynamic_cast<const NSString*>(object);
      out += string ? string->text : object ? object->description() : "(null)";
    } else {
      throw Fault(std::string("+[NSString stringWithFormat:] with %") + code);
    }
  }
  const Ref<NSString> made = makeString(invocation.process, out);
  return Returning<Ref<NSString>>::settle(invocation, made);
}

Owned<NSString> copied(NSString& self) { return {Ref<NSString>(&self)}; }

Ref<NSString> appending(NSString& self, NSString* tail) {
  if (!tail) throw Fault("-[NSString stringByAppendingString:] with nil");
  return makeString(self.process, self.text + tail->text);
}

Ref<NSString> percentEscaped(NSString& self, unsigned long encoding) {
  constexpr unsigned long kUtf8 = 4;
  if (encoding != kUtf8) throw Fault("percent-escaping in an unexpected encoding");
  // What CFURLCreateStringByAddingPercentEscapes leaves alone.
  constexpr std::string_view kPlain = "-_.~!*'();:@&=+$,/?";
  std::string out;
  for (const char c : self.text) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) || kPlain.find(c) != std::string_view::npos) {
      out += c;
    } else {
      constexpr const char* kHexDigits = "0123456789ABCDEF";
      out += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
    }
  }
  return makeString(self.process, out);
}

}  // namespace

ClassDefinition defineNSString() {
  auto definition = ClassDefinition::of<NSString>("NSString", "NSObject", Home::everywhere());
  const auto add = [&](NativeCode code) { definition.code(std::move(code)); };
  add(detail::methodCode<NSString, unsigned long>("length", length));
  add(detail::methodCode<NSString, bool>("boolValue", boolValue));
  add(detail::methodCode<NSString, Owned<NSString>>("copy", copied));
  add(detail::methodCode<NSString, bool, NSString*>(
      "isEqualToString:",
      [](NSString& self, NSString* other) { return other && self.text == other->text; }));
  add(detail::methodCode<NSString, Ref<NSString>, NSString*>("stringByAppendingString:",
                                                             appending));
  add(detail::methodCode<NSString, Ref<NSString>, unsigned long>(
      "stringByAddingPercentEscapesUsingEncoding:", percentEscaped));
  definition.code({"stringWithFormat:", {Kind::Object, {Kind::Object}, true}, stringWithFormat},
                  true);
  return definition;
}

}  // namespace sim
