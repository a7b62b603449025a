# Warning and sanitizer flags applied to every target of the project.
add_compile_options(
  $<$<COMPILE_LANGUAGE:C,CXX>:-Wall>
  $<$<COMPILE_LANGUAGE:C,CXX>:-Wextra>
  $<$<COMPILE_LANGUAGE:Fortran>:-Wall>)
if(MMFS_WERROR)
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-Werror>)
endif()
if(MMFS_SANITIZE)
  set(_mmfs_san -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:${_mmfs_san}>")
  add_link_options(${_mmfs_san})
endif()
if(MMFS_BUILD_FUZZ)
  # Fuzzing builds instrument the whole library; only the fuzz targets link
  # libFuzzer's main.
  set(_mmfs_fuzz -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
                 -fno-sanitize-recover=undefined)
  add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:${_mmfs_fuzz}>")
  add_link_options(-fsanitize=address,undefined)
endif()
