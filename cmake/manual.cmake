# The manual as one page, beside the window program, which opens it. Left out where python3-markdown is missing, which is
# asked of Debian's own interpreter first.
find_package(Python3 QUIET COMPONENTS Interpreter)
foreach(candidate /usr/bin/python3 ${Python3_EXECUTABLE})
  execute_process(COMMAND ${candidate} -c "import markdown" RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
  if(missing EQUAL 0)
    set(manual_python ${candidate})
    break()
  endif()
endforeach()
if(NOT manual_python)
  message(WARNING "python3-markdown is missing: the manual is left out, and F1 opens the README")
  return()
endif()

set(TARNEL_MANUAL ${PROJECT_BINARY_DIR}/src/app/forms/doc/manual)
file(GLOB manual_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/doc/manual/*.md ${PROJECT_SOURCE_DIR}/doc/manual/pictures/*.png)
add_custom_command(
  OUTPUT ${TARNEL_MANUAL}/index.html
  COMMAND ${manual_python} ${PROJECT_SOURCE_DIR}/tools/manual build ${TARNEL_MANUAL}
  DEPENDS ${PROJECT_SOURCE_DIR}/tools/manual ${manual_sources}
  COMMENT "Building the manual"
  VERBATIM)
add_custom_target(manual ALL DEPENDS ${TARNEL_MANUAL}/index.html)
