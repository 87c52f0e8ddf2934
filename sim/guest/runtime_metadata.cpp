#include "sim/guest/runtime_metadata.hpp"

#include <stdexcept>

namespace sim::guest {

namespace {

class Metadata {
 public:
  Metadata(LoadedImage& image, GuestMemory& memory, Process& process, unsigned wordSize)
      : image_(image), memory_(memory), process_(process), wordSize_(wordSize) {}

  void attach() {
    image_.bindClasses([this](const std::string& name, bool meta) {
      Class& cls = named(name);
      return meta ? cls.isa->address : cls.address;
    });
    eachWord("__objc_selrefs", [this](Address at) {
      const Address selector = process_.selector(text(word(at)));
      memory_.patch(at, &selector, wordSize_);
    });
    eachWord("__objc_catlist", [this](Address at) { attachCategory(word(at)); });
    eachWord("__objc_classlist", [this](Address at) { makeClass(word(at)); });
  }

 private:
  Class& named(const std::string& name) const {
    if (Class* cls = process_.findClass(name)) return *cls;
    throw std::runtime_error("the binary imports the class " + name + ", which is not there");
  }

  // category_t: name, class, instance methods, class methods, …
  void attachCategory(Address category) {
    auto& cls = dynamic_cast<Class&>(*process_.object(field(category, 1)));
    addMethods(cls, field(category, 2));
    addMethods(*cls.isa, field(category, 3));
  }

  // class_t: metaclass, superclass, cache, table, and class_ro_t: four integers (the fourth on 64
  // bits only), layout, name, methods, …
  void makeClass(Address cls) {
    const Address contents = field(cls, 4);
    const Address pointers = contents + (wordSize_ == 8 ? 16 : 12);
    auto& superclass = dynamic_cast<Class&>(*process_.object(field(cls, 1)));
    Class& made = process_.createClass(text(field(pointers, 1)), &superclass);
    addMethods(made, field(pointers, 2));
    process_.registerClass(made);
  }

  // method_list_t: size of an entry, count, and entries of selector, types, implementation.
  void addMethods(Class& cls, Address list) {
    if (list == 0) return;
    std::uint32_t head[2] = {};
    memory_.read(list, head, sizeof head);
    for (std::uint32_t i = 0; i < head[1]; ++i) {
      const Address entry = list + sizeof head + Address{i} * 3 * wordSize_;
      const std::string selector = text(field(entry, 0));
      std::string types = text(field(entry, 1));  // with offsets: "v16@0:8"
      std::erase_if(types, [](char c) { return c >= '0' && c <= '9'; });
      cls.methods[selector] = {
          selector, Signature::fromEncoding(types), {nullptr, field(entry, 2)}};
    }
  }

  template <class One>
  void eachWord(const std::string& section, One one) {
    const auto [start, end] = image_.section(section);
    for (Address at = start; at < end; at += wordSize_) one(at);
  }

  Address field(Address object, unsigned index) const {
    return word(object + Address{index} * wordSize_);
  }
  Address word(Address at) const {
    Address value = 0;
    memory_.read(at, &value, wordSize_);
    return value;
  }
  std::string text(Address at) const {
    std::string all;
    for (char c = 0;; all += c) {
      memory_.read(at + all.size(), &c, 1);
      if (c == 0) return all;
    }
  }

  LoadedImage& image_;
  GuestMemory& memory_;
  Process& process_;
  unsigned wordSize_;
};

}  // namespace

void attachMetadata(LoadedImage& image, GuestMemory& memory, Process& process, unsigned wordSize) {
  Metadata(image, memory, process, wordSize).attach();
}

}  // namespace sim::guest
