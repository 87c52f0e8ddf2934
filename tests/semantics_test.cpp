// The simulated Foundation answers as the platform's does, case by case; the real runtime's is
// held against the same cases.
#include <fmt/format.h>

#include <fstream>

#include "sim/foundation/array.hpp"
#include "sim/foundation/data.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/number.hpp"
#include "sim/foundation/services.hpp"
#include "tests/device_fixture.hpp"
#include "tests/semantics/cases.hpp"

namespace sim {
namespace {

std::string shown(const Object* object);

struct ShownNumber {
  std::string operator()(bool truth) const { return truth ? "true" : "false"; }
  std::string operator()(double real) const { return fmt::format("real {:.17g}", real); }
  template <class Whole>
  std::string operator()(Whole number) const {
    return fmt::format("{}", number);
  }
};

std::string shownEntries(const NSDictionary& dictionary) {
  std::vector<std::string> entries;
  for (const auto& entry : dictionary.entries())
    entries.push_back(semantics::quoted(entry.key) + ": " + shown(entry.value.get()));
  std::ranges::sort(entries);
  return fmt::format("{{{}}}", fmt::join(entries, ", "));
}

std::string shownElements(const NSArray& array) {
  std::vector<std::string> elements;
  for (std::size_t i = 0; i < array.size(); ++i) elements.push_back(shown(array.at(i)));
  return fmt::format("({})", fmt::join(elements, ", "));
}

std::string shown(const Object* object) {
  if (!object) return "nil";
  if (const auto* string = dynamic_cast<const NSString*>(object))
    return semantics::quoted(string->text);
  if (const auto* number = dynamic_cast<const NSNumber*>(object))
    return std::visit(ShownNumber{}, number->value);
  if (const auto* data = dynamic_cast<const NSData*>(object)) {
    std::string digits;
    for (const char byte : data->bytes)
      digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return "<" + digits + ">";
  }
  if (const auto* date = dynamic_cast<const NSDate*>(object)) {
    const std::string xml = toXml(date->node.get());
    return xml.substr(xml.find("<date>") + 6, 20);
  }
  if (const auto* array = dynamic_cast<const NSArray*>(object)) return shownElements(*array);
  if (const auto* dictionary = dynamic_cast<const NSDictionary*>(object))
    return shownEntries(*dictionary);
  return object->description();
}

class Semantics : public DeviceTest {
 protected:
  // What the simulated Foundation answers. Runs in a callback of SpringBoard's.
  std::string answer(Process& process, const semantics::Case& each) {
    const std::string& input = each.inputs.front();
    const auto send = [&](Object* receiver, const char* name, std::vector<Value> arguments = {}) {
      return process.send(receiver, name, std::move(arguments));
    };
    const auto object = [&](const Value& value) { return process.object(value.bits); };
    const auto truth = [](const Value& value) { return value.asBool() ? "YES" : "NO"; };
    Object* const string = object(text(process, input));
    if (each.operation == "boolValue") return truth(send(string, "boolValue"));
    if (each.operation == "length") return std::to_string(send(string, "length").bits);
    if (each.operation == "isEqualToString")
      return truth(send(string, "isEqualToString:", {text(process, each.inputs.at(1))}));
    if (each.operation == "percentEscaped")
      return shown(object(send(
          string, "stringByAddingPercentEscapesUsingEncoding:", {Value::integer(Kind::ULong, 4)})));
    if (each.operation == "address") {
      const Object* url =
          object(send(cls(process, "NSURL"), "URLWithString:", {text(process, input)}));
      return url ? shown(makeString(process, dynamic_cast<const NSURL&>(*url).text).get()) : "nil";
    }
    if (each.operation == "truth") {
      Object* const value = element(process, input);
      return process.responds(*value, "boolValue") ? truth(send(value, "boolValue")) : "none";
    }
    if (each.operation == "contains") {
      const Object* other = element(process, each.inputs.at(1));
      Object* const array =
          object(send(cls(process, "NSArray"),
                      "arrayWithObject:", {Value::object(element(process, input)->address)}));
      return truth(send(array, "containsObject:", {Value::object(other->address)}));
    }
    if (each.operation == "read") return readAndWritten(process, input);
    return "no such operation";
  }

 private:
  static constexpr const char* kFile = "/var/mobile/Library/Preferences/a.plist";

  NSDictionary* read(Process& process) {
    auto fresh = process.make<NSMutableDictionary>("NSMutableDictionary");
    fresh->libraryRetain();
    const Value made = process.send(fresh.get(), "initWithContentsOfFile:", {text(process, kFile)});
    auto* dictionary = dynamic_cast<NSDictionary*>(process.object(made.bits));
    if (dictionary) process.autorelease(Ref<Object>(dictionary)), dictionary->libraryRelease();
    return dictionary;
  }
  void write(const std::string& bytes) { device.files.write(kFile, bytes); }
  Object* element(Process& process, const std::string& bytes) {
    write(bytes);
    NSDictionary* dictionary = read(process);
    return dictionary ? dictionary->find("v") : nullptr;
  }
  std::string readAndWritten(Process& process, const std::string& bytes) {
    write(bytes);
    NSDictionary* dictionary = read(process);
    if (!dictionary) return "nil";
    const std::string first = shown(dictionary);
    const Value written = process.send(
        dictionary, "writeToFile:atomically:", {text(process, kFile), Value::boolean(true)});
    const std::string again = written.asBool() ? shown(read(process)) : "nothing";
    return again == first ? first : first + ", written as " + again;
  }
};

TEST_F(Semantics, AreThePlatforms) {
  Process& process = booted();
  const auto cases = semantics::readCases(CORVALEN_SOURCE_DIR "/tests/semantics");
  ASSERT_GE(cases.size(), 400u);
  for (const semantics::Case& each : cases)
    device.callback(process,
                    [&] { EXPECT_EQ(each.wrong("simulated", answer(process, each)), ""); });
}

}  // namespace
}  // namespace sim
