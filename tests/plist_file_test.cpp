// Property lists: the platform's rules for them, and those that must not exhaust whoever reads
// them.
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

// ---- The platform's rules for XML

// What a file reads as, written as XML without what stands around it; "unreadable" if it cannot be.
std::string readAs(const std::string& bytes) {
  const PlistNode node = parsePropertyList(bytes);
  if (!node) return "unreadable";
  const std::string written = toXml(node.get());
  const std::string before = "<plist version=\"1.0\">\n";
  const auto begin = written.find(before) + before.size();
  return written.substr(begin, written.rfind("\n</plist>") - begin);
}

std::string dictionaryOf(const std::string& value) {
  return "<dict>\n\t<key>k</key>\n\t" + value + "\n</dict>";
}
std::string pair(const std::string& value) { return "<dict><key>k</key>" + value + "</dict>"; }

void expectUnreadable(const std::vector<std::string>& files) {
  for (const std::string& file : files) EXPECT_EQ(readAs(file), "unreadable") << file;
}

TEST(XmlPropertyList, MayBeginWithWhatIsNoElement) {
  for (const char* before :
       {"", " \t\r\n", "\xef\xbb\xbf", "\xef\xbb\xbf \n<?xml version=\"1.0\"?>",
        "\n<?xml version=\"1.0\"?>", "<!-- a <dict> -->", "<!-- a --><?xml version=\"1.0\"?>",
        "<?any <plist> thing?>", "<!DOCTYPE plist PUBLIC \"-//>//\" 'x>y'>",
        "<!DOCTYPE plist [<!-- ]> \" --><!ELEMENT plist (dict)> <?a ]>?>\n ] >",
        "<!DOCTYPE plist [<!ENTITY a \"]>\">]><!-- b -->\n"})
    EXPECT_EQ(readAs(before + xml("<true/>").substr(xml("").find("<plist"))), "<true/>") << before;
  expectUnreadable({"x<plist><true/></plist>", "<!-- a <plist><true/></plist>",
                    "<?a <plist><true/></plist>", "<!DOCTYPE plist [ ><plist><true/></plist>", "<!",
                    "<", "<?", " ", "\xef\xbb\xbf", "{ k = v; }", "k = v;"});
}

TEST(XmlPropertyList, MayHaveAnyElementAsItsRoot) {
  EXPECT_EQ(readAs(pair("<true/>")), dictionaryOf("<true/>"));
  EXPECT_EQ(readAs("<array/>"), "<array/>");
  EXPECT_EQ(readAs("<string>a</string>"), "<string>a</string>");
  EXPECT_EQ(readAs("<plist version=\"9\" other='x'><integer>1</integer></plist>"),
            "<integer>1</integer>");
  expectUnreadable({"<key>k</key>", "<other/>", "<other><dict/></other>", "<PLIST><dict/></PLIST>",
                    "text", "<dict", "<dict>", "</dict>"});
}

TEST(XmlPropertyList, HoldsExactlyOneObject) {
  expectUnreadable({"<plist/>", "<plist></plist>", "<plist> <!-- a --> </plist>",
                    "<plist><true/><true/></plist>", "<plist><dict/><dict/></plist>",
                    "<plist><dict/>text</plist>", "<plist>text<dict/></plist>",
                    "<plist><plist><dict/></plist></plist>",
                    "<array><plist><true/></plist></array>"});
  EXPECT_EQ(readAs("<plist> <!-- a --><dict/><?b c?> </plist>"), "<dict/>");
}

TEST(XmlPropertyList, EndsWithItsRoot) {
  for (const char* behind : {"<plist><array/></plist>", "</plist>", "garbage", "<", "<!--", "&x;",
                             "\xff\xfe", "</dict></dict>"}) {
    EXPECT_EQ(readAs(std::string("<dict/>") + behind), "<dict/>") << behind;
    EXPECT_EQ(readAs(std::string("<plist><dict></dict></plist>") + behind), "<dict/>") << behind;
  }
}

TEST(XmlPropertyList, IsUnreadableIfCutOff) {
  const std::string whole = xml(pair("<array><string>a</string></array>"));
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_EQ(readAs(whole.substr(0, length)), "unreadable") << length;
}

TEST(XmlPropertyList, HasAValueForEachKey) {
  expectUnreadable({"<dict><key>k</key></dict>", "<dict><true/></dict>",
                    "<dict><key>k</key><true/><true/></dict>",
                    "<dict><key>k</key><key>l</key><true/></dict>",
                    "<dict><key>k</key><key>l</key></dict>", "<dict><true/><key>k</key></dict>",
                    "<array><key>k</key></array>", "<dict>k<key>k</key><true/></dict>"});
  EXPECT_EQ(readAs("<dict><key/><true/></dict>"), "<dict>\n\t<key></key>\n\t<true/>\n</dict>");
  EXPECT_EQ(readAs("<dict><key></key><true/></dict>"), readAs("<dict><key/><true/></dict>"));
}

TEST(XmlPropertyList, IsUnreadableIfItIsNoXmlOrHoldsAnUnknownElement) {
  expectUnreadable({"<array><other/></array>", "<array><set/></array>", "<array>text</array>",
                    "<array><true/></dict>", "<array><string>a</array>", "<array><a b=c/></array>",
                    "<array><string>a<b/></string></array>", "<array><true><true/></true></array>",
                    "<array><string>a & b</string></array>", "<string>a<!-- b -->c</string>",
                    "<string>a<?b c?>d</string>", "<string>\xff</string>",
                    "<string>\xc0\x80</string>", "<string>\xed\xa0\x80</string>",
                    "<string>caf\xe9</string>", "<dict><key>\xff</key><true/></dict>"});
}

TEST(XmlPropertyList, HasWholeNumbersOf64Bits) {
  const auto whole = [](const std::string& text) {
    return readAs("<integer>" + text + "</integer>");
  };
  const auto is = [](const std::string& text) { return "<integer>" + text + "</integer>"; };
  EXPECT_EQ(whole("0"), is("0"));
  EXPECT_EQ(whole("-7"), is("-7"));
  EXPECT_EQ(whole("+7"), is("7"));
  EXPECT_EQ(whole("007"), is("7"));
  EXPECT_EQ(whole("0x1F"), is("31"));
  EXPECT_EQ(whole("-0Xff"), is("-255"));
  EXPECT_EQ(whole(" \n- 7"), is("-7"));
  EXPECT_EQ(whole("9223372036854775807"), is("9223372036854775807"));
  EXPECT_EQ(whole("9223372036854775808"), is("9223372036854775808"));
  EXPECT_EQ(whole("18446744073709551615"), is("18446744073709551615"));
  EXPECT_EQ(whole("0xffffffffffffffff"), is("18446744073709551615"));
  EXPECT_EQ(whole("-9223372036854775808"), is("-9223372036854775808"));
  for (const char* wrong :
       {"", " ", "-", "+", "0x", "x1", "1 ", "1 2", "--1", "+-1", "1.5", "1e3", "f", "0xg", "0x-1",
        "18446744073709551616", "0x10000000000000000", "-9223372036854775809", "one"})
    EXPECT_EQ(whole(wrong), "unreadable") << wrong;
  EXPECT_EQ(readAs("<integer/>"), "unreadable");
}

TEST(XmlPropertyList, HasRealNumbers) {
  const auto real = [](const std::string& text) { return readAs("<real>" + text + "</real>"); };
  EXPECT_EQ(real("1.5"), "<real>1.5</real>");
  EXPECT_EQ(real(" -2e-3"), "<real>-0.002</real>");
  EXPECT_EQ(real("0.1"), "<real>0.10000000000000001</real>");
  EXPECT_EQ(real("NaN"), "<real>nan</real>");
  EXPECT_EQ(real("-Infinity"), "<real>-infinity</real>");
  for (const char* wrong : {"", " ", "x", "1.5x", "1.5 ", "0x10", "1,5", "--1", ".", "e5", "nano"})
    EXPECT_EQ(real(wrong), "unreadable") << wrong;
  EXPECT_EQ(readAs("<real/>"), "unreadable");
}

TEST(XmlPropertyList, HasDates) {
  for (const char* date : {"2015-01-10T00:00:00Z", "1066-10-14T23:59:59Z", "9999-12-31T23:59:59Z",
                           "2016-02-29T12:00:00Z", "1900-01-01T00:00:00Z"})
    EXPECT_EQ(readAs(std::string("<date>") + date + "</date>"),
              std::string("<date>") + date + "</date>");
  for (const char* wrong :
       {"", "2015", "2015-01-10", "2015-01-10T00:00:00", "2015-01-10 00:00:00Z",
        "2015-01-10T00:00:00Z ", " 2015-01-10T00:00:00Z", "2015-13-10T00:00:00Z",
        "2015-02-30T00:00:00Z", "2015-01-10T24:00:00Z", "2015-01-10T00:60:00Z",
        "2015-01-10T00:00:00.5Z", "2015-1-10T00:00:00Z", "today", "20150-01-10T00:00:00Z"})
    EXPECT_EQ(readAs(std::string("<date>") + wrong + "</date>"), "unreadable") << wrong;
  EXPECT_EQ(readAs("<date/>"), "unreadable");
}

TEST(XmlPropertyList, HasDataInBase64) {
  EXPECT_EQ(readAs("<data>AAEC</data>"), "<data>\nAAEC\n</data>");
  EXPECT_EQ(readAs("<data>\n\tAA\n\tE=\n</data>"), "<data>\nAAE=\n</data>");
  EXPECT_EQ(readAs("<data>AA==</data>"), "<data>\nAA==\n</data>");
  EXPECT_EQ(readAs("<data></data>"), "<data>\n</data>");
  for (const char* wrong :
       {"A", "AA", "AAA", "AA=", "A===", "AA==AA==", "A=AA", "AAE*", "=", "===="})
    EXPECT_EQ(readAs(std::string("<data>") + wrong + "</data>"), "unreadable") << wrong;
  expectUnreadable({"<data/>", "<data />", pair("<data/>")});
}

TEST(XmlPropertyList, HasEmptyTruthValues) {
  EXPECT_EQ(readAs("<true></true>"), "<true/>");
  EXPECT_EQ(readAs("<false a='b'/>"), "<false/>");
  expectUnreadable(
      {"<true>yes</true>", "<true> </true>", "<false>1</false>", "<true><!-- --></true>"});
}

// As they are read and written, so that reading what was written gives the same again.
TEST(XmlPropertyList, HasTextsOfAnyCharacters) {
  const auto text = [](const std::string& xml) {
    const std::string first = readAs("<string>" + xml + "</string>");
    EXPECT_EQ(readAs(first), first);
    return first == "unreadable" ? first : first.substr(8, first.size() - 17);
  };
  EXPECT_EQ(text("&lt;&amp;&gt;&quot;&apos;&#65;&#x1F600;"), "&lt;&amp;&gt;\"'A\U0001F600");
  EXPECT_EQ(text("a<![CDATA[<b> & ]]]>c"), "a&lt;b&gt; &amp; ]c");
  EXPECT_EQ(text(" \n\t "), " \n\t ");
  EXPECT_EQ(text("a\rb\r\nc\r\rd&#13;&#10;"), "a\rb\r\nc\r\rd\r\n");
  EXPECT_EQ(text("<![CDATA[\r\n]]>"), "\r\n");
  EXPECT_EQ(text("\x01\x1f\x7f\uFFFE\uFFFF\U0010FFFF\U0010FFFFl\u0085"),
            "\x01\x1f\x7f\uFFFE\uFFFF\U0010FFFF\U0010FFFFl\u0085");
  EXPECT_EQ(readAs("<dict><key>\x01\r</key><true/></dict>"),
            "<dict>\n\t<key>\x01\r</key>\n\t<true/>\n</dict>");
}

TEST(XmlPropertyList, KnowsNoEntitiesButXmlsOwn) {
  expectUnreadable({"<string>&nbsp;</string>",
                    "<!DOCTYPE plist [<!ENTITY a \"b\">]><string>&a;</string>",
                    "<!DOCTYPE plist [<!ENTITY a SYSTEM \"/etc/hostname\">]><string>&a;</string>",
                    "<string>&#0;</string>", "<string>&lt</string>"});
  std::string bomb = "<!DOCTYPE plist [<!ENTITY e0 \"ha\">";
  for (int i = 1; i < 40; ++i) {
    const std::string before = "&e" + std::to_string(i - 1) + ";";
    bomb += "<!ENTITY e" + std::to_string(i) + " \"" + before + before + "\">";
  }
  expectUnreadable({bomb + "]><string>&e39;</string>", bomb + "]><string a='&e39;'>x</string>"});
}

std::string utf16(const std::u16string& text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : u"\xfeff" + text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit);
    bytes += bigEndian ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

TEST(XmlPropertyList, IsReadInTheEncodingItSays) {
  for (const bool bigEndian : {false, true}) {
    EXPECT_EQ(readAs(utf16(
                  u" <?xml version='1.0' encoding='UTF-16'?><string>\u00e9\r\n\U0001F600</string>",
                  bigEndian)),
              "<string>\u00e9\r\n\U0001F600</string>");
    expectUnreadable({utf16(u"<string>\xd800</string>", bigEndian), utf16(u"", bigEndian)});
  }
  const std::string declared = "<?xml version=\"1.0\" encoding=";
  EXPECT_EQ(readAs(declared + "'utf-8'?><string>\u00e9</string>"), "<string>\u00e9</string>");
  EXPECT_EQ(readAs(declared + "\"ISO-8859-1\"?><string>\xe9</string>"), "<string>\u00e9</string>");
  expectUnreadable({declared + "\"US-ASCII\"?><string>\xe9</string>",
                    declared + "\"none\"?><string>a</string>",
                    declared + "\"UTF-16\"?><string>a</string>"});
}

// ---- The binary form

// What comes back of a binary dictionary with this key and value.
std::string binaryPair(const std::string& key, const std::string& value) {
  return readAs(binary({"\xd1" + reference(1) + reference(2), key, value}));
}
std::string bytes(std::initializer_list<int> all) {
  std::string text;
  for (const int byte : all) text += static_cast<char>(byte);
  return text;
}

TEST(BinaryPropertyList, KeepsTextsExactlyOrIsUnreadable) {
  EXPECT_EQ(binaryPair("\x51k", "\x52\x01\r"), dictionaryOf("<string>\x01\r</string>"));
  EXPECT_EQ(binaryPair("\x51k", bytes({0x62, 0xd8, 0x3d, 0xde, 0x00})),
            dictionaryOf("<string>\U0001F600</string>"));
  EXPECT_EQ(binaryPair("\x51k", "\x51\xff"), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", bytes({0x53, 'a', 0, 'b'})), "unreadable");
  EXPECT_EQ(binaryPair(bytes({0x53, 'a', 0, 'b'}), "\x09"), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", bytes({0x62, 0, 'a', 0, 0})), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", bytes({0x61, 0xd8, 0x00})), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", bytes({0x62, 0xde, 0x00, 0xd8, 0x3d})), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", bytes({0x62, 0xd8, 0x3d, 0, 'a'})), "unreadable");
}

TEST(BinaryPropertyList, KeepsNumbersExactlyOrIsUnreadable) {
  const std::string zeros(8, '\0');
  const std::string ones(8, '\xff');
  EXPECT_EQ(binaryPair("\x51k", "\x13" + ones), dictionaryOf("<integer>-1</integer>"));
  EXPECT_EQ(binaryPair("\x51k", "\x14" + zeros + ones),
            dictionaryOf("<integer>18446744073709551615</integer>"));
  EXPECT_EQ(binaryPair("\x51k", "\x14" + ones + ones), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", "\x14" + zeros.substr(1) + "\x01" + ones), "unreadable");
}

TEST(BinaryPropertyList, HasDatesThatXmlCanHold) {
  EXPECT_EQ(binaryPair("\x51k", bytes({0x33, 0, 0, 0, 0, 0, 0, 0, 0})),
            dictionaryOf("<date>2001-01-01T00:00:00Z</date>"));
  EXPECT_EQ(binaryPair("\x51k", bytes({0x33, 0x3f, 0xe0, 0, 0, 0, 0, 0, 0})),
            dictionaryOf("<date>2001-01-01T00:00:00Z</date>"));
  EXPECT_EQ(binaryPair("\x51k", bytes({0x33, 0x43, 0xf0, 0, 0, 0, 0, 0, 0})), "unreadable");
  EXPECT_EQ(binaryPair("\x51k", bytes({0x33, 0xff, 0xf0, 0, 0, 0, 0, 0, 0})), "unreadable");
  // The year 12000
  EXPECT_EQ(binaryPair("\x51k", bytes({0x33, 0x42, 0x52, 0x5d, 0xe1, 0xa2, 0x96, 0, 0})),
            "unreadable");
}

}  // namespace
}  // namespace sim
