#include "sim/foundation/property_list.hpp"

#include "sim/core/device.hpp"
#include "sim/foundation/array.hpp"
#include "sim/foundation/data.hpp"
#include "sim/foundation/number.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/foundation/plist_scalars.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

namespace {

Ref<Object> toObject(Process& process, plist_t node);

Ref<NSDictionary> toDictionary(Process& process, plist_t node) {
  auto dictionary = makeDictionary(process);
  for (const auto& [key, value] : entriesOf(node))
    if (const auto object = toObject(process, value)) dictionary->set(key, object.get());
  return dictionary;
}

Ref<Object> toArray(Process& process, plist_t node) {
  std::vector<Ref<Object>> elements;
  for (plist_t element : elementsOf(node))
    if (auto object = toObject(process, element)) elements.push_back(object);
  return Ref<Object>(makeArray(process, elements).get());
}

Ref<Object> toObject(Process& process, plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t value = 0;
      plist_get_bool_val(node, &value);
      return makeNumber(process, value != 0);
    }
    case PLIST_UINT: {
      std::uint64_t value = 0;
      plist_get_uint_val(node, &value);
      if (value > INT64_MAX && !isNegative(node)) return makeNumber(process, value);
      return makeNumber(process, static_cast<std::int64_t>(value));
    }
    case PLIST_REAL: {
      double value = 0;
      plist_get_real_val(node, &value);
      return makeNumber(process, value);
    }
    case PLIST_STRING: {
      std::uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      return makeString(process, text ? std::string(text, length) : std::string());
    }
    case PLIST_ARRAY:
      return toArray(process, node);
    case PLIST_DICT:
      return toDictionary(process, node);
    case PLIST_DATA: {
      std::uint64_t length = 0;
      const char* bytes = plist_get_data_ptr(node, &length);
      return makeData(process, bytes ? std::string(bytes, length) : std::string());
    }
    case PLIST_DATE:
      return makeDate(process, node);
    default:
      return {};
  }
}

// Null if the object is nothing that a property list can hold.
PlistNode toNode(const Object& object) {
  if (const auto* number = dynamic_cast<const NSNumber*>(&object)) {
    if (const bool* truth = std::get_if<bool>(&number->value))
      return PlistNode(plist_new_bool(*truth));
    if (const auto* whole = std::get_if<std::int64_t>(&number->value))
      return PlistNode(plist_new_uint(static_cast<std::uint64_t>(*whole)));
    if (const auto* large = std::get_if<std::uint64_t>(&number->value)) return unsignedNode(*large);
    return PlistNode(plist_new_real(std::get<double>(number->value)));
  }
  if (const auto* string = dynamic_cast<const NSString*>(&object))
    return PlistNode(plist_new_string(string->text.c_str()));
  if (const auto* data = dynamic_cast<const NSData*>(&object))
    return PlistNode(plist_new_data(data->bytes.data(), data->bytes.size()));
  if (const auto* date = dynamic_cast<const NSDate*>(&object))
    return PlistNode(plist_copy(date->node.get()));
  if (const auto* array = dynamic_cast<const NSArray*>(&object)) {
    PlistNode node(plist_new_array());
    for (std::size_t i = 0; i < array->size(); ++i) {
      PlistNode element = toNode(*array->at(i));
      if (!element) return {};
      plist_array_append_item(node.get(), element.release());
    }
    return node;
  }
  if (const auto* dictionary = dynamic_cast<const NSDictionary*>(&object)) {
    PlistNode node(plist_new_dict());
    for (const auto& entry : dictionary->entries()) {
      PlistNode value = toNode(*entry.value);
      if (!value) return {};
      plist_dict_set_item(node.get(), entry.key.c_str(), value.release());
    }
    return node;
  }
  return {};
}

}  // namespace

plist_t propertyListIn(const Files& files, const std::string& path) {
  const std::string* bytes = files.read(path);
  if (!bytes) return nullptr;
  auto& kept = files.derived(path);
  if (!kept) kept = std::make_shared<const PlistNode>(parsePropertyList(*bytes));
  return static_cast<const PlistNode*>(kept.get())->get();
}

Ref<NSDictionary> readPropertyList(Process& process, const std::string& devicePath) {
  plist_t root = propertyListIn(process.device.files, devicePath);
  if (!root || plist_get_node_type(root) != PLIST_DICT) return {};
  return toDictionary(process, root);
}

PlistNode toPropertyListNode(const Object& object) { return toNode(object); }

Ref<Object> fromPropertyListNode(Process& process, plist_t node) { return toObject(process, node); }

bool writePropertyListFile(Device& device, const std::string& devicePath, plist_t root) {
  if (device.state.settingsReadOnly) return false;
  std::string xml = toXml(root);
  return !xml.empty() && device.files.write(devicePath, std::move(xml));
}

bool writePropertyList(const NSDictionary& dictionary, const std::string& devicePath) {
  const PlistNode root = toNode(dictionary);
  return root && writePropertyListFile(dictionary.process.device, devicePath, root.get());
}

}  // namespace sim
