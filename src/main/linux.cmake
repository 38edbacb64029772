# The two programs. Other files look for them in the build tree's src/.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/src)

add_executable(vorli-helper helper_linux.cpp)
target_link_libraries(vorli-helper PRIVATE vorli_linux_daemon)
target_compile_definitions(vorli-helper PRIVATE VORLI_VERSION="${PROJECT_VERSION}")
target_compile_options(vorli-helper PRIVATE ${VORLI_ROOT_OPTIONS})
target_link_options(vorli-helper PRIVATE -Wl,-z,relro,-z,now,--build-id=sha1)
install(TARGETS vorli-helper DESTINATION libexec/vorli COMPONENT helper)

vorli_layer(vorli_linux_program SOURCES main/LinuxProgram.cpp main/LinuxHost.cpp main/LinuxDisplay.cpp
  LINKS vorli_ui_linux vorli_linux vorli_posix)
target_compile_definitions(vorli_linux_program PRIVATE
  VORLI_FEEDBACK_ADDRESS="${VORLI_FEEDBACK_ADDRESS}" VORLI_MAKER_ADDRESS="${VORLI_MAKER_ADDRESS}"
  VORLI_SUPPORT_ADDRESS="${VORLI_SUPPORT_ADDRESS}" VORLI_INSTALL_ADDRESS="${VORLI_INSTALL_ADDRESS}")
add_executable(vorli vorli_linux.cpp)
target_link_libraries(vorli PRIVATE vorli_linux_program)
if(NOT VORLI_SANITIZERS)  # they start threads in their own way
  target_sources(vorli PRIVATE ../linux/crash/ThreadStart.cpp)
endif()
install(TARGETS vorli DESTINATION bin COMPONENT app)
