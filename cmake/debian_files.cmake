# Run by cpack over the installed tree: what Debian wants in /usr/share/doc and compressed.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(COPY ${CPACK_TARNEL_SOURCE}/share/debian/copyright ${CPACK_TARNEL_SOURCE}/share/debian/changelog
     DESTINATION ${share}/doc/tarnel)
file(REMOVE ${share}/doc/tarnel/LICENSE)
file(GLOB compressed ${share}/man/man1/*.1 ${share}/doc/tarnel/changelog)
foreach(each ${compressed})
  execute_process(COMMAND gzip -9nf ${each} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(GLOB_RECURSE documents ${share}/doc/*)
file(CHMOD ${documents} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
