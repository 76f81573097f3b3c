# "cpack" makes two Debian packages of one source: tarnel-cli, which needs no Qt, and tarnel, the desktop program.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnel)
set(CPACK_PACKAGE_CONTACT "Tarnel developers <tarnel-developers@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "hide files inside other files")
set(story
"Tarnel appends files and folders to any other file, a picture for instance.
The carrier stays what it was and opens as before; what was hidden is
encrypted and comes back with the right password, byte for byte.
")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL cli)
set(CPACK_DEBIAN_CLI_PACKAGE_NAME tarnel-cli)
set(CPACK_DEBIAN_CLI_DESCRIPTION "${story}
This package holds the command line and the documents.")
set(CPACK_DEBIAN_CLI_PACKAGE_SHLIBDEPS ON)
if(TARGET tarnel)
  list(APPEND CPACK_COMPONENTS_ALL desktop)
  set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME tarnel)
  set(CPACK_DEBIAN_DESKTOP_DESCRIPTION "${story}
This package holds the desktop program.")
  set(CPACK_DEBIAN_DESKTOP_PACKAGE_SHLIBDEPS ON)
  # Plugins, which no program is linked with: the icons, and the windows themselves.
  set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS "tarnel-cli (= ${PROJECT_VERSION}), libqt6svg6, qt6-qpa-plugins")
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_files.cmake)
set(CPACK_TARNEL_SOURCE ${PROJECT_SOURCE_DIR})
include(CPack)
