// Helpers shared by the files of the files-and-paths subsystem: the failure
// reporter, the absolute-path rule, the line-ending registry and the sizes of
// the fixed work buffers.
#ifndef MMFILESHARED_MMFILE_INTERNAL_H
#define MMFILESHARED_MMFILE_INTERNAL_H

#include <cstddef>
#include <string>

struct search_path_type;

namespace morvellanth::mmfile_internal {

// Capacity in characters of the path buffers that expansion and the
// working-directory functions fill (the storage is one byte more, because an
// expansion of exactly this many characters is accepted).
constexpr int kPathBufferChars = 1024;

// Slots of the line-ending registry (`dos_files`).
constexpr int kDosFileSlots = 50;

// Formats with printf rules (cut at 1024 bytes) and raises the text at level 4
// on errHand_mmfile; a null format raises "mmfile_failure():". errno survives.
void failure(const char* format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// printf into a std::string of whatever length the text needs.
std::string format_string(const char* format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// Leading "/" or "\", or a letter followed by ":".
bool is_absolute(const char* path);

// Every backslash becomes a slash, in place.
void backslashes_to_slashes(char* path);
void backslashes_to_slashes(std::string& path);

// The registry of files waiting for line-ending conversion: kDosFileSlots
// malloc-owned paths, null when free.
char** dos_files();
// Frees and empties every slot (done when the search path is first set up).
void clear_dos_files();

// The process-wide search path, set up on first use (which also clears the
// open-file table and the line-ending registry and installs the defaults).
search_path_type* search_path_instance();
// Empties the open-file table (without closing anything).
void clear_open_file_table();

}  // namespace morvellanth::mmfile_internal

#endif  // MMFILESHARED_MMFILE_INTERNAL_H
