# A folder is a target: all sources of the folder, and the sight of no other folder but those
# that the target links.
#
# All includes are written from the source root ("template/TemplateString.h"). If the root
# itself were on the include path, any folder could include any other. So each target gets an
# include directory of its own in the build tree that holds nothing but a link to its folder.

# qfd_include_view(<target> <scope> <folder>): `folder` is relative to src/ or the project root.
function(qfd_include_view target scope folder)
  set(view ${CMAKE_BINARY_DIR}/include/${target})
  get_filename_component(parent ${view}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  if(EXISTS ${PROJECT_SOURCE_DIR}/src/${folder})
    set(real ${PROJECT_SOURCE_DIR}/src/${folder})
  else()
    set(real ${PROJECT_SOURCE_DIR}/${folder})
  endif()
  file(CREATE_LINK ${real} ${view}/${folder} SYMBOLIC)
  target_include_directories(${target} ${scope} ${view})
endfunction()

# qfd_add_library(<target> [SHARED] FOLDER <folder> [SUBFOLDERS <folders...>]
#                 [PUBLIC <targets...>] [PRIVATE <targets...>])
# The sources are the *.cpp of the current directory and of the subfolders named. A folder
# that holds headers only becomes an interface target.
function(qfd_add_library target)
  cmake_parse_arguments(ARG "SHARED" "FOLDER" "SUBFOLDERS;PUBLIC;PRIVATE" ${ARGN})
  set(patterns *.cpp)
  foreach(subfolder IN LISTS ARG_SUBFOLDERS)
    list(APPEND patterns ${subfolder}/*.cpp)
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  if(NOT sources)
    add_library(${target} INTERFACE)
    qfd_include_view(${target} INTERFACE ${ARG_FOLDER})
    target_link_libraries(${target} INTERFACE ${ARG_PUBLIC})
    return()
  endif()
  if(ARG_SHARED)
    add_library(${target} SHARED ${sources})
  else()
    add_library(${target} STATIC ${sources})
  endif()
  qfd_include_view(${target} PUBLIC ${ARG_FOLDER})
  target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE qfd_options ${ARG_PRIVATE})
endfunction()

# qfd_add_test(<name> [LINK <targets...>] [LABELS <labels...>] [TIMEOUT <seconds>]
#              [DEFINITIONS <NAME=value...>])
# One test program from the *.cpp of the current directory; ctest knows each test by its name.
function(qfd_add_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LINK;LABELS;DEFINITIONS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  if(NOT sources)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} qfd_options GTest::gmock GTest::gtest
                                        GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
  # What every test includes is parsed once; and a test has no need of the last optimisation.
  target_precompile_headers(${name} PRIVATE <gtest/gtest.h> <memory> <string> <vector>)
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O1>)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
    TEST_PREFIX "${name}." PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
