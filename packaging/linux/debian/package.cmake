# The Debian package: cpack --config build/package/CPackConfig.cmake. The program, the daemon and the three scripts that
# tell the running system of the daemon, under /usr, where being there is all the registration that it takes.
set(VORLI_PACKAGE_MAINTAINER "The Vorli authors <vorli@kv.com>" CACHE STRING "Whom the package names as its maintainer")

set(documents ${CMAKE_CURRENT_BINARY_DIR}/debian)
set(changelog ${documents}/changelog.Debian)
configure_file(debian/changelog.in ${changelog} @ONLY)
find_program(GZIP gzip REQUIRED)
# Without name and time, so that the same sources give the same package.
execute_process(COMMAND ${GZIP} -9nkf ${changelog} COMMAND_ERROR_IS_FATAL ANY)
install(FILES ${changelog}.gz DESTINATION share/doc/vorli COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES debian/copyright ${CMAKE_SOURCE_DIR}/SECURITY.md
  DESTINATION share/doc/vorli COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES debian/lintian-overrides DESTINATION share/lintian/overrides RENAME vorli
  COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorli)
set(CPACK_PACKAGE_CONTACT "${VORLI_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "menu-bar dial that shows how hard the memory works")
set(CPACK_PACKAGE_DESCRIPTION
  "Vorli lives in the panel. A dial of twelve ticks shows how hard the memory is
working: not how much of it is in use, but the worst of seven signs that there
is too little.
.
On one press it asks its helper, a small daemon that runs as root for as long
as it has something to do, to drop what the system keeps only for speed and to
flush the DNS cache.")
# Installed below a folder that stands for the root, with the paths of the real one in the files.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_CMAKE_PROJECTS
  ${CMAKE_BINARY_DIR} vorli app /
  ${CMAKE_BINARY_DIR} vorli helper /
  ${CMAKE_BINARY_DIR} vorli debian /)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The bus and polkit decide about every call of the daemon's; the sound server's library is loaded when it is there.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "dbus (>= 1.14), polkitd, init-system-helpers (>= 1.54~)")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libpulse0")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/postinst
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/prerm
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
