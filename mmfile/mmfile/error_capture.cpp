// Capture of the file subsystem's error handle.
#include "mmfile/error_capture.h"

#include "mmfile/mmfile.h"

morvellanth::mmlibs::CaptureMMErr mmfile_capture_mmerr() {
  return morvellanth::mmlibs::CaptureMMErr(errHand_mmfile);
}
