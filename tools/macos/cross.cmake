# Builds for a Mac on Linux, to check that a Mac could build it: with clang 19, the open C headers, our framework
# headers and link stubs. tools/check_macos_programs sets the variables VORLI_CROSS_...; the results run nowhere.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${VORLI_CROSS_PROCESSOR})
foreach(language C CXX OBJC OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET ${VORLI_CROSS_TARGET})
endforeach()
find_program(VORLI_CROSS_C clang-19 REQUIRED)
find_program(VORLI_CROSS_CXX clang++-19 REQUIRED)
set(CMAKE_C_COMPILER ${VORLI_CROSS_C})
set(CMAKE_OBJC_COMPILER ${VORLI_CROSS_C})
set(CMAKE_CXX_COMPILER ${VORLI_CROSS_CXX})
set(CMAKE_OBJCXX_COMPILER ${VORLI_CROSS_CXX})
foreach(tool ar ranlib install-name-tool)
  string(TOUPPER ${tool} variable)
  string(REPLACE - _ variable ${variable})
  find_program(VORLI_CROSS_${variable} llvm-${tool}-19 REQUIRED)
  set(CMAKE_${variable} ${VORLI_CROSS_${variable}} CACHE FILEPATH "")
endforeach()
set(CMAKE_CXX_FLAGS_INIT "${VORLI_CROSS_COMPILE_FLAGS}")
set(CMAKE_OBJCXX_FLAGS_INIT "${VORLI_CROSS_COMPILE_FLAGS}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${VORLI_CROSS_LINK_FLAGS}")

# CMake would read these from Xcode; the target above already says the same.
foreach(variable SYSROOT ARCHITECTURES DEPLOYMENT_TARGET)
  set(CMAKE_OSX_${variable} "" CACHE STRING "" FORCE)
endforeach()
# CMake sets this only if it knows the version of the Mac that it runs on.
set(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG "-Wl,-rpath,")
# The checks of the compiler link nothing.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES
  VORLI_CROSS_PROCESSOR VORLI_CROSS_TARGET VORLI_CROSS_COMPILE_FLAGS VORLI_CROSS_LINK_FLAGS)
