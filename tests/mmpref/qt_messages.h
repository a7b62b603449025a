// Collects what Qt's message logger receives while the object lives, so tests
// can check the preference warnings word for word.
#pragma once

#include <QtGlobal>

#include <string>
#include <vector>

namespace mmpref_test {

struct LoggedMessage {
  QtMsgType type;
  std::string category;
  std::string text;
};

class QtMessages {
 public:
  QtMessages() : previous_(qInstallMessageHandler(&QtMessages::record)) { logged().clear(); }
  ~QtMessages() { qInstallMessageHandler(previous_); }
  QtMessages(const QtMessages&) = delete;
  QtMessages& operator=(const QtMessages&) = delete;

  const std::vector<LoggedMessage>& messages() const { return logged(); }
  // Every text logged as a warning, in order.
  std::vector<std::string> warnings() const {
    std::vector<std::string> texts;
    for (const LoggedMessage& m : logged())
      if (m.type == QtWarningMsg) texts.push_back(m.text);
    return texts;
  }

 private:
  static std::vector<LoggedMessage>& logged() {
    static std::vector<LoggedMessage> messages;
    return messages;
  }
  static void record(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    logged().push_back({type, context.category ? context.category : "", text.toStdString()});
  }

  QtMessageHandler previous_;
};

}  // namespace mmpref_test
