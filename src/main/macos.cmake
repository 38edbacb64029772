# Vorli.app with all its contents. Other files look for it in the build tree's src/.
set(packaging ${CMAKE_SOURCE_DIR}/packaging/macos)
set(bundle ${CMAKE_BINARY_DIR}/src/Vorli.app)

# The system finds the daemon by its property list.
add_executable(vorli-helper helper_macos.mm)
target_link_libraries(vorli-helper PRIVATE vorli_macos_daemon)
target_compile_options(vorli-helper PRIVATE -fstack-protector-strong)
set_target_properties(vorli-helper PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${bundle}/Contents/MacOS)
set(resources ${packaging}/com.kv.vorli.helper.plist)
set_source_files_properties(${resources} PROPERTIES MACOSX_PACKAGE_LOCATION Library/LaunchDaemons)

file(GLOB fonts ${CMAKE_SOURCE_DIR}/build/fonts/*.ttf ${CMAKE_SOURCE_DIR}/build/fonts/*-LICENSE.txt)
foreach(font IN LISTS fonts)
  set_source_files_properties(${font} PROPERTIES MACOSX_PACKAGE_LOCATION Resources/fonts)
endforeach()
list(APPEND resources ${fonts})

# The icon is drawn by the program's own painter; only a Mac can run it and pack its pictures.
if(CMAKE_HOST_APPLE)
  add_executable(vorli_make_icons ${CMAKE_SOURCE_DIR}/packaging/make_icons.cpp)
  target_link_libraries(vorli_make_icons PRIVATE vorli_ui)
  set(icon ${CMAKE_CURRENT_BINARY_DIR}/Vorli.icns)
  add_custom_command(
    OUTPUT ${icon}
    COMMAND vorli_make_icons ${CMAKE_CURRENT_BINARY_DIR}/icons
    COMMAND ${packaging}/pack_icon ${CMAKE_CURRENT_BINARY_DIR}/icons ${icon}
    DEPENDS vorli_make_icons ${packaging}/pack_icon
    COMMENT "Drawing the icon"
    VERBATIM)
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  list(APPEND resources ${icon})
endif()

configure_file(${packaging}/Info.plist.in Info.plist @ONLY)
add_executable(vorli MACOSX_BUNDLE vorli_macos.mm ${resources})
add_dependencies(vorli vorli-helper)
target_link_libraries(vorli PRIVATE vorli_ui_macos)
target_compile_definitions(vorli PRIVATE
  VORLI_FEEDBACK_ADDRESS="${VORLI_FEEDBACK_ADDRESS}" VORLI_MAKER_ADDRESS="${VORLI_MAKER_ADDRESS}"
  VORLI_SUPPORT_ADDRESS="${VORLI_SUPPORT_ADDRESS}" VORLI_INSTALL_ADDRESS="${VORLI_INSTALL_ADDRESS}")
set_target_properties(vorli PROPERTIES
  OUTPUT_NAME Vorli
  LINKER_LANGUAGE CXX  # with OBJCXX and without OBJC, CMake leaves out the path of the frameworks
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/src
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist
  BUILD_RPATH @executable_path/../Frameworks
  INSTALL_RPATH @executable_path/../Frameworks)
install(TARGETS vorli BUNDLE DESTINATION .)
