// mmpref check: validates a preference file as the library will read it and
// reports every problem with its line.
#include <QFile>
#include <QString>
#include <QXmlStreamReader>

#include <cstdio>
#include <string>
#include <vector>

#include "mmerr/capture.h"
#include "mmpref/mmpref.h"
#include "tool.h"

namespace mmpref_tool {

namespace {

constexpr char kRootElement[] = "ApplicationSettings";

struct Element {
  QString name;
  qint64 line;
  QString type;       // the "dt" attribute, empty when absent
  bool has_type;
  QString text;       // character data directly inside
  bool has_children;
};

bool IsPlatformWord(const QString& word) {
  for (MMPREF_PLATFORM platform : {MMPREF_PLATFORM_WINDOWS, MMPREF_PLATFORM_LINUX, MMPREF_PLATFORM_DARWIN})
    if (word == QLatin1String(mmpref_platform_word(platform))) return true;
  return false;
}

class FileChecker {
 public:
  explicit FileChecker(const std::string& path) : path_(path) {}

  // Reports each problem on standard output; returns how many there were.
  int Run() {
    QFile file(QString::fromStdString(path_));
    if (!file.open(QIODevice::ReadOnly))
      throw ToolError(kFailure, "cannot read " + path_ + ": " + file.errorString().toStdString());
    QXmlStreamReader reader(&file);
    bool seen_root = false;
    while (!reader.atEnd()) {
      switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
          if (!seen_root) {
            seen_root = true;
            if (reader.name() != QLatin1String(kRootElement))
              Report(reader.lineNumber(), "the root element is <" + reader.name().toString().toStdString() +
                                              ">, not <" + kRootElement + ">");
            stack_.push_back(Element{reader.name().toString(), reader.lineNumber(), {}, false, {}, true});
            break;
          }
          StartElement(reader);
          break;
        case QXmlStreamReader::Characters:
          if (!stack_.empty()) stack_.back().text += reader.text();
          break;
        case QXmlStreamReader::EndElement:
          if (!stack_.empty()) {
            if (stack_.size() > 1) EndElement(stack_.back());
            stack_.pop_back();
          }
          break;
        default:
          break;
      }
    }
    if (reader.hasError())
      Report(reader.lineNumber(), "not well-formed: " + reader.errorString().toStdString());
    else if (!seen_root)
      Report(reader.lineNumber(), "no root element");
    return problems_;
  }

 private:
  void Report(qint64 line, const std::string& problem) {
    printf("%s:%lld: %s\n", path_.c_str(), static_cast<long long>(line), problem.c_str());
    ++problems_;
  }

  void StartElement(const QXmlStreamReader& reader) {
    stack_.back().has_children = true;
    Element element{reader.name().toString(), reader.lineNumber(), {}, false, {}, false};
    const std::string name = element.name.toStdString();
    if (element.name.contains(u':')) {
      Report(element.line, "the name '" + name + "' holds ':', which only platform keys may use");
    } else {
      morvellanth::mmlibs::CaptureMMErr capture(-1);
      if (MMPREF::validate_key(element.name) != MMPREF_SUCCESS)
        Report(element.line, "invalid key name '" + name + "'");
    }
    for (const QXmlStreamAttribute& attribute : reader.attributes()) {
      if (attribute.name() == QLatin1String("dt")) {
        element.type = attribute.value().toString();
        element.has_type = true;
      } else if (attribute.name() == QLatin1String("os")) {
        const QString word = attribute.value().toString();
        if (!IsPlatformWord(word))
          Report(element.line, "unknown platform '" + word.toStdString() + "' in the os attribute of '" +
                                   name + "'");
      }
    }
    stack_.push_back(element);
  }

  void EndElement(const Element& element) {
    const std::string name = element.name.toStdString();
    const bool has_value = !element.text.trimmed().isEmpty();
    if (!has_value) {
      if (!element.has_children && element.has_type)
        Report(element.line, "'" + name + "' has an empty value, which is dropped when the file is read");
      return;
    }
    if (!element.has_type) {
      Report(element.line, "'" + name + "' has a value but no \"dt\" attribute");
      return;
    }
    MMPREF_TYPE type = mmpref_type_from_text(element.type.toUtf8().constData());
    if (type == MMPREF_TYPE_NONE) {
      Report(element.line, "'" + name + "' has the unknown type \"" + element.type.toStdString() + "\"");
    } else if (!MMPREF::valueConverts(QVariant(element.text), type)) {
      Report(element.line, "the value '" + element.text.toStdString() + "' of '" + name + "' is not a " +
                               element.type.toStdString());
    }
  }

  std::string path_;
  std::vector<Element> stack_;
  int problems_ = 0;
};

}  // namespace

int RunCheck(const Arguments& arguments) {
  const std::string& path = arguments.positional[0];
  int problems = FileChecker(path).Run();
  if (problems == 0) {
    printf("%s: ok\n", path.c_str());
    return kSuccess;
  }
  throw ToolError(kFailure, path + ": " + std::to_string(problems) +
                                (problems == 1 ? " problem" : " problems"));
}

}  // namespace mmpref_tool
