// The reference reader of the preference format, for tests that compare the
// quick scanner's results with it.
#ifndef MMFILESHARED_MMPREF_XML_SETTINGS_FORMAT_INTERNAL_H
#define MMFILESHARED_MMPREF_XML_SETTINGS_FORMAT_INTERNAL_H

#include <QByteArray>
#include <QSettings>

// readXmlFile on a document in memory, always through QXmlStreamReader.
bool readXmlDocument(const QByteArray& document, QSettings::SettingsMap& map);

#endif  // MMFILESHARED_MMPREF_XML_SETTINGS_FORMAT_INTERNAL_H
