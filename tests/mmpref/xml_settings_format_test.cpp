// The preference XML format: exact bytes written, what reading gives back,
// and the reader's resistance to damaged input.
#include "mmpref/xml_settings_format.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QByteArray>
#include <QVariantMap>

#include <random>
#include <string>

#include "mmpref/xml_plain_scanner_internal.h"
#include "mmpref/xml_settings_format_internal.h"
#include "pref_sandbox.h"

namespace {

using mmpref_test::xmlDocument;
using Map = QSettings::SettingsMap;

// An entry as reading gives it back: every member a string.
QVariant entry(const char* type, const char* value, const char* comment = nullptr) {
  QVariantMap map{{"dt", type}, {"value", value}};
  if (comment) map.insert("comment", comment);
  return map;
}

std::string write(const Map& map) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(writeXmlFile(buffer, map));
  return bytes.toStdString();
}

bool read(const std::string& text, Map& map) {
  QByteArray bytes = QByteArray::fromStdString(text);
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  return readXmlFile(buffer, map);
}

// Whether the quick scanner takes a document on its own, without falling
// back to the reference reader.
bool scannedQuickly(const std::string& text) {
  struct Ignored final : morvellanth::preferences::internal::XmlScanEvents {
    void comment(QStringView) override {}
    void startElement(QStringView, const std::vector<morvellanth::preferences::internal::ScannedAttribute>&) override {}
    void endElement(QStringView) override {}
    void characters(QStringView, bool) override {}
  } ignored;
  return morvellanth::preferences::internal::scanPlainXml(QByteArray::fromStdString(text), ignored);
}

// readXmlFile against the reference reader: same result, same entries.
void expectSameAsReference(const std::string& text) {
  Map quick, reference;
  const bool quickOk = read(text, quick);
  EXPECT_EQ(quickOk, readXmlDocument(QByteArray::fromStdString(text), reference)) << text;
  EXPECT_EQ(quick, reference) << text;
}

TEST(XmlSettingsFormat, WritesExactBytesAndReadsThemBackToTheSameMap) {
  const std::pair<Map, std::string> cases[] = {
      {{{"panel/width", entry("int", "640")}, {"panel/width:os=linux", entry("int", "800")},
        {"title", entry("QString", "Main", "shown in the title bar")}},
       "    <panel>\n        <width dt=\"int\">640</width>\n        <width dt=\"int\" os=\"linux\">800</width>\n"
       "    </panel>\n    <!--shown in the title bar-->\n    <title dt=\"QString\">Main</title>\n"},
      {{{"a", entry("int", "1")}, {"a/b", entry("int", "2")}},  // a value and children: two siblings
       "    <a dt=\"int\">1</a>\n    <a>\n        <b dt=\"int\">2</b>\n    </a>\n"},
      {{{"g/h/x", entry("int", "1")}, {"g/h/y", entry("bool", "true")}, {"g/z", entry("double", "0.5")}},
       "    <g>\n        <h>\n            <x dt=\"int\">1</x>\n            <y dt=\"bool\">true</y>\n        </h>\n"
       "        <z dt=\"double\">0.5</z>\n    </g>\n"},
  };
  for (const auto& [map, body] : cases) {
    EXPECT_EQ(write(map), xmlDocument(body));
    Map back;
    EXPECT_TRUE(read(xmlDocument(body), back));
    EXPECT_EQ(back, map) << body;
  }
}

TEST(XmlSettingsFormat, ReadingPlacesCommentsPlatformsAndBlanksAndReportsParseErrors) {
  mmpref_test::QtWarnings logged;
  const std::pair<std::string, Map> cases[] = {
      {"<!--on the group-->\n<g>\n<k dt=\"int\">1</k>\n<!--first-->\n<!--second-->\n<m dt=\"int\">2</m>\n</g>\n",
       {{"g/k", entry("int", "1")}, {"g/m", entry("int", "2", "second")}}},
      {"<g os=\"linux\">\n<k dt=\"int\">5</k>\n<sub>\n<m dt=\"bool\">true</m>\n</sub>\n</g>\n",
       {{"g:os=linux/k", entry("int", "5")}, {"g:os=linux/sub/m", entry("bool", "true")}}},
      {"<p dt=\"QString\">  two words </p>\n<b dt=\"QString\">   </b>\n<e dt=\"QString\"></e>\n",
       {{"p", entry("QString", "  two words ")}}},
  };
  for (const auto& [body, expected] : cases) {
    Map map;
    EXPECT_TRUE(read(xmlDocument(body), map));
    EXPECT_EQ(map, expected) << body;
  }
  Map map;
  EXPECT_FALSE(read("", map));
  EXPECT_FALSE(read(xmlDocument("<a dt=\"int\">1</a>\n<b dt=int>2</b>\n"), map));
  EXPECT_EQ(map, (Map{{"a", entry("int", "1")}})) << "entries before the error are kept";
  // Only the part after a prefix is kept: one that is no name by itself
  // would be written into a file that no longer parses.
  const std::string badLocalNames[] = {
      std::string("<a xmlns:p=\"u\" p:\0x=\"1\">v</a>\n", 30),
      "<a xmlns:p=\"u\" p:\x02x=\"1\">v</a>\n",
      "<a xmlns:p=\"u\" p:0x=\"1\">v</a>\n",
      "<a xmlns:p=\"u\" p:-x=\"1\">v</a>\n",
      "<p:.a xmlns:p=\"u\">v</p:.a>\n",
  };
  for (const std::string& body : badLocalNames) EXPECT_FALSE(read(xmlDocument(body), map)) << body;
  // A prefix that leaves a valid name is read as that name.
  Map prefixed;
  EXPECT_TRUE(read(xmlDocument("<p:a xmlns:p=\"u\" p:dt=\"int\">7</p:a>\n"), prefixed));
  EXPECT_EQ(prefixed, (Map{{"a", entry("int", "7")}}));
  ASSERT_EQ(logged.texts().size(), 7u);
  for (const std::string& warning : logged.texts())
    EXPECT_TRUE(warning.rfind("! Error parsing XML configuration file \"", 0) == 0 && warning.back() == '"') << warning;
}

// Plain documents are scanned quickly; anything else goes to the reference
// reader. Either way the entries are those the reference reader gives.
TEST(XmlSettingsFormat, QuickScanAgreesWithTheReferenceReader) {
  mmpref_test::QtWarnings quiet;
  const std::pair<std::string, bool> cases[] = {
      {xmlDocument("<g os=\"linux\">\n<!--c-->\n<k dt=\"int\" u='x'>1</k>\n</g>\n"), true},
      {xmlDocument("<a dt = \"QString\"\n  u=\"&lt;&amp;&gt;&quot;&apos;\">x &amp; y &gt; z</a>\n"), true},
      {xmlDocument("<a dt=\"int\">1<!--inside-->2</a>\n<b/>\n<c dt=\"int\">3<d>4</d>5</c>\n"), true},
      {"<!--before-->\n<ApplicationSettings><k>v</k></ApplicationSettings>\n<!--after-->", true},
      {"<other><k dt=\"int\">1</k><ApplicationSettings><m>2</m></ApplicationSettings></other>", true},
      {xmlDocument("<k dt=\"QString\">caf\xc3\xa9</k>\n"), false},
      {xmlDocument("<k dt=\"QString\">&#65;</k>\n"), false},
      {xmlDocument("<k dt=\"QString\"><![CDATA[<x>]]></k>\n"), false},
      {xmlDocument("<k dt=\"QString\">a\r\nb</k>\n"), false},
      {xmlDocument("<k dt=\"Q\tString\">v</k>\n"), false},
      {xmlDocument("<p:k xmlns:p=\"u\" dt=\"int\">1</p:k>\n"), false},
      {xmlDocument("<k xmlns=\"u\" dt=\"int\">1</k>\n"), false},
      {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<ApplicationSettings><k>v</k></ApplicationSettings>\n",
       false},
      {"<!DOCTYPE ApplicationSettings>\n<ApplicationSettings><k>v</k></ApplicationSettings>\n", false},
      {xmlDocument("<k dt=\"int\">1</k>\n<m dt=\"int\">2</n>\n"), false},
      {xmlDocument("<k dt=\"int\" dt=\"int\">1</k>\n"), false},
      {xmlDocument("<k dt=\"int\"u=\"x\">1</k>\n"), false},
      {xmlDocument("<k>a]]>b</k>\n"), false},
      {xmlDocument("<!-- a -- b -->\n<k>v</k>\n"), false},
      {xmlDocument("<k>v</k>\n") + "<extra/>", false},
      {xmlDocument("<k>v</k>\n").substr(0, 60), false},
  };
  for (const auto& [text, quick] : cases) {
    EXPECT_EQ(scannedQuickly(text), quick) << text;
    expectSameAsReference(text);
  }
  // Entries read into a map that already holds some replace those of the
  // same key and keep the others.
  Map map{{"k", entry("int", "0")}, {"other", entry("int", "9")}};
  EXPECT_TRUE(read(xmlDocument("<k dt=\"int\">1</k>\n"), map));
  EXPECT_EQ(map, (Map{{"k", entry("int", "1")}, {"other", entry("int", "9")}}));
}

// Random bytes and damaged copies of a valid document must only ever yield
// entries with a name, the same as the reference reader's; the sanitizer
// build checks that nothing is overrun.
TEST(XmlSettingsFormat, SurvivesRandomAndDamagedInput) {
  mmpref_test::QtWarnings quiet;
  std::mt19937 random(20254);
  for (int round = 0; round < 2000; ++round) {
    std::string text = xmlDocument("<g os=\"linux\">\n<!--c-->\n<k dt=\"int\" u=\"x\">1</k>\n</g>\n");
    if (round % 2 == 0) {
      text.resize(random() % 512);
      for (char& c : text) c = static_cast<char>(random());
    } else {
      for (int hit = 0; hit < 4; ++hit) text[random() % text.size()] = static_cast<char>(random());
    }
    Map map;
    read(text, map);
    EXPECT_FALSE(map.contains("")) << text;
    expectSameAsReference(text);
  }
}

}  // namespace
