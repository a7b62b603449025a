// Scratch projects: temporary project directories named "Tmp_" and a time
// stamp under the folder named by MORVELLANTH_TEMP_PROJECT.
//
//   std::string dir = mmcommon_get_scratch_project_path();  // not created yet
//   std::regex pattern(mmcommon_get_scratch_project_regular_expression());
#ifndef MMFILESHARED_MMCOMMON_SCRATCH_PROJECT_H
#define MMFILESHARED_MMCOMMON_SCRATCH_PROJECT_H

#include <string>

// The path of a new scratch project: MORVELLANTH_TEMP_PROJECT joined with
// "Tmp_" and the local time as ddMMMyyyy_HHmm_sszzz in the C locale
// (Tmp_05Mar2025_1430_07123). Nothing is created. Throws std::runtime_error
// when the variable is not set.
std::string mmcommon_get_scratch_project_path();

// The pattern that recognises scratch project names; its groups are day,
// year, hour, minute and seconds with milliseconds.
std::string mmcommon_get_scratch_project_regular_expression();

#endif  // MMFILESHARED_MMCOMMON_SCRATCH_PROJECT_H
