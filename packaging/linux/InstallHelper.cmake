# Puts the daemon's files where the system looks for them. Under /usr and /usr/local that registers the daemon. Under
# any other prefix no bus finds them, and a script beside the program registers it. The files are written at install
# time, because the prefix may differ from the configured one.
set(VORLI_HELPER_PATH ${CMAKE_INSTALL_PREFIX}/libexec/vorli/vorli-helper)
foreach(name com.kv.vorli.helper.service vorli-helper.service vorli-helper-install)
  configure_file(${VORLI_PACKAGING_DIR}/${name}.in ${VORLI_INSTALL_WORK_DIR}/${name} @ONLY)
endforeach()

set(bus_policy ${VORLI_PACKAGING_DIR}/com.kv.vorli.helper.conf)
set(polkit_policy ${VORLI_PACKAGING_DIR}/com.kv.vorli.helper.policy)
set(bus_service ${VORLI_INSTALL_WORK_DIR}/com.kv.vorli.helper.service)
set(unit ${VORLI_INSTALL_WORK_DIR}/vorli-helper.service)

set(bus_policy_folder ${CMAKE_INSTALL_PREFIX}/share/dbus-1/system.d)
set(polkit_folder ${CMAKE_INSTALL_PREFIX}/share/polkit-1/actions)
if(CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?/?$")
  # polkit reads actions from no other place, and the bus reads no rules from /usr/local.
  set(polkit_folder /usr/share/polkit-1/actions)
  if(CMAKE_INSTALL_PREFIX MATCHES "local")
    set(bus_policy_folder /etc/dbus-1/system.d)
  endif()
else()
  file(INSTALL ${VORLI_INSTALL_WORK_DIR}/vorli-helper-install
    DESTINATION ${CMAKE_INSTALL_PREFIX}/libexec/vorli
    PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
file(INSTALL ${bus_policy} DESTINATION ${bus_policy_folder})
file(INSTALL ${bus_service} DESTINATION ${CMAKE_INSTALL_PREFIX}/share/dbus-1/system-services)
file(INSTALL ${unit} DESTINATION ${CMAKE_INSTALL_PREFIX}/lib/systemd/system)
file(INSTALL ${polkit_policy} DESTINATION ${polkit_folder})
