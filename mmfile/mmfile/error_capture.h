// Capture of the file subsystem's messages, for turning them into the text of
// the caller's own error.
//
//   auto capture = mmfile_capture_mmerr();
//   if (mmfile_mkdir(path, 0755) != 0)
//     throw std::runtime_error(capture.addMessagesAsDetails("cannot make " + std::string(path)));
#ifndef MMFILESHARED_MMFILE_ERROR_CAPTURE_H
#define MMFILESHARED_MMFILE_ERROR_CAPTURE_H

#include "mmerr/capture.h"

// A capture of errHand_mmfile, active until it is restored or destroyed.
morvellanth::mmlibs::CaptureMMErr mmfile_capture_mmerr();

#endif  // MMFILESHARED_MMFILE_ERROR_CAPTURE_H
