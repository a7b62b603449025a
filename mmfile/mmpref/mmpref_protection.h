// Advisory locks between processes on one preference file.
//
// An MMprefProtection made on the stack and locked serialises an operation on
// a named file with every other process: mode 0 shares with other readers, any
// other mode excludes everyone. The lock lives on a separate file in the
// system's temporary directory and is released when the object dies.
//
//   MMprefProtection guard(path, 1);
//   if (guard.lock() != 0) return 9;
#ifndef MMFILESHARED_MMPREF_MMPREF_PROTECTION_H
#define MMFILESHARED_MMPREF_MMPREF_PROTECTION_H

#include <QString>

#include <boost/interprocess/sync/file_lock.hpp>
#include <fstream>
#include <string>

class MMprefProtection {
 public:
  // Stores the protected name and the mode; touches no file.
  MMprefProtection(const QString& name, int mode);
  // Releases the lock and closes the lock file.
  ~MMprefProtection();
  MMprefProtection(const MMprefProtection&) = delete;
  MMprefProtection& operator=(const MMprefProtection&) = delete;

  // Waits as long as it takes for the lock: 0 once held, 9 when the lock file
  // cannot be made or locked (a line naming it goes to standard error).
  int lock();

  // The lock file of a protected name: the temporary directory, "/" and the
  // lower-case hexadecimal MD5 digest of the name in UTF-8.
  static std::string lockFilePath(const QString& name);

 private:
  QString name_;
  int mode_;
  std::ofstream stream_;
  boost::interprocess::file_lock file_lock_;
};

#endif  // MMFILESHARED_MMPREF_MMPREF_PROTECTION_H
