# Writes the files that name the program's path. This happens at install time, because the prefix may differ from the
# configured one.
set(VORLI_PROGRAM_PATH ${CMAKE_INSTALL_PREFIX}/bin/vorli)
foreach(name com.kv.vorli.desktop com.kv.vorli.service)
  configure_file(${VORLI_PACKAGING_DIR}/${name}.in ${VORLI_INSTALL_WORK_DIR}/${name} @ONLY)
endforeach()
file(INSTALL ${VORLI_INSTALL_WORK_DIR}/com.kv.vorli.desktop DESTINATION ${CMAKE_INSTALL_PREFIX}/share/applications)
file(INSTALL ${VORLI_INSTALL_WORK_DIR}/com.kv.vorli.service DESTINATION ${CMAKE_INSTALL_PREFIX}/share/dbus-1/services)

set(fonts ${VORLI_BUILD_FONTS})
file(GLOB faces ${fonts}/*.ttf ${fonts}/*-LICENSE.txt)
if(faces)
  file(INSTALL ${faces} DESTINATION ${CMAKE_INSTALL_PREFIX}/share/vorli/fonts)
else()
  message(STATUS "No fonts in ${fonts}: tools/setup makes them. Vorli uses the system's instead.")
endif()
