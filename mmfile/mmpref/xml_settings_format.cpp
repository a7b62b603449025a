// Reader and writer of the preference XML format, and its registration.
#include "mmpref/xml_settings_format.h"

#include <QDebug>
#include <QList>
#include <QScopeGuard>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <libxml/tree.h>

#include <map>
#include <utility>

#include "mmpref/mmpref_state_internal.h"
#include "mmpref/xml_plain_scanner_internal.h"
#include "mmpref/xml_settings_format_internal.h"

using namespace morvellanth::preferences::internal;

namespace {

const QString kRootElement = QStringLiteral("ApplicationSettings");
const QString kValueMember = QStringLiteral("value");
const QString kCommentMember = QStringLiteral("comment");
const QString kPlatformAttribute = QStringLiteral("os");

// The element names open while reading, kept joined as the settings key they
// spell ("panel/width:os=linux"). Keys are handed out as copies, so the path
// is never shared and keeps its capacity.
class ElementPath {
 public:
  bool isEmpty() const { return starts_.isEmpty(); }
  QString key() const { return QString(joined_.constData(), joined_.size()); }

  void push(QStringView name) {
    if (!starts_.isEmpty()) joined_ += u'/';
    starts_.append(joined_.size());
    joined_ += name;
  }
  void extendTop(QStringView text) { joined_ += text; }

  // The innermost name, platform suffix included.
  QStringView top() const { return QStringView(joined_).mid(starts_.last()); }

  void pop() {
    const qsizetype start = starts_.takeLast();
    joined_.truncate(starts_.isEmpty() ? 0 : start - 1);
  }

 private:
  QString joined_;
  QList<qsizetype> starts_;
};

// Attribute names and type texts repeat in every entry: one shared copy of
// each spares an allocation per key.
QString sharedText(QStringView text) {
  static const QString common[] = {QStringLiteral("dt"), QStringLiteral("int"), QStringLiteral("QString"),
                                   QStringLiteral("double"), QStringLiteral("bool")};
  for (const QString& known : common)
    if (text.size() == known.size() && text == known) return known;
  return text.toString();
}

// The members of one leaf element, built in a plain map and handed over to a
// QVariantMap whole, which spares QMap's sharing checks on every insertion.
template <typename Attributes>
QVariantMap elementMembers(const Attributes& elementAttributes, ElementPath& path, QString& pendingComment) {
  std::map<QString, QVariant> members;
  for (const auto& attribute : elementAttributes) {
    if (attribute.name() == kPlatformAttribute) {
      path.extendTop(u":");
      path.extendTop(attribute.name());
      path.extendTop(u"=");
      path.extendTop(attribute.value());
      morvellanth::preferences::internal::note_platform_keys();
    } else {
      members.insert_or_assign(sharedText(attribute.name()), sharedText(attribute.value()));
    }
  }
  if (!pendingComment.isEmpty()) {
    members.insert_or_assign(kCommentMember, pendingComment);
    pendingComment.clear();
  }
  return QVariantMap(std::move(members));
}

// Only the local part of a name is kept and written back. The reader checks
// a prefixed name as a whole, so the part after the prefix may still start
// with a digit, '-' or '.', or hold a NUL or control character; the writer
// would write such a name unchecked into a file that no longer parses, so it
// is refused here. ASCII is checked directly, anything else by libxml2's
// name rules.
bool isValidName(QStringView name) {
  if (name.isEmpty()) return false;
  bool ascii = true;
  for (qsizetype i = 0; i < name.size(); ++i) {
    const char16_t u = name[i].unicode();
    if (u >= 0x80) {
      ascii = false;
    } else if (u != ':' && !(i == 0 ? isAsciiNameStart(u) : isAsciiNameChar(u))) {
      return false;
    }
  }
  if (ascii) return true;
  const QByteArray utf8 = name.toUtf8();
  return xmlValidateName(reinterpret_cast<const xmlChar*>(utf8.constData()), 0) == 0;
}

bool holdsInvalidName(const QXmlStreamReader& xml) {
  if (!isValidName(xml.name())) return true;
  const QXmlStreamAttributes attributes = xml.attributes();
  for (const QXmlStreamAttribute& attribute : attributes)
    if (!isValidName(attribute.name())) return true;
  return false;
}

// Turns the events of a document into settings entries: a leaf's key is the
// path of open element names, its members the leaf's attributes, the comment
// right before it and its text.
class EntryReader final : public XmlScanEvents {
 public:
  explicit EntryReader(std::map<QString, QVariant>& entries) : entries_(entries) {}

  void comment(QStringView text) override { pendingComment_ = text.toString(); }

  void startElement(QStringView name, const std::vector<ScannedAttribute>& attributes) override {
    start(name, attributes);
  }
  void startElement(QStringView name, const QXmlStreamAttributes& attributes) { start(name, attributes); }

  void endElement(QStringView name) override {
    if (name == kRootElement || path_.isEmpty()) return;
    const QStringView stacked = path_.top();
    if (stacked.left(stacked.indexOf(u':')) != name)
      qWarning() << "! Error, this endElement was" << name.toString() << ", not" << stacked.toString();
    path_.pop();
  }

  void characters(QStringView text, bool whitespace) override {
    // Indentation between elements is white space only; text directly in
    // the root belongs to no key.
    if (path_.isEmpty() || whitespace || text.trimmed().isEmpty()) return;
    attributes_.insert(kValueMember, text.toString());
    // Written files are in key order: the end is the right place to try.
    entries_.insert_or_assign(entries_.cend(), path_.key(), QVariant(attributes_));
  }

 private:
  template <typename Attributes>
  void start(QStringView name, const Attributes& attributes) {
    if (name == kRootElement) {
      attributes_.clear();
      return;
    }
    path_.push(name);
    // A comment belongs to the element right after it; on a group element
    // it is dropped when the next element starts.
    attributes_ = elementMembers(attributes, path_, pendingComment_);
  }

  std::map<QString, QVariant>& entries_;
  ElementPath path_;
  QString pendingComment_;
  QVariantMap attributes_;
};

QSettings::Format registeredFormat() {
  static const QSettings::Format format =
      QSettings::registerFormat(QStringLiteral("xml"), readXmlFile, writeXmlFile, Qt::CaseSensitive);
  return format;
}

// Registered when the library is loaded, so that any QSettings of the process
// can open preference files.
const QSettings::Format loadTimeRegistration = registeredFormat();

}  // namespace

QSettings::Format getQSettingsFormat() { return registeredFormat(); }

bool readXmlFile(QIODevice& device, QSettings::SettingsMap& map) {
  const QByteArray document = device.readAll();
  std::map<QString, QVariant> scanned;
  EntryReader scanner(scanned);
  if (!scanPlainXml(document, scanner)) return readXmlDocument(document, map);
  if (map.isEmpty()) {
    map = QSettings::SettingsMap(std::move(scanned));
  } else {
    for (auto& [key, value] : scanned) map.insert(key, value);
  }
  return true;
}

bool readXmlDocument(const QByteArray& document, QSettings::SettingsMap& map) {
  QXmlStreamReader xml(document);
  // Entries go into the plain map inside `map`, handed back at every return.
  std::map<QString, QVariant> entries = std::move(map).toStdMap();
  const auto handBack = qScopeGuard([&] { map = QSettings::SettingsMap(std::move(entries)); });
  EntryReader reader(entries);

  while (!xml.atEnd()) {
    const QXmlStreamReader::TokenType token = xml.readNext();
    if (token == QXmlStreamReader::StartElement && holdsInvalidName(xml))
      xml.raiseError(QStringLiteral("A name holds a character no XML name may hold."));
    switch (xml.hasError() ? QXmlStreamReader::Invalid : token) {
      case QXmlStreamReader::Comment:
        reader.comment(xml.text());
        break;
      case QXmlStreamReader::StartElement:
        reader.startElement(xml.name(), xml.attributes());
        break;
      case QXmlStreamReader::EndElement:
        reader.endElement(xml.name());
        break;
      case QXmlStreamReader::Characters:
        reader.characters(xml.text(), xml.isWhitespace());
        break;
      default:
        if (xml.hasError()) {
          qWarning() << "! Error parsing XML configuration file" << xml.errorString();
          return false;
        }
        break;
    }
  }
  return true;
}

bool writeXmlFile(QIODevice& device, const QSettings::SettingsMap& map) {
  QXmlStreamWriter xml(&device);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  xml.writeStartElement(kRootElement);

  QStringList previous;
  for (auto it = map.cbegin(); it != map.cend(); ++it) {
    const QStringList parts = it.key().split(u':');
    const QStringList components = parts.first().split(u'/');

    // Groups stay open while consecutive keys share them; a previous key
    // without a group shares nothing.
    qsizetype common = 0;
    if (previous.size() >= 2) {
      while (common < previous.size() - 1 && common < components.size() &&
             previous[common] == components[common])
        ++common;
    }
    for (qsizetype depth = previous.size(); depth > common; --depth) xml.writeEndElement();

    const QVariantMap entry = it.value().toMap();
    if (components.size() > common) {
      for (qsizetype i = common; i < components.size() - 1; ++i) xml.writeStartElement(components[i]);
      const QString comment = entry.value(kCommentMember).toString();
      if (!comment.isEmpty()) xml.writeComment(comment);
      xml.writeStartElement(components.last());
      for (auto member = entry.cbegin(); member != entry.cend(); ++member) {
        if (member.key() != kCommentMember && member.key() != kValueMember)
          xml.writeAttribute(member.key(), member.value().toString());
      }
      if (parts.size() > 1) {
        const QStringList platform = parts[1].split(u'=');
        xml.writeAttribute(platform.first(), platform.value(1));
      }
    }
    xml.writeCharacters(entry.value(kValueMember).toString());
    previous = components;
  }

  for (qsizetype depth = previous.size(); depth > 0; --depth) xml.writeEndElement();
  xml.writeEndElement();
  xml.writeEndDocument();
  return !xml.hasError();
}
