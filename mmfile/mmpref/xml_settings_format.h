// The XML file format of every preference file, plugged into QSettings.
//
// The format is registered once when the library is loaded; open a preference
// file with QSettings settings(path, getQSettingsFormat()). Each settings entry
// is a QVariantMap with the members "value", "dt" (type name), an optional
// "comment" and any further attributes; keys are group paths joined by "/",
// optionally followed by ":os=" and a platform word.
#ifndef MMFILESHARED_MMPREF_XML_SETTINGS_FORMAT_H
#define MMFILESHARED_MMPREF_XML_SETTINGS_FORMAT_H

#include <QIODevice>
#include <QSettings>

// The QSettings format under which readXmlFile and writeXmlFile are registered
// (extension "xml", case-sensitive keys).
QSettings::Format getQSettingsFormat();

// Reads a whole document into `map`, replacing entries of the same key. Returns
// false on a parse error (logged as a warning); entries read before it stay.
bool readXmlFile(QIODevice& device, QSettings::SettingsMap& map);

// Writes `map` as one document rooted at "ApplicationSettings", one element a
// group component and one leaf element a key. Returns false on a write error.
bool writeXmlFile(QIODevice& device, const QSettings::SettingsMap& map);

#endif  // MMFILESHARED_MMPREF_XML_SETTINGS_FORMAT_H
