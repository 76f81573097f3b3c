# The desktop program is built where Qt is there and TARNEL_GUI is on. TARNEL_HAS_QT says so afterwards.
set(TARNEL_HAS_QT OFF)
if(TARNEL_GUI)
  find_package(Qt6 6.4 QUIET COMPONENTS Widgets Svg)
  if(Qt6_FOUND)
    set(TARNEL_HAS_QT ON)
  else()
    message(STATUS "Qt 6.4 is missing: the desktop program is left out")
  endif()
endif()

# tarnel_forms(NAME SOURCES a.cpp ... HEADERS a.h ... DEPENDS target ...)
# A library of windows. HEADERS are those with Q_OBJECT.
function(tarnel_forms name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;DEPENDS" ${ARGN})
  tarnel_library(${name} SOURCES ${ARG_SOURCES} ${ARG_HEADERS} DEPENDS ${ARG_DEPENDS} Qt6::Widgets)
  set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  target_compile_definitions(${name} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
endfunction()
