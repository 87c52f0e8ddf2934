#include "sim/foundation/plist_file.hpp"

#include <cstdlib>
#include <fstream>
#include <map>

#include "sim/foundation/binary_plist.hpp"
#include "sim/foundation/xml_plist.hpp"

namespace sim {

namespace {

// What would exhaust the stack or the memory is found out before.
constexpr int kDeepest = 256;
constexpr std::size_t kLargestFile = std::size_t{64} << 20;
constexpr std::size_t kMostObjects = 50'000;

PlistNode parseBinary(const std::string& bytes) {
  if (!binaryPlistCanBeKept(bytes, kMostObjects, kDeepest)) return {};
  plist_t parsed = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &parsed);
  return PlistNode(parsed);
}

}  // namespace

std::vector<plist_t> elementsOf(plist_t array) {
  std::vector<plist_t> elements;
  plist_array_iter iterator = nullptr;
  plist_array_new_iter(array, &iterator);
  for (;;) {
    plist_t element = nullptr;
    plist_array_next_item(array, iterator, &element);
    if (!element) break;
    elements.push_back(element);
  }
  std::free(iterator);
  return elements;
}

std::vector<std::pair<std::string, plist_t>> entriesOf(plist_t dictionary) {
  std::vector<std::pair<std::string, plist_t>> entries;
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(dictionary, &iterator);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(dictionary, iterator, &key, &value);
    if (!value) break;
    if (key) entries.emplace_back(key, value);
    std::free(key);
  }
  std::free(iterator);
  return entries;
}

PlistNode parsePropertyList(const std::string& bytes) {
  if (bytes.size() > kLargestFile) return {};
  if (!bytes.starts_with("bplist")) return parseXmlPropertyList(bytes, kDeepest);
  const PlistNode root = parseBinary(bytes);
  // The binary form can hold a key twice, and objects of archives: as XML it cannot.
  return root ? parseXmlPropertyList(toXml(root.get()), kDeepest) : nullptr;
}

std::shared_ptr<void> readPropertyListFile(const std::filesystem::path& path) {
  struct Read {
    std::filesystem::file_time_type at;
    std::shared_ptr<void> list;
  };
  static std::map<std::string, Read> known;
  std::error_code error;
  const auto written = std::filesystem::last_write_time(path, error);
  if (error || !std::filesystem::is_regular_file(path, error)) return {};
  const auto found = known.find(path.string());
  if (found != known.end() && found->second.at == written) return found->second.list;
  std::ifstream file(path, std::ios::binary);
  std::shared_ptr<void> list = parsePropertyList({std::istreambuf_iterator<char>(file), {}});
  known[path.string()] = {written, list};
  return list;
}

std::string toXml(plist_t node) {
  char* xml = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(node, &xml, &length);
  const std::string text(xml ? xml : "", xml ? length : 0);
  std::free(xml);
  return text;
}

}  // namespace sim
