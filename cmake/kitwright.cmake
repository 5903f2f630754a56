# What every target of the project shares: warnings, sanitizers, and the two functions that declare a
# folder's library and its tests.

find_program(KITWRIGHT_CCACHE ccache)
if(KITWRIGHT_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KITWRIGHT_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${KITWRIGHT_CCACHE})
endif()
find_program(KITWRIGHT_MOLD mold)
if(KITWRIGHT_MOLD AND NOT WIN32 AND NOT KITWRIGHT_FUZZ)
  add_link_options(-fuse-ld=mold)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wimplicit-fallthrough -Werror
                    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)
# GCC 12 sees overlapping copies in the concatenation of strings at -O3, where there are none (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
  if(WIN32)
    # Its cross compiler also takes a string that was moved from for one without a value.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-maybe-uninitialized>)
  endif()
endif()
if(WIN32)
  # One file a program, that needs nothing beside the system's own libraries; the calls' 16-bit forms.
  set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
  add_link_options(-static)
  # The offsets of files are 64 bits wide, as in the libraries that were built beside it.
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00 _FILE_OFFSET_BITS=64)
endif()
if(KITWRIGHT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# kitwright_library(name DEPENDS libs... [EXTRA files...] [INCLUDE|EXCLUDE regexes...])
# One folder's static library: every .cc beside the CMakeLists.txt but tests and programs
# (*_test.cc, *_main.cc, main_*.cc), and on each system the files *_linux.cc or *_windows.cc.
function(kitwright_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;EXTRA;EXCLUDE;INCLUDE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cc *.h)
  list(FILTER sources EXCLUDE REGEX "(_test|_main|_bench|_fuzz)\\.cc$|/main_[a-z_]*\\.cc$")
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_linux\\.cc$")
  else()
    list(FILTER sources EXCLUDE REGEX "_windows\\.cc$")
  endif()
  foreach(pattern ${ARG_EXCLUDE})
    list(FILTER sources EXCLUDE REGEX "${pattern}")
  endforeach()
  foreach(pattern ${ARG_INCLUDE})
    list(FILTER sources INCLUDE REGEX "${pattern}")
  endforeach()
  if(NOT sources AND NOT ARG_EXTRA)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ARG_DEPENDS})
    return()
  endif()
  add_library(${name} STATIC ${sources} ${ARG_EXTRA})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()

# Every test program that kitwright_tests declares; what the sanitizers run over.
add_custom_target(kitwright_unit_tests)

# kitwright_tests(name DEPENDS libs...)
# One test program from every *_test.cc beside the CMakeLists.txt, known to CTest as one test.
function(kitwright_tests name)
  if(NOT KITWRIGHT_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "DEPENDS;EXTRA" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *_test.cc)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources} ${ARG_EXTRA})
  # Compiling them takes far longer than running them.
  target_compile_options(${name} PRIVATE -O0)
  if(WIN32)
    target_compile_options(${name} PRIVATE -Wa,-mbig-obj)  # more sections than the old format of object files holds
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} GTest::gmock_main GTest::gtest)
  target_compile_definitions(${name} PRIVATE KITWRIGHT_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                             KITWRIGHT_BINARY_DIR="${CMAKE_BINARY_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS unit)
  add_dependencies(kitwright_unit_tests ${name})
endfunction()
