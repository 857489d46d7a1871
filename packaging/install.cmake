# Installs the desktop entry (with the orvel:// handler), the AppStream metadata and the icon to
# the standard freedesktop locations under the install prefix.
install(FILES ${CMAKE_SOURCE_DIR}/packaging/orvel.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/org.orvel.Orvel.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/icons/org.orvel.Orvel.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
