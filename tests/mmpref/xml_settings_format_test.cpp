// The preference XML format: exact bytes written, what reading gives back,
// and the reader's resistance to damaged input.
#include "mmpref/xml_settings_format.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QByteArray>
#include <QVariantMap>

#include <random>
#include <string>

#include "qt_messages.h"
#include "support/test_support.h"

namespace {

using mmpref_test::QtMessages;

QVariantMap entry(const QString& type, const QVariant& value, const QString& comment = {}) {
  QVariantMap map{{"dt", type}, {"value", value}};
  if (!comment.isEmpty()) map.insert("comment", comment);
  return map;
}

std::string write(const QSettings::SettingsMap& map) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(writeXmlFile(buffer, map));
  return bytes.toStdString();
}

bool read(const std::string& text, QSettings::SettingsMap& map) {
  QByteArray bytes = QByteArray::fromStdString(text);
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  return readXmlFile(buffer, map);
}

QSettings::SettingsMap readAll(const std::string& text) {
  QSettings::SettingsMap map;
  EXPECT_TRUE(read(text, map)) << text;
  return map;
}

std::string document(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ApplicationSettings>\n" + body +
         "</ApplicationSettings>\n";
}

const char* const kExample =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<ApplicationSettings>\n"
    "    <panel>\n"
    "        <width dt=\"int\">640</width>\n"
    "        <width dt=\"int\" os=\"linux\">800</width>\n"
    "    </panel>\n"
    "    <!--shown in the title bar-->\n"
    "    <title dt=\"QString\">Main</title>\n"
    "</ApplicationSettings>\n";

TEST(XmlSettingsFormat, WritesTheExampleDocumentByteForByte) {
  const QSettings::SettingsMap typed{
      {"panel/width", entry("int", 640)},
      {"panel/width:os=linux", entry("int", 800)},
      {"title", entry("QString", QString("Main"), "shown in the title bar")}};
  EXPECT_EQ(write(typed), kExample);
}

TEST(XmlSettingsFormat, ReadsTheExampleDocumentBackToTheSameMap) {
  const QSettings::SettingsMap expected{
      {"panel/width", entry("int", "640")},
      {"panel/width:os=linux", entry("int", "800")},
      {"title", entry("QString", "Main", "shown in the title bar")}};
  EXPECT_EQ(readAll(kExample), expected);
  EXPECT_EQ(write(expected), kExample);
}

TEST(XmlSettingsFormat, WritesValuesInTheirTextFormWithFurtherAttributesSorted) {
  QVariantMap text = entry("QString", QString("a < b & c"));
  text.insert("unit", "none");
  text.insert("alpha", "first");
  const std::string written =
      write({{"d", entry("double", 0.1)}, {"f", entry("bool", false)}, {"n", entry("int", -42)}, {"s", text}});
  EXPECT_EQ(written, document("    <d dt=\"double\">0.1</d>\n    <f dt=\"bool\">false</f>\n"
                              "    <n dt=\"int\">-42</n>\n"
                              "    <s alpha=\"first\" dt=\"QString\" unit=\"none\">a &lt; b &amp; c</s>\n"));
  const QVariantMap back = readAll(written).value("s").toMap();
  EXPECT_EQ(back.value("value"), "a < b & c");
  EXPECT_EQ(back.value("unit"), "none");
}

TEST(XmlSettingsFormat, RootAloneIsEmptyAndZeroLengthIsAParseError) {
  EXPECT_TRUE(readAll(document("")).isEmpty());

  QtMessages logged;
  QSettings::SettingsMap map;
  EXPECT_FALSE(read("", map));
  ASSERT_EQ(logged.warnings().size(), 1u);
  const std::string warning = logged.warnings().front();
  EXPECT_EQ(warning.rfind("! Error parsing XML configuration file \"", 0), 0u) << warning;
  EXPECT_EQ(warning.back(), '"');
  EXPECT_EQ(logged.messages().front().category, "default");
}

TEST(XmlSettingsFormat, KeepsEntriesReadBeforeAParseError) {
  QtMessages logged;
  QSettings::SettingsMap map;
  EXPECT_FALSE(read(document("<a dt=\"int\">1</a>\n<b dt=int>2</b>\n"), map));
  EXPECT_EQ(map.keys(), QStringList{"a"});
  EXPECT_EQ(logged.warnings().size(), 1u);
}

TEST(XmlSettingsFormat, KeepsBlanksAroundAValueAndDropsABlankValue) {
  const QSettings::SettingsMap map = readAll(write({{"padded", entry("QString", QString("  two words "))},
                                                    {"blank", entry("QString", QString("   "))},
                                                    {"empty", entry("QString", QString())}}));
  EXPECT_EQ(map.keys(), QStringList{"padded"});
  EXPECT_EQ(map.value("padded").toMap().value("value"), "  two words ");
}

TEST(XmlSettingsFormat, PlatformVariantsAreSiblingLeavesReadAsTwoKeys) {
  const std::string text = write({{"w", entry("int", 1)}, {"w:os=windows", entry("int", 2)}});
  EXPECT_NE(text.find("    <w dt=\"int\">1</w>\n    <w dt=\"int\" os=\"windows\">2</w>\n"), std::string::npos)
      << text;
  const QSettings::SettingsMap map = readAll(text);
  EXPECT_EQ(map.keys(), (QStringList{"w", "w:os=windows"}));
  EXPECT_FALSE(map.value("w:os=windows").toMap().contains("os"));
}

TEST(XmlSettingsFormat, PlatformAttributeOnAGroupSuffixesItsComponent) {
  const QSettings::SettingsMap map =
      readAll(document("<g os=\"linux\">\n<k dt=\"int\">5</k>\n<sub>\n<m dt=\"bool\">true</m>\n</sub>\n</g>\n"));
  EXPECT_EQ(map.keys(), (QStringList{"g:os=linux/k", "g:os=linux/sub/m"}));
}

TEST(XmlSettingsFormat, CommentReachesALeafButNotAGroup) {
  const QSettings::SettingsMap map = readAll(document(
      "<!--on the group-->\n<g>\n<k dt=\"int\">1</k>\n<!--first-->\n<!--second-->\n<m dt=\"int\">2</m>\n</g>\n"));
  EXPECT_FALSE(map.value("g/k").toMap().contains("comment"));
  EXPECT_EQ(map.value("g/m").toMap().value("comment"), "second");
}

TEST(XmlSettingsFormat, KeyWithValueAndChildrenBecomesTwoSiblings) {
  const std::string text = write({{"a", entry("int", 1)}, {"a/b", entry("int", 2)}});
  EXPECT_EQ(text, document("    <a dt=\"int\">1</a>\n    <a>\n        <b dt=\"int\">2</b>\n    </a>\n"));
  EXPECT_EQ(readAll(text).keys(), (QStringList{"a", "a/b"}));
}

TEST(XmlSettingsFormat, ConsecutiveKeysShareTheirGroupElements) {
  const std::string text = write({{"g/h/x", entry("int", 1)}, {"g/h/y", entry("int", 2)}, {"g/z", entry("int", 3)}});
  EXPECT_EQ(text, document("    <g>\n        <h>\n            <x dt=\"int\">1</x>\n            <y dt=\"int\">2</y>\n"
                           "        </h>\n        <z dt=\"int\">3</z>\n    </g>\n"));
  EXPECT_EQ(readAll(text).size(), 3);
}

TEST(XmlSettingsFormat, WriteFailsOnADeviceThatRefusesWriting) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  EXPECT_FALSE(writeXmlFile(buffer, {{"a", entry("int", 1)}}));
}

TEST(XmlSettingsFormat, IsRegisteredForQSettingsFiles) {
  mmfs_test::TempDir dir;
  const QString path = QString::fromStdString(dir / "settings.xml");
  {
    QSettings settings(path, getQSettingsFormat());
    settings.setValue("panel/width", entry("int", 640));
    settings.sync();
    EXPECT_EQ(settings.status(), QSettings::NoError);
  }
  EXPECT_NE(mmfs_test::ReadFile(path.toStdString()).find("<width dt=\"int\">640</width>"), std::string::npos);
  mmfs_test::WriteFile(path.toStdString(), document("<Key dt=\"int\">1</Key>\n<key dt=\"int\">2</key>\n"));
  QSettings reopened(path, getQSettingsFormat());
  EXPECT_EQ(reopened.allKeys(), (QStringList{"Key", "key"}));
}

// Random bytes and damaged copies of a valid document must only ever yield
// true or false; the sanitizer build checks that nothing is overrun.
TEST(XmlSettingsFormat, SurvivesRandomAndDamagedInput) {
  QtMessages quiet;
  std::mt19937 random(20254);
  const std::string valid = kExample;
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    if (round % 2 == 0) {
      text.resize(random() % 512);
      for (char& c : text) c = static_cast<char>(random());
    } else {
      text = valid;
      for (int cut = 0; cut < 4; ++cut) text[random() % text.size()] = static_cast<char>(random());
    }
    QSettings::SettingsMap map;
    read(text, map);
    for (auto it = map.cbegin(); it != map.cend(); ++it) EXPECT_FALSE(it.key().isEmpty());
  }
}

}  // namespace
