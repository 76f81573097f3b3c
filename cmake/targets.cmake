# tarnel_library(NAME SOURCES a.cpp ... DEPENDS target ... [PRIVATE_DEPENDS target ...])
# One static library for each layer. DEPENDS are the layers that it may include.
function(tarnel_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE tarnel_options ${ARG_PRIVATE_DEPENDS})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
endfunction()

# tarnel_test(NAME SOURCES a.cpp ... DEPENDS target ...)
# One GoogleTest program, registered with CTest as a whole. Its limit is many times what it needs on a busy machine.
function(tarnel_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tarnel_options ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
