// mmcommon: helpers shared by the suite's applications: scratch project
// directories, quoting for the shell, interrupt-proof line reading, the
// installation check, the release identity and base64.
#ifndef MMFILESHARED_MMCOMMON_MMCOMMON_H
#define MMFILESHARED_MMCOMMON_MMCOMMON_H

#include "mmcommon/base64.h"
#include "mmcommon/installation.h"
#include "mmcommon/line_reader.h"
#include "mmcommon/release.h"
#include "mmcommon/scratch_project.h"
#include "mmcommon/shell_word.h"

#endif  // MMFILESHARED_MMCOMMON_MMCOMMON_H
