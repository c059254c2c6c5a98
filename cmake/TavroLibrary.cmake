# The library for other programs, shared and static, and its installation.
#
# Both are made of the objects of the engine, the compiled models and the interface; the console is
# no part of them. Every object is built with hidden names and independent of its position, so that
# one build serves the executables and both libraries.
#
# What is installed finds its parts from where it stands, so that a prefix can be moved whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(tavro_objects)
foreach(part api language run hybrid reasoning plant continuous trajectory model support therm line)
  list(APPEND tavro_objects $<TARGET_OBJECTS:tavro_${part}>)
endforeach()

add_library(tavro_shared SHARED ${tavro_objects})
add_library(tavro_static STATIC ${tavro_objects})
foreach(library tavro_shared tavro_static)
  set_target_properties(${library} PROPERTIES
    OUTPUT_NAME tavro
    LINKER_LANGUAGE CXX
    ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
  target_compile_features(${library} INTERFACE cxx_std_20)
  target_include_directories(${library} INTERFACE
    $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()

# Before version 1 every minor version may change the interface.
set_target_properties(tavro_shared PROPERTIES
  EXPORT_NAME tavro
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
  LINK_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/tavro.map)
target_link_options(tavro_shared PRIVATE -Wl,--version-script=${CMAKE_CURRENT_LIST_DIR}/tavro.map)
# The run-time of a sanitizer is in the program, not in the library.
if(NOT TAVRO_SANITIZE AND NOT TAVRO_THREAD)
  target_link_options(tavro_shared PRIVATE -Wl,--no-undefined)
endif()

set(tavro_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tavro)
install(TARGETS tavro_shared tavro_static EXPORT tavroTargets COMPONENT library
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/tavro DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT library)
install(EXPORT tavroTargets NAMESPACE tavro:: DESTINATION ${tavro_package_dir} COMPONENT library)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/tavroConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/package/tavroConfig.cmake
                              INSTALL_DESTINATION ${tavro_package_dir}
                              NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/tavroConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/package/tavroConfig.cmake
              ${CMAKE_BINARY_DIR}/package/tavroConfigVersion.cmake
        DESTINATION ${tavro_package_dir} COMPONENT library)

file(RELATIVE_PATH tavro_prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" tavro_prefix_from_pc "${tavro_prefix_from_pc}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/tavro.pc.in ${CMAKE_BINARY_DIR}/package/tavro.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/package/tavro.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT library)
