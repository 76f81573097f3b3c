# Compiler settings that hold for every target.
add_library(tarnel_options INTERFACE)
target_include_directories(tarnel_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(tarnel_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Wcast-qual -Woverloaded-virtual -Wnull-dereference -Wformat=2)
# g++ 12 sees overlaps in string concatenations where there are none (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tarnel_options INTERFACE -Wno-restrict)
endif()
if(TARNEL_WERROR)
  target_compile_options(tarnel_options INTERFACE -Werror)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release" OR CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  target_compile_options(tarnel_options INTERFACE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  target_link_options(tarnel_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack -pie)
endif()
if(TARNEL_FUZZ)
  target_compile_options(tarnel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(TARNEL_SANITIZE)
  target_compile_options(tarnel_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tarnel_options INTERFACE -fsanitize=address,undefined)
endif()
