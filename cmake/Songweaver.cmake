# One static library per subsystem folder: every source file of the folder, nothing listed by hand.
function(songweaver_library name folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cpp" "${folder}/*.h")
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${name} PUBLIC ${ARG_LINKS})
endfunction()

# One test program per subsystem folder under tests/, each case registered with CTest.
function(songweaver_test name folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cpp" "${folder}/*.h")
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} sw_testsupport GTest::gtest GTest::gmock)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST)
endfunction()
