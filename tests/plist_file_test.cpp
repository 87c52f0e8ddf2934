// Property lists that must not exhaust whoever reads them.
#include "sim/foundation/plist_file.hpp"

#include <gtest/gtest.h>

namespace sim {
namespace {

std::string xml(const std::string& body) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + body + "</plist>";
}

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

std::string nested(std::size_t depth, const std::string& between = {}) {
  return xml(repeated("<array>" + between, depth) + repeated("</array>", depth));
}

TEST(PropertyList, IsReadInBothForms) {
  const PlistNode node = parsePropertyList(xml("<dict><key>a</key><true/></dict>"));
  ASSERT_TRUE(node);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(node.get(), &bytes, &length);
  const PlistNode again = parsePropertyList(std::string(bytes, length));
  std::free(bytes);
  ASSERT_TRUE(again);
  EXPECT_EQ(toXml(again.get()), toXml(node.get()));
}

TEST(PropertyList, IsUnreadableIfItIsNone) {
  EXPECT_FALSE(parsePropertyList(""));
  EXPECT_FALSE(parsePropertyList("garbage"));
  EXPECT_FALSE(parsePropertyList("bplist00"));
}

TEST(PropertyList, NestsAsDeepAsAnybodyNeeds) { EXPECT_TRUE(parsePropertyList(nested(200))); }

TEST(PropertyList, IsUnreadableIfItNestsDeeper) {
  EXPECT_FALSE(parsePropertyList(nested(300)));
  EXPECT_FALSE(parsePropertyList(nested(1000000)));
}

// Closing tags that only a comment holds close nothing.
TEST(PropertyList, CannotHideItsDepthInComments) {
  EXPECT_FALSE(parsePropertyList(nested(100000, "<!-- </array> -->")));
  EXPECT_FALSE(parsePropertyList(nested(100000, "<![CDATA[</array>]]>")));
}

// A binary file of these objects, which refer to each other by two bytes.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string offsets;
  for (const std::string& object : objects) {
    offsets += {static_cast<char>(bytes.size() >> 8), static_cast<char>(bytes.size())};
    bytes += object;
  }
  const std::uint64_t table = bytes.size();
  bytes += offsets + std::string(6, '\0') + "\x02\x02";
  for (const std::uint64_t number : {std::uint64_t{objects.size()}, std::uint64_t{0}, table})
    for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

std::string reference(std::size_t object) {
  return {static_cast<char>(object >> 8), static_cast<char>(object)};
}

// A binary file of arrays, each of which holds the next one so many times.
std::string chain(std::size_t length, unsigned times) {
  std::vector<std::string> objects;
  for (std::size_t i = 0; i < length; ++i)
    objects.push_back(static_cast<char>(0xa0 | times) + repeated(reference(i + 1), times));
  objects.emplace_back("\x09");
  return binary(objects);
}

TEST(PropertyList, MayReferToOneObjectFromManyPlaces) {
  const PlistNode node = parsePropertyList(chain(10, 2));
  ASSERT_TRUE(node);
  EXPECT_EQ(elementsOf(node.get()).size(), 2u);
}

TEST(PropertyList, IsUnreadableIfItGrowsBeyondAllMeasure) {
  EXPECT_FALSE(parsePropertyList(chain(40, 2)));
  EXPECT_FALSE(parsePropertyList(chain(20, 14)));
}

TEST(PropertyList, IsUnreadableIfItsBinaryFormNestsTooDeep) {
  EXPECT_TRUE(parsePropertyList(chain(200, 1)));
  EXPECT_FALSE(parsePropertyList(chain(300, 1)));
  EXPECT_FALSE(parsePropertyList(chain(10000, 1)));
}

TEST(PropertyList, HoldsTheLastOfTwoValuesUnderOneKeyInBothForms) {
  const std::string one = toXml(parsePropertyList(xml("<dict><key>k</key><true/></dict>")).get());
  const auto written =
      parsePropertyList(xml("<dict><key>k</key><false/><key>k</key><true/></dict>"));
  ASSERT_TRUE(written);
  EXPECT_EQ(toXml(written.get()), one);
  const auto packed =
      parsePropertyList(binary({"\xd2" + reference(1) + reference(1) + reference(2) + reference(3),
                                "\x51k", "\x08", "\x09"}));
  ASSERT_TRUE(packed);
  EXPECT_EQ(toXml(packed.get()), one);
}

TEST(PropertyList, IsUnreadableIfATextHoldsAZeroByte) {
  std::string text = xml("<string>abc</string>");
  text[text.find('b')] = '\0';
  EXPECT_FALSE(parsePropertyList(text));
}

}  // namespace
}  // namespace sim
