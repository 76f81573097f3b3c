# What "cmake --install" puts where. Each component is a package of its own: see package.cmake.
if(TARGET tarnel-cli)
  set(shared ${PROJECT_BINARY_DIR}/share)
  install(TARGETS tarnel-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT cli)
  install(FILES ${shared}/tarnel-cli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT cli)
  install(FILES ${shared}/tarnel-cli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME tarnel-cli COMPONENT cli)
  install(FILES ${shared}/_tarnel-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT cli)
  install(FILES ${shared}/tarnel-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
          COMPONENT cli)
endif()
set(documents ${CMAKE_INSTALL_DATADIR}/doc/tarnel-cli)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${documents} COMPONENT cli)
# As they lie here, so that the pages' links hold.
install(DIRECTORY doc DESTINATION ${documents} COMPONENT cli)
if(TARGET manual)
  install(FILES ${TARNEL_MANUAL}/index.html DESTINATION ${documents}/doc/manual COMPONENT cli)
endif()
install(FILES share/sample/harbour.png DESTINATION ${documents}/share/sample COMPONENT cli)

install(FILES share/words/LICENSE DESTINATION ${documents}/share/words COMPONENT cli)

if(TARGET tarnel)
  install(TARGETS tarnel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT desktop)
  install(FILES share/applications/tarnel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications
          COMPONENT desktop)
  install(FILES share/metainfo/org.tarnel.Tarnel.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
          COMPONENT desktop)
  install(FILES share/icons/tarnel.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
          COMPONENT desktop)
  install(FILES share/man/tarnel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desktop)
endif()
