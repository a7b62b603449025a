// The preference XML format: exact bytes written, what reading gives back,
// and the reader's resistance to damaged input.
#include "mmpref/xml_settings_format.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QByteArray>
#include <QVariantMap>

#include <random>
#include <string>

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

// Random bytes and damaged copies of a valid document must only ever yield
// entries with a name; the sanitizer build checks that nothing is overrun.
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
  }
}

}  // namespace
