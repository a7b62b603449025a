// Capture of a handle's messages, redirection to an embedded interpreter and
// suppression of deprecation reports.
#include "mmerr/capture.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "mmerr/mmerr.h"
#include "mmerr/mmerr_internal.h"

namespace morvellanth::mmlibs {

CaptureMMErr::CaptureMMErr(int handle_)
    : saved_suppress(false), restored(false), handle(handle_), saved_accumulate(0),
      messages(nullptr) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) throw std::out_of_range("Invalid mmerr handle: " + std::to_string(handle));
  saved_accumulate = handler->accumulate;
  handler->accumulate = true;
  // The handle's earlier buffer waits here so that the capture starts empty.
  messages = handler->buffer;
  handler->buffer = nullptr;
  saved_suppress = handler->suppress_print;
  handler->suppress_print = true;
}

CaptureMMErr::~CaptureMMErr() {
  restore();
  free(messages);
}

CaptureMMErr::CaptureMMErr(CaptureMMErr&& other) noexcept
    : saved_suppress(other.saved_suppress), restored(other.restored), handle(other.handle),
      saved_accumulate(other.saved_accumulate), messages(other.messages) {
  other.saved_suppress = false;
  other.handle = 0;
  other.saved_accumulate = 0;
  other.messages = nullptr;
  other.restored = true;
}

CaptureMMErr& CaptureMMErr::operator=(CaptureMMErr&& other) noexcept {
  if (this == &other) return *this;
  std::swap(saved_suppress, other.saved_suppress);
  std::swap(handle, other.handle);
  std::swap(saved_accumulate, other.saved_accumulate);
  std::swap(messages, other.messages);
  restored = other.restored;
  other.restored = true;
  return *this;
}

void CaptureMMErr::restore() {
  if (restored) return;
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return;
  std::swap(handler->buffer, messages);
  handler->accumulate = saved_accumulate != 0;
  if (!handler->accumulate) {
    free(handler->buffer);
    handler->buffer = nullptr;
  }
  if (!saved_suppress) handler->suppress_print = false;
  restored = true;
}

std::string CaptureMMErr::getMessages() {
  if (restored) return messages ? std::string(messages) : std::string();
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return std::string();
  std::string text = handler->buffer ? std::string(handler->buffer) : std::string();
  mmerr_errclear(handle);
  return text;
}

std::string CaptureMMErr::getMessagesOrDefault(const std::string& fallback) {
  std::string text = getMessages();
  return text.empty() ? fallback : text;
}

std::string CaptureMMErr::addMessagesAsDetails(const std::string& text) {
  std::string details = getMessages();
  return details.empty() ? text : text + ":\n " + details;
}

int64_t RedirectMmerrToPythonStderr::m_count = 0;

RedirectMmerrToPythonStderr::RedirectMmerrToPythonStderr() : closed(false) { ++m_count; }

RedirectMmerrToPythonStderr::~RedirectMmerrToPythonStderr() {
  if (!closed) --m_count;
}

void RedirectMmerrToPythonStderr::close() {
  if (closed) return;
  --m_count;
  closed = true;
}

bool RedirectMmerrToPythonStderr::isActive() { return m_count != 0; }

}  // namespace morvellanth::mmlibs

namespace morvellanth::mmerr_internal {
bool python_redirect_active() { return mmlibs::RedirectMmerrToPythonStderr::isActive(); }
}  // namespace morvellanth::mmerr_internal

MmerrSuppressDeprecation::MmerrSuppressDeprecation() {
  MmerrHandler* handler = get_handler_mmerr(0);
  saved_output_mode = handler->output_mode;
  handler->output_mode = MMERR_OUTPUT_NONE;
}

MmerrSuppressDeprecation::~MmerrSuppressDeprecation() {
  get_handler_mmerr(0)->output_mode = saved_output_mode;
}
