# Puts the daemon's files where the system looks for them. Under /usr and /usr/local that is enough to register
# it; under any other prefix no bus would find them, and they lie beside the program with the script that
# registers it. Written at install time, as the prefix may be another than the configured one.
set(VORLI_HELPER_PATH ${CMAKE_INSTALL_PREFIX}/libexec/vorli/vorli-helper)
foreach(name com.kv.vorli.helper.service vorli-helper.service vorli-helper-install)
  configure_file(${VORLI_PACKAGING_DIR}/${name}.in ${VORLI_INSTALL_WORK_DIR}/${name} @ONLY)
endforeach()

set(bus_policy ${VORLI_PACKAGING_DIR}/com.kv.vorli.helper.conf)
set(polkit_policy ${VORLI_PACKAGING_DIR}/com.kv.vorli.helper.policy)
set(bus_service ${VORLI_INSTALL_WORK_DIR}/com.kv.vorli.helper.service)
set(unit ${VORLI_INSTALL_WORK_DIR}/vorli-helper.service)

if(CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?/?$")
  if(CMAKE_INSTALL_PREFIX MATCHES "local")
    set(bus_policy_folder /etc/dbus-1/system.d)
  else()
    set(bus_policy_folder /usr/share/dbus-1/system.d)
  endif()
  file(INSTALL ${bus_policy} DESTINATION ${bus_policy_folder})
  file(INSTALL ${bus_service} DESTINATION ${CMAKE_INSTALL_PREFIX}/share/dbus-1/system-services)
  file(INSTALL ${unit} DESTINATION ${CMAKE_INSTALL_PREFIX}/lib/systemd/system)
  # polkit reads its actions from no other place.
  file(INSTALL ${polkit_policy} DESTINATION /usr/share/polkit-1/actions)
else()
  file(INSTALL ${bus_policy} ${bus_service} ${unit} ${polkit_policy}
    DESTINATION ${CMAKE_INSTALL_PREFIX}/libexec/vorli)
  file(INSTALL ${VORLI_INSTALL_WORK_DIR}/vorli-helper-install
    DESTINATION ${CMAKE_INSTALL_PREFIX}/libexec/vorli
    PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
