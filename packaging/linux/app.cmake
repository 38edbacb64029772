# What of the application is installed beside its program: the desktop entry, the session bus's service, the
# catalogue's description, the icons and the fonts.
configure_file(com.kv.vorli.metainfo.xml.in com.kv.vorli.metainfo.xml @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/com.kv.vorli.metainfo.xml DESTINATION share/metainfo COMPONENT app)
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION share/doc/vorli COMPONENT app)
install(CODE "set(VORLI_PACKAGING_DIR \"${CMAKE_CURRENT_SOURCE_DIR}\")
set(VORLI_INSTALL_WORK_DIR \"${CMAKE_CURRENT_BINARY_DIR}/install\")
set(VORLI_BUILD_FONTS \"${CMAKE_SOURCE_DIR}/build/fonts\")" COMPONENT app)
install(SCRIPT InstallApp.cmake COMPONENT app)
