// The current release and the list of past releases, newest first.
#include "mmfile/releases.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

// The current release, "YYYY-Q", read as numbers.
constexpr int Digit(int position) { return MMFILE_CURRENT_RELEASE[position] - '0'; }
constexpr int kNewestYear = Digit(0) * 1000 + Digit(1) * 100 + Digit(2) * 10 + Digit(3);
constexpr int kNewestQuarter = Digit(5);

// Quarterly releases run from the current one down to the first quarter of
// 2014; 2013 had three quarterly releases and, before them, one named by its
// year alone.
constexpr int kOldestQuarterlyYear = 2014;
constexpr const char* kReleases2013[] = {"2013-3", "2013-2", "2013-1", "2013"};

std::vector<std::string> build_past_release_names() {
  std::vector<std::string> names;
  for (int year = kNewestYear; year >= kOldestQuarterlyYear; --year) {
    const int first_quarter = year == kNewestYear ? kNewestQuarter : 4;
    for (int quarter = first_quarter; quarter >= 1; --quarter)
      names.push_back(std::to_string(year) + "-" + std::to_string(quarter));
  }
  names.insert(names.end(), std::begin(kReleases2013), std::end(kReleases2013));
  return names;
}

}  // namespace

int mmfile_get_release_name(char** name) {
  *name = strdup(MMFILE_CURRENT_RELEASE);
  return 0;
}

const std::vector<std::string>& mmfile_get_past_release_names() {
  static const std::vector<std::string> names = build_past_release_names();
  return names;
}

int compare_releases(std::string a, std::string b) {
  const std::vector<std::string>& names = mmfile_get_past_release_names();
  if (names.empty()) return 0;
  const auto ia = std::find(names.begin(), names.end(), a) - names.begin();
  const auto ib = std::find(names.begin(), names.end(), b) - names.begin();
  if (ib > ia) return 1;
  if (ib == ia) return 0;
  return -1;
}
