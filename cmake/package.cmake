# The desktop program's install rules, and "cpack" for a Debian package with all that is installed.
if(TARGET tarnel)
  install(TARGETS tarnel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES share/applications/tarnel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES share/metainfo/org.tarnel.Tarnel.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES share/icons/tarnel.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  install(FILES share/man/tarnel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnel)
set(CPACK_PACKAGE_CONTACT "Tarnel developers <tarnel-developers@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "hide files inside other files")
set(CPACK_PACKAGE_DESCRIPTION
"Tarnel appends files and folders to any other file, a picture for instance.
The carrier stays what it was and opens as before; what was hidden is
encrypted and comes back with the right password, byte for byte.

This package holds the desktop program and the command line.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_files.cmake)
set(CPACK_TARNEL_SOURCE ${PROJECT_SOURCE_DIR})
include(CPack)
