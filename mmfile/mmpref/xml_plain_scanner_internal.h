// A quick scanner for the plain XML that preference files nearly always hold:
// ASCII text, elements and attributes without prefixes, comments and the five
// predefined entities. It reports the same events as QXmlStreamReader would
// for such a document and gives up, reporting so, at anything else (another
// encoding, character references, CDATA, a declaration or tag it does not
// know, any error); the caller then reads the whole document again with
// QXmlStreamReader, which is the reference for every case.
#ifndef MMFILESHARED_MMPREF_XML_PLAIN_SCANNER_INTERNAL_H
#define MMFILESHARED_MMPREF_XML_PLAIN_SCANNER_INTERNAL_H

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <vector>

namespace morvellanth::preferences::internal {

// The ASCII characters that may start a name without a prefix, and those that
// may follow the first.
inline bool isAsciiNameStart(char16_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
inline bool isAsciiNameChar(char16_t c) {
  return isAsciiNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// One attribute of a start tag. The value views the document, or `decoded`
// when entities had to be replaced.
struct ScannedAttribute {
  QStringView name() const { return name_; }
  QStringView value() const { return value_; }

  QStringView name_;
  QStringView value_;
  QString decoded;
};

// What the scanner finds, in document order; text is handed over whole.
class XmlScanEvents {
 public:
  virtual ~XmlScanEvents() = default;
  virtual void comment(QStringView text) = 0;
  virtual void startElement(QStringView name, const std::vector<ScannedAttribute>& attributes) = 0;
  virtual void endElement(QStringView name) = 0;
  virtual void characters(QStringView text, bool whitespace) = 0;
};

// Scans a whole document. Returns false, with some events possibly already
// reported, when the document is not plain XML of the kind described above or
// not well formed; the caller must then discard what it was told.
bool scanPlainXml(const QByteArray& document, XmlScanEvents& events);

}  // namespace morvellanth::preferences::internal

#endif  // MMFILESHARED_MMPREF_XML_PLAIN_SCANNER_INTERNAL_H
