# GoogleTest, built from the sources that Debian ships, for whichever platform is the target.
set(TERVAN_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "GoogleTest sources (Debian package libgtest-dev or googletest)")
set(INSTALL_GTEST OFF)
add_subdirectory(${TERVAN_GOOGLETEST_DIR} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

set(TERVAN_TEST_LAUNCHER "")
if(TERVAN_SANITIZE STREQUAL "thread")
  # ThreadSanitizer needs its shadow addresses free, which a kernel with much address randomisation does not promise.
  # Where a container forbids switching it off, the tests run as they are.
  execute_process(COMMAND setarch --addr-no-randomize true RESULT_VARIABLE no_setarch OUTPUT_QUIET ERROR_QUIET)
  if(NOT no_setarch)
    set(TERVAN_TEST_LAUNCHER setarch --addr-no-randomize)
  endif()
endif()

# The file as a Windows program names it: Wine shows the whole Linux tree as drive Z.
function(tervan_windows_path path result)
  string(REPLACE "/" "\\" path "Z:${path}")
  set(${result} "${path}" PARENT_SCOPE)
endfunction()

# tervan_add_test(NAME SOURCES file... LIBRARIES target...)
#
# Builds the GoogleTest executable NAME and registers it with ctest as one test. Its single cases are written to
# test-results/NAME.xml in the build folder, where ./test counts them. On Windows targets the environment variables
# TERVAN_MODULE and TERVAN_HOST hold the paths of the built module and host.
function(tervan_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} gmock_main)

  set(command ${TERVAN_TEST_LAUNCHER} $<TARGET_FILE:${name}>)
  set(environment "GTEST_OUTPUT=xml:test-results/${name}.xml" GTEST_BRIEF=1)
  if(WIN32)
    set(command ${name})  # a bare target name makes ctest start it through the emulator
    tervan_windows_path(${PROJECT_BINARY_DIR}/tervanfx.dll module)
    tervan_windows_path(${PROJECT_BINARY_DIR}/tervan-host.exe host)
    list(APPEND environment "TERVAN_MODULE=${module}" "TERVAN_HOST=${host}")
  endif()
  add_test(NAME ${name} COMMAND ${command} WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${environment}" TIMEOUT 900 LABELS cases)
  if(WIN32)
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK wine)  # one registry for all of them
  endif()
endfunction()

# tervan_add_pytest(NAME DIRECTORY folder)
#
# Registers a folder of pytest files, which run the built host from outside, as one test; its cases are counted as above.
function(tervan_add_pytest name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DIRECTORY" "")
  add_test(NAME ${name}
    COMMAND /usr/bin/python3 -m pytest  # the one that Debian's pytest belongs to
      -q -p no:cacheprovider --junitxml=${PROJECT_BINARY_DIR}/test-results/${name}.xml ${arg_DIRECTORY})
  set_tests_properties(${name} PROPERTIES TIMEOUT 1800 LABELS cases ENVIRONMENT
    "PYTHONDONTWRITEBYTECODE=1;TERVAN_HOST=${PROJECT_BINARY_DIR}/tervan-host.exe;TERVAN_RUNNER=${PROJECT_SOURCE_DIR}/scripts/wine-run ${TERVAN_ARCH} run")
endfunction()
