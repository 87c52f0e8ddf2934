#include "sim/foundation/xml_plist.hpp"

#include <expat.h>

#include <optional>
#include <string_view>

#include "sim/foundation/plist_scalars.hpp"
#include "sim/foundation/xml_text.hpp"

namespace sim {

namespace {

// A <plist>, array or dictionary whose end tag has not come yet.
struct Container {
  PlistNode node;  // null for <plist>
  std::optional<std::string> key;
  bool isDictionary() const { return node && plist_get_node_type(node.get()) == PLIST_DICT; }
};

bool isLeaf(std::string_view name) {
  for (const char* leaf : {"key", "string", "true", "false", "integer", "real", "date", "data"})
    if (name == leaf) return true;
  return false;
}

// The value of an element that holds no other.
PlistNode leafNode(std::string_view name, const std::string& text) {
  if (name == "true" || name == "false")
    return PlistNode(text.empty() ? plist_new_bool(name == "true") : nullptr);
  if (name == "integer") return integerNode(text);
  if (name == "real") return realNode(text);
  if (name == "date") return dateNode(text);
  if (name == "data") return dataNode(text);
  return PlistNode(plist_new_string(text.c_str()));
}

// Expat reads the XML, which begins with the root and so has no DTD: no entities but XML's own.
class Reader {
 public:
  Reader(std::string xml, std::size_t deepest)
      : xml_(std::move(xml)), deepest_(deepest), parser_(XML_ParserCreate("UTF-8")) {
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(
        parser_, [](void* self, const char* name, const char**) { of(self).start(name); },
        [](void* self, const char* name) { of(self).end(name); });
    XML_SetCharacterDataHandler(parser_, [](void* self, const char* text, int length) {
      of(self).characters({text, static_cast<std::size_t>(length)});
    });
    XML_SetCommentHandler(parser_, [](void* self, const char*) { of(self).markup(); });
    XML_SetProcessingInstructionHandler(
        parser_, [](void* self, const char*, const char*) { of(self).markup(); });
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { XML_ParserFree(parser_); }

  PlistNode read() {
    XML_Parse(parser_, xml_.data(), static_cast<int>(xml_.size()), XML_TRUE);
    return finished_ ? std::move(root_) : nullptr;
  }

 private:
  static Reader& of(void* self) { return *static_cast<Reader*>(self); }

  void stop() {
    stopped_ = true;
    XML_StopParser(parser_, XML_FALSE);
  }

  // What the file has where the reader stands.
  std::string_view source() const {
    const auto at = static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_));
    return std::string_view(xml_).substr(
        at, static_cast<std::size_t>(XML_GetCurrentByteCount(parser_)));
  }

  void start(std::string_view name) {
    const bool root = open_.empty();
    if (!leaf_.empty() || open_.size() > deepest_ + (inPlist_ ? 1 : 0)) return stop();
    if (name == "plist" && root) {
      inPlist_ = true;
      open_.emplace_back();
    } else if (name == "dict" || name == "array") {
      open_.push_back({PlistNode(name == "dict" ? plist_new_dict() : plist_new_array()), {}});
    } else if (isLeaf(name) && !(name == "data" && source().ends_with("/>"))) {
      leaf_ = name;
      text_.clear();
    } else {
      stop();
    }
  }

  // The end of an empty element is told too after the reader was stopped.
  void end(std::string_view name) {
    if (stopped_) return;
    bool taken = true;
    if (!leaf_.empty()) {
      leaf_.clear();
      taken = name == "key" ? takeKey() : take(leafNode(name, unshielded(text_)));
    } else {
      Container container = std::move(open_.back());
      open_.pop_back();
      taken = container.node ? !container.key && take(std::move(container.node)) : root_ != nullptr;
    }
    finished_ = taken && open_.empty();
    if (!taken || finished_) stop();
  }

  bool takeKey() {
    if (open_.empty() || !open_.back().isDictionary() || open_.back().key) return false;
    open_.back().key = unshielded(text_);
    return true;
  }

  // Puts a value where it belongs; false if there is no place for it.
  bool take(PlistNode value) {
    if (!value) return false;
    if (open_.empty() || !open_.back().node) {
      if (root_) return false;
      root_ = std::move(value);
    } else if (Container& container = open_.back(); !container.isDictionary()) {
      plist_array_append_item(container.node.get(), value.release());
    } else {
      if (!container.key) return false;
      plist_dict_set_item(container.node.get(), container.key->c_str(), value.release());
      container.key.reset();
    }
    return true;
  }

  void characters(std::string_view text) {
    // The platform leaves line ends as they are, where XML has one kind.
    if (text == "\n" && source().starts_with('\r')) text = source();
    if (!leaf_.empty())
      text_ += text;
    else if (text.find_first_not_of(kXmlSpace) != std::string_view::npos)
      stop();
  }

  // Comments and processing instructions stand between elements, not within texts.
  void markup() {
    if (!leaf_.empty()) stop();
  }

  const std::string xml_;
  const std::size_t deepest_;
  XML_Parser parser_;
  std::vector<Container> open_;
  std::string leaf_;  // the name of the leaf that is open
  std::string text_;  // and what it holds so far
  PlistNode root_;
  bool inPlist_ = false;
  bool stopped_ = false;
  bool finished_ = false;
};

}  // namespace

PlistNode parseXmlPropertyList(const std::string& bytes, std::size_t deepest) {
  const auto xml = fromFirstElement(bytes);
  return xml ? Reader(shielded(*xml), deepest).read() : nullptr;
}

}  // namespace sim
