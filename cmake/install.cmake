# What "cmake --install" puts where. The desktop program brings rules of its own.
if(TARGET tarnel-cli)
  install(TARGETS tarnel-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_BINARY_DIR}/share/tarnel-cli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${PROJECT_BINARY_DIR}/share/tarnel-cli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME tarnel-cli)
  install(FILES ${PROJECT_BINARY_DIR}/share/_tarnel-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(FILES ${PROJECT_BINARY_DIR}/share/tarnel-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
# As they lie here, so that the pages' links hold.
install(DIRECTORY doc DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES share/sample/harbour.png DESTINATION ${CMAKE_INSTALL_DOCDIR}/share/sample)
