// Advisory whole-file locks on MD5-named lock files in the temporary directory.
#include "mmpref/mmpref_protection.h"

#include <QCryptographicHash>
#include <QDir>

#include <boost/filesystem/operations.hpp>
#include <exception>
#include <iostream>

#include "mmpref/mmpref_types.h"

MMprefProtection::MMprefProtection(const QString& name, int mode) : name_(name), mode_(mode) {}

MMprefProtection::~MMprefProtection() {
  try {
    file_lock_.unlock();
  } catch (...) {
    // Nothing was locked, or the descriptor is gone; closing releases it anyway.
  }
  if (stream_.is_open()) {
    stream_.flush();
    stream_.close();
  }
}

std::string MMprefProtection::lockFilePath(const QString& name) {
  const QByteArray digest = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Md5).toHex();
  return QDir::tempPath().toStdString() + "/" + digest.toStdString();
}

int MMprefProtection::lock() {
  std::string path;
  try {
    path = lockFilePath(name_);
    boost::filesystem::create_directories(QDir::tempPath().toStdString());
    if (!stream_.is_open()) stream_.open(path, std::ios::out | std::ios::trunc);
    {
      // A descriptor left from an earlier lock() is closed before locking
      // again: closing any descriptor of the file drops the process's locks.
      boost::interprocess::file_lock opened(path.c_str());
      file_lock_.swap(opened);
    }
    if (mode_ == 0)
      file_lock_.lock_sharable();
    else
      file_lock_.lock();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "Failed to aquire lock in '" << path << "' : " << error.what() << std::endl;
    return MMPREF_LOCK_FAILURE;
  }
}
