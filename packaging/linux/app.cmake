# Files that are installed beside the application's program: the desktop entry, the session bus's service, the
# catalogue's description, the manual pages, the icons and the fonts.
configure_file(com.kv.vorli.metainfo.xml.in com.kv.vorli.metainfo.xml @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/com.kv.vorli.metainfo.xml DESTINATION share/metainfo COMPONENT app)
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION share/doc/vorli COMPONENT licence)

# Leaves out name and time, so that the same sources give the same bytes.
find_program(GZIP gzip REQUIRED)
foreach(page vorli.1 vorli-helper.8)
  configure_file(manual/${page}.in manual/${page} @ONLY)
  execute_process(COMMAND ${GZIP} -9nkf ${CMAKE_CURRENT_BINARY_DIR}/manual/${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/manual/vorli.1.gz DESTINATION share/man/man1 COMPONENT app)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/manual/vorli-helper.8.gz DESTINATION share/man/man8 COMPONENT helper)

install(CODE "set(VORLI_PACKAGING_DIR \"${CMAKE_CURRENT_SOURCE_DIR}\")
set(VORLI_INSTALL_WORK_DIR \"${CMAKE_CURRENT_BINARY_DIR}/install\")
set(VORLI_BUILD_FONTS \"${CMAKE_SOURCE_DIR}/build/fonts\")" COMPONENT app)
install(SCRIPT InstallApp.cmake COMPONENT app)

# The icons are drawn by the program's own painter. A build with sanitizers is not installed.
if(NOT VORLI_SANITIZERS)
  add_executable(vorli_make_icons ../make_icons.cpp)
  target_link_libraries(vorli_make_icons PRIVATE vorli_ui)
  add_custom_command(
    OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/icons.stamp
    COMMAND vorli_make_icons ${CMAKE_CURRENT_BINARY_DIR}/icons
    COMMAND ${CMAKE_COMMAND} -E touch ${CMAKE_CURRENT_BINARY_DIR}/icons.stamp
    DEPENDS vorli_make_icons
    COMMENT "Drawing the icons"
    VERBATIM)
  add_custom_target(vorli_icons ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/icons.stamp)
  install(DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/icons/hicolor DESTINATION share/icons COMPONENT app)
endif()
