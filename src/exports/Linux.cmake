# libzentra3drendering.so, and what `cmake --install` puts beside it.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(exports ${CMAKE_CURRENT_LIST_DIR})

# The names come from the module definition, the only list of them, behind those three that stand in for functions of
# Windows by which a host releases a picture.
zentra_for_each_export(names_of_list "\n    @name@;")
set(version_script ${CMAKE_CURRENT_BINARY_DIR}/Zentra3DRendering.map)
file(CONFIGURE OUTPUT ${version_script} CONTENT
"ZENTRA3DRENDERING_@PROJECT_VERSION_MAJOR@ {
  global:
    GlobalHandle; GlobalUnlock; GlobalFree;@names_of_list@
  local:
    *;
};
" @ONLY)

file(GLOB export_sources CONFIGURE_DEPENDS ${exports}/*.cpp)
list(FILTER export_sources EXCLUDE REGEX "/DllMain\\.cpp$")
add_library(Zentra3DRendering SHARED ${export_sources} ${ZENTRA_CORE_OBJECTS} $<TARGET_OBJECTS:zentra_platform>)
zentra_library_code(Zentra3DRendering)
# Everything is hidden but for the entries of this folder; the version script hides what else it brings along.
target_compile_options(Zentra3DRendering PRIVATE -fvisibility=default)
set_target_properties(Zentra3DRendering PROPERTIES
  OUTPUT_NAME zentra3drendering
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS ${version_script})
# Symbolic: whatever the process has of the same names, the library's own references are to itself.
target_link_options(Zentra3DRendering PRIVATE
  -Wl,--version-script=${version_script} -Wl,-Bsymbolic -Wl,-z,defs -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack
  -Wl,--gc-sections -Wl,--as-needed -Wl,--build-id -static-libgcc -static-libstdc++)
# What hosts get of it is the header, and not the sources' folders.
set_property(TARGET Zentra3DRendering PROPERTY
  INTERFACE_INCLUDE_DIRECTORIES $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# As for Windows: symbols, where there are any, in a file of their own.
set(library $<TARGET_FILE:Zentra3DRendering>)
add_custom_command(TARGET Zentra3DRendering POST_BUILD
  COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${library} ${library}.debug
  COMMAND ${CMAKE_OBJCOPY} --strip-unneeded --add-gnu-debuglink=${library}.debug ${library}
  VERBATIM)

# What a host links with: the header, the library and nothing of the sources.
add_library(zentra_host INTERFACE)
target_include_directories(zentra_host INTERFACE ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(zentra_host INTERFACE ${library})
add_dependencies(zentra_host Zentra3DRendering)

# --- What is installed: the library with its two links, the header, a CMake package and a pkg-config file. All find
# their places from their own, so that an installed tree can be moved.
set(sdk ${PROJECT_SOURCE_DIR}/sdk)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Zentra3DRendering)
configure_package_config_file(${sdk}/lib/linux/Zentra3DRenderingConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/Zentra3DRenderingConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/Zentra3DRenderingConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
# The file for pkg-config finds the prefix from where it lies itself, so that what is installed can be moved; but a folder
# of libraries that is not below the prefix says nothing about it.
set(prefix_of_pc ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH prefix_of_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(PREPEND prefix_of_pc "\${pcfiledir}/")
endif()
foreach(folder INCLUDEDIR LIBDIR)
  set(pc_${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(pc_${folder} ${CMAKE_INSTALL_${folder}})
  endif()
endforeach()
configure_file(${sdk}/lib/linux/Zentra3DRendering.pc.in Zentra3DRendering.pc @ONLY)

install(TARGETS Zentra3DRendering EXPORT Zentra3DRenderingTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(TARGETS Zentra3DRendering LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT sdk EXCLUDE_FROM_ALL)
# The archive of the SDK begins with all that is installed.
foreach(component IN ITEMS library "sdk;EXCLUDE_FROM_ALL")
  install(FILES ${PROJECT_SOURCE_DIR}/include/Zentra3DRendering.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${component})
  install(EXPORT Zentra3DRenderingTargets NAMESPACE Zentra3DRendering:: DESTINATION ${package} COMPONENT ${component})
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Zentra3DRenderingConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/Zentra3DRenderingConfigVersion.cmake DESTINATION ${package} COMPONENT ${component})
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Zentra3DRendering.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endforeach()
