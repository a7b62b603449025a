// Quick scanner for plain preference documents; QXmlStreamReader reads the rest.
#include "mmpref/xml_plain_scanner_internal.h"

namespace morvellanth::preferences::internal {
namespace {

// The declaration that the writer puts first.
constexpr QStringView kDeclaration = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

// Tabs and newlines are allowed in text but would be normalised in attribute
// values; carriage returns would be normalised everywhere. Both are left to
// the full reader, as are all other control characters and all non-ASCII.
bool isPlainAscii(const QByteArray& document) {
  for (const char c : document) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80 || (byte < 0x20 && byte != '\t' && byte != '\n')) return false;
  }
  return true;
}

bool isSpace(char16_t c) { return c == ' ' || c == '\t' || c == '\n'; }

class PlainScanner {
 public:
  PlainScanner(QStringView text, XmlScanEvents& events) : text_(text), events_(events) {}

  bool scan() {
    if (text_.startsWith(kDeclaration)) pos_ = kDeclaration.size();
    if (!skipMisc()) return false;
    if (!element()) return false;
    return skipMisc() && pos_ == text_.size();
  }

 private:
  bool at(QStringView literal) const { return text_.mid(pos_).startsWith(literal); }
  char16_t peek() const { return pos_ < text_.size() ? text_[pos_].unicode() : 0; }

  void skipSpace() {
    while (pos_ < text_.size() && isSpace(text_[pos_].unicode())) ++pos_;
  }

  // White space and comments around the document element.
  bool skipMisc() {
    for (;;) {
      skipSpace();
      if (!at(u"<!--")) return true;
      if (!comment()) return false;
    }
  }

  bool comment() {
    pos_ += 4;
    const qsizetype end = text_.indexOf(u"--", pos_);
    if (end < 0 || end + 2 >= text_.size() || text_[end + 2] != u'>') return false;
    events_.comment(text_.mid(pos_, end - pos_));
    pos_ = end + 3;
    return true;
  }

  bool name(QStringView& out) {
    const qsizetype start = pos_;
    if (!isAsciiNameStart(peek())) return false;
    ++pos_;
    while (isAsciiNameChar(peek())) ++pos_;
    out = text_.mid(start, pos_ - start);
    return true;
  }

  // The raw text from here up to `stop`, which must follow.
  bool spanUpTo(char16_t stop, QStringView& span) {
    const qsizetype end = text_.indexOf(QChar(stop), pos_);
    if (end < 0) return false;
    span = text_.mid(pos_, end - pos_);
    pos_ = end;
    return true;
  }

  // `span` with the predefined entities replaced: `out` views `span` when
  // there are none, `decoded` otherwise.
  static bool decode(QStringView span, QStringView& out, QString& decoded) {
    if (!span.contains(u'&')) {
      out = span;
      return true;
    }
    static constexpr struct {
      QStringView name;
      char16_t character;
    } kEntities[] = {{u"&lt;", '<'}, {u"&gt;", '>'}, {u"&amp;", '&'}, {u"&quot;", '"'}, {u"&apos;", '\''}};
    decoded.clear();
    decoded.reserve(span.size());
    for (qsizetype i = 0; i < span.size();) {
      if (span[i] != u'&') {
        decoded += span[i++];
        continue;
      }
      bool known = false;
      for (const auto& entity : kEntities) {
        if (span.mid(i).startsWith(entity.name)) {
          decoded += QChar(entity.character);
          i += entity.name.size();
          known = true;
          break;
        }
      }
      if (!known) return false;
    }
    out = decoded;
    return true;
  }

  bool attribute(ScannedAttribute& out) {
    if (!name(out.name_) || out.name_ == u"xmlns") return false;
    skipSpace();
    if (peek() != u'=') return false;
    ++pos_;
    skipSpace();
    const char16_t quote = peek();
    if (quote != u'"' && quote != u'\'') return false;
    ++pos_;
    QStringView raw;
    if (!spanUpTo(quote, raw)) return false;
    ++pos_;
    for (const QChar c : raw)
      if (c == u'<' || c == u'\t' || c == u'\n') return false;
    return decode(raw, out.value_, out.decoded);
  }

  // A start tag after its '<'; `empty` tells whether it closed itself.
  bool startTag(QStringView& tagName, bool& empty) {
    if (!name(tagName)) return false;
    attributes_.clear();
    for (;;) {
      const qsizetype before = pos_;
      skipSpace();
      if (peek() == u'>' || at(u"/>")) break;
      if (pos_ == before) return false;  // attributes must be separated
      ScannedAttribute& added = attributes_.emplace_back();
      if (!attribute(added)) return false;
      for (size_t i = 0; i + 1 < attributes_.size(); ++i)
        if (attributes_[i].name_ == added.name_) return false;
    }
    empty = peek() == u'/';
    pos_ += empty ? 2 : 1;
    events_.startElement(tagName, attributes_);
    if (empty) events_.endElement(tagName);
    return true;
  }

  bool endTag(QStringView expected) {
    pos_ += 2;
    QStringView closing;
    if (!name(closing) || closing != expected) return false;
    skipSpace();
    if (peek() != u'>') return false;
    ++pos_;
    events_.endElement(closing);
    return true;
  }

  bool characters() {
    QStringView raw, text;
    if (!spanUpTo(u'<', raw)) return false;
    if (raw.contains(u'>') && raw.contains(u"]]>")) return false;
    if (!decode(raw, text, decodedText_)) return false;
    bool whitespace = true;
    for (const QChar c : text) whitespace = whitespace && isSpace(c.unicode());
    events_.characters(text, whitespace);
    return true;
  }

  // The document element and everything inside it, without recursion: a
  // stack of the open names.
  bool element() {
    std::vector<QStringView> open;
    do {
      if (peek() != u'<') {
        if (open.empty() || !characters()) return false;
      } else if (at(u"<!--")) {
        if (open.empty() || !comment()) return false;
      } else if (at(u"</")) {
        if (open.empty() || !endTag(open.back())) return false;
        open.pop_back();
      } else {
        ++pos_;
        QStringView tagName;
        bool empty = false;
        if (!startTag(tagName, empty)) return false;
        if (!empty) open.push_back(tagName);
      }
    } while (!open.empty());
    return true;
  }

  QStringView text_;
  qsizetype pos_ = 0;
  XmlScanEvents& events_;
  std::vector<ScannedAttribute> attributes_;
  QString decodedText_;
};

}  // namespace

bool scanPlainXml(const QByteArray& document, XmlScanEvents& events) {
  if (!isPlainAscii(document)) return false;
  const QString text = QString::fromLatin1(document);
  return PlainScanner(text, events).scan();
}

}  // namespace morvellanth::preferences::internal
