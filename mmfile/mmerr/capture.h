// Scoped helpers over the error handles: capture of a handle's messages into
// strings, routing of the default handle to an embedded interpreter's
// sys.stderr, and silencing of deprecation reports.
//
//   morvellanth::mmlibs::CaptureMMErr capture(handle);
//   if (!do_work())
//     throw std::runtime_error(capture.addMessagesAsDetails("work failed"));
#ifndef MMFILESHARED_MMERR_CAPTURE_H
#define MMFILESHARED_MMERR_CAPTURE_H

#include <cstdint>
#include <string>

namespace morvellanth::mmlibs {

// Silences a handle and collects what is thrown at it until restore() or
// destruction, which put the handle's printing and capture state back.
class CaptureMMErr {
 public:
  // Throws std::out_of_range "Invalid mmerr handle: <handle>" for an invalid
  // handle.
  explicit CaptureMMErr(int handle);
  ~CaptureMMErr();
  CaptureMMErr(const CaptureMMErr&) = delete;
  CaptureMMErr& operator=(const CaptureMMErr&) = delete;
  // The source is left restored and bound to no handle.
  CaptureMMErr(CaptureMMErr&& other) noexcept;
  // Exchanges the two captures' state; a capture the target held before is
  // abandoned unrestored, so its handle stays silenced.
  CaptureMMErr& operator=(CaptureMMErr&& other) noexcept;

  // Ends the capture; a second call does nothing.
  void restore();
  // While capturing: the messages since the last call (the handle's maxlevel
  // is reset). After restore(): everything captured.
  std::string getMessages();
  // getMessages(), or fallback when there are none.
  std::string getMessagesOrDefault(const std::string& fallback);
  // text alone, or text + ":\n " + the messages.
  std::string addMessagesAsDetails(const std::string& text);

 private:
  bool saved_suppress;
  bool restored;
  int handle;
  int saved_accumulate;
  char* messages;  // malloc-owned
};

// While at least one object is alive (and not closed), messages of handle -1
// on standard error go to the embedded interpreter's sys.stderr, under its
// global lock.
class RedirectMmerrToPythonStderr {
 public:
  RedirectMmerrToPythonStderr();
  ~RedirectMmerrToPythonStderr();
  RedirectMmerrToPythonStderr(const RedirectMmerrToPythonStderr&) = delete;
  RedirectMmerrToPythonStderr& operator=(const RedirectMmerrToPythonStderr&) = delete;
  // Stops this object's redirection early.
  void close();
  static bool isActive();

  static int64_t m_count;  // objects alive and not closed

 private:
  bool closed;
};

}  // namespace morvellanth::mmlibs

// Switches deprecation reports off for a scope; nested scopes restore in
// reverse order.
class MmerrSuppressDeprecation {
 public:
  MmerrSuppressDeprecation();
  ~MmerrSuppressDeprecation();
  MmerrSuppressDeprecation(const MmerrSuppressDeprecation&) = delete;
  MmerrSuppressDeprecation& operator=(const MmerrSuppressDeprecation&) = delete;

 private:
  unsigned int saved_output_mode;
};

#endif  // MMFILESHARED_MMERR_CAPTURE_H
