// Reads random bytes as a preference file: directly with readXmlFile on an
// in-memory device, and through QSettings with the registered format on a
// file in the working directory. Input: the file's bytes.
// Checks: readXmlFile, which scans plain documents quickly, gives the same
// result and the same entries as the reference reader on every input.
// Whatever readXmlFile puts in the map, writeXmlFile writes as a document
// that readXmlFile accepts again, so a store that saves what it read can
// always read its file back, and QSettings reports a format error exactly
// when readXmlFile fails. A map holding characters XML cannot carry (a
// document in another encoding may decode to unpaired surrogates) may fail to
// be written, but only with the failure reported: whatever writeXmlFile
// accepts must read back.
#include <fcntl.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <QtGlobal>
#include <cstdint>

#include "fuzz_support.h"
#include "mmpref/xml_settings_format.h"
#include "mmpref/xml_settings_format_internal.h"

namespace {

// Warnings of the reader (parse errors, mismatched end tags) are expected for
// most inputs; printing them would be most of the work.
void DiscardMessages(QtMsgType, const QMessageLogContext&, const QString&) {}

bool ReadFrom(QByteArray bytes, QSettings::SettingsMap& map) {
  QBuffer device(&bytes);
  device.open(QIODevice::ReadOnly);
  return readXmlFile(device, map);
}

// Whether every character is one that an XML 1.0 document can carry.
bool IsXmlText(const QString& text) {
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t c = text[i].unicode();
    if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      ++i;
      continue;
    }
    const bool ok = c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
                    (c >= 0xE000 && c <= 0xFFFD);
    if (!ok) return false;
  }
  return true;
}

bool IsXmlMap(const QSettings::SettingsMap& map) {
  for (auto it = map.cbegin(); it != map.cend(); ++it) {
    if (!IsXmlText(it.key())) return false;
    const QVariantMap members = it.value().toMap();
    for (auto member = members.cbegin(); member != members.cend(); ++member) {
      if (!IsXmlText(member.key()) || !IsXmlText(member.value().toString())) return false;
    }
  }
  return true;
}

void CheckWriteReadsBack(const QSettings::SettingsMap& map) {
  QByteArray written;
  QBuffer device(&written);
  device.open(QIODevice::WriteOnly);
  const bool ok = writeXmlFile(device, map);
  device.close();
  if (IsXmlMap(map)) fuzz::Check(ok, "writing a map of XML text succeeds");
  if (!ok) return;
  QSettings::SettingsMap again;
  if (!ReadFrom(written, again)) {
    fuzz::Fail("a written file reads back");
  }
}

// QSettings keeps recently used files and reads one again only when its size
// or modification time changed; each run gets a later time so that it is.
void StampLater(const char* path) {
  static long long tick = 0;
  ++tick;
  struct timespec times[2];
  times[0].tv_sec = times[1].tv_sec = 1000000000 + tick;
  times[0].tv_nsec = times[1].tv_nsec = 0;
  utimensat(AT_FDCWD, path, times, 0);
}

void ReadThroughSettings(const uint8_t* data, size_t size, bool read_ok) {
  static const QString path = QDir::current().absoluteFilePath(QStringLiteral("fuzz_prefs.xml"));
  {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) fuzz::Fail("cannot write the file");
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
  }
  StampLater(QFile::encodeName(path).constData());
  QSettings settings(path, getQSettingsFormat());
  const QStringList keys = settings.allKeys();
  for (const QString& key : keys) settings.value(key).toMap();
  const QSettings::Status status = settings.status();
  // QSettings does not hand an empty file to the reader.
  if (size > 0) {
    fuzz::Check(status == (read_ok ? QSettings::NoError : QSettings::FormatError),
                "QSettings reports a format error exactly when the reader fails");
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  qInstallMessageHandler(DiscardMessages);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  QSettings::SettingsMap map;
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  // Entries read before a parse error stay in the map and are saved as well.
  const bool read_ok = ReadFrom(bytes, map);
  QSettings::SettingsMap reference;
  fuzz::Check(readXmlDocument(bytes, reference) == read_ok, "both readers agree on success");
  fuzz::Check(reference == map, "both readers read the same entries");
  CheckWriteReadsBack(map);
  ReadThroughSettings(data, size, read_ok);
  return 0;
}
