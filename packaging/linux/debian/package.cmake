# The Debian package: cpack --config build/package/CPackConfig.cmake. It installs the program, the daemon and three
# scripts that notify the running system. Under /usr, installing the daemon's files registers it.
set(VORLI_PACKAGE_MAINTAINER "The Vorli authors <vorli@kv.com>" CACHE STRING "Whom the package names as its maintainer")

set(documents ${CMAKE_CURRENT_BINARY_DIR}/debian)
set(changelog ${documents}/changelog.Debian)
configure_file(debian/changelog.in ${changelog} @ONLY)
execute_process(COMMAND ${GZIP} -9nkf ${changelog} COMMAND_ERROR_IS_FATAL ANY)
install(FILES ${changelog}.gz DESTINATION share/doc/vorli COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES debian/copyright vorli-helper.apparmor ${CMAKE_SOURCE_DIR}/SECURITY.md
  DESTINATION share/doc/vorli COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES debian/lintian-overrides DESTINATION share/lintian/overrides RENAME vorli
  COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorli)
set(CPACK_PACKAGE_CONTACT "${VORLI_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "tray dial that shows how strained the computer is")
set(CPACK_PACKAGE_DESCRIPTION
  "Vorli lives in the panel. A dial of twelve ticks combines seven signals of
distress into one reading: memory pressure, decompressed, swapped-in and
paged-out memory, load, processor use and heat. A click on it shows which
applications use the most memory.
.
On one press it asks its helper, a small daemon that runs as root for as long
as it has something to do, to drop the kernel's caches and to flush the DNS
cache.")
# Installs below a folder that stands for the root, with the paths of the real root in the files.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
# The package has the stripped programs; their symbols are in another package, vorli-dbgsym.
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_INSTALL_CMAKE_PROJECTS
  ${CMAKE_BINARY_DIR} vorli app /
  ${CMAKE_BINARY_DIR} vorli helper /
  ${CMAKE_BINARY_DIR} vorli debian /)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The bus and polkit decide about every call of the daemon; the sound server's library is loaded if it is installed.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "dbus (>= 1.14), polkitd, init-system-helpers (>= 1.54~)")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libpulse0")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/postinst
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/prerm
  ${CMAKE_CURRENT_SOURCE_DIR}/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
