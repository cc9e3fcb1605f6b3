# What the archive for Linux holds beyond what is installed anyway. The folder sdk/ mirrors the archive.

add_custom_target(sdk)
add_dependencies(sdk Zentra3DRendering)

set(data ${CMAKE_CURRENT_BINARY_DIR}/data)
add_custom_command(OUTPUT ${data}/grey.raw
  COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/samples/data/make_data.py ${data}
  DEPENDS samples/data/make_data.py
  VERBATIM)
add_custom_target(sdk_data DEPENDS ${data}/grey.raw)
add_dependencies(sdk sdk_data)

function(zentra_sdk folder)
  install(FILES ${ARGN} DESTINATION ${folder} COMPONENT sdk EXCLUDE_FROM_ALL)
endfunction()

configure_file(README.linux.txt.in README.txt @ONLY)
zentra_sdk(. ${CMAKE_CURRENT_BINARY_DIR}/README.txt ${PROJECT_SOURCE_DIR}/CONTRACT.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION . RENAME LICENSE.txt COMPONENT sdk EXCLUDE_FROM_ALL)
zentra_sdk(debug $<TARGET_FILE:Zentra3DRendering>.debug)
zentra_sdk(docs ${PROJECT_SOURCE_DIR}/docs/contact-sheet.png ${PROJECT_SOURCE_DIR}/docs/troubleshooting.md
  ${PROJECT_SOURCE_DIR}/docs/gallery.md)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/gallery DESTINATION docs COMPONENT sdk EXCLUDE_FROM_ALL)
install(DIRECTORY bindings/python DESTINATION bindings COMPONENT sdk EXCLUDE_FROM_ALL
  PATTERN __pycache__ EXCLUDE PATTERN *.egg-info EXCLUDE)
# In the package, too: what pip installs cannot see the archive's lib.
install(FILES $<TARGET_FILE:Zentra3DRendering> DESTINATION bindings/python/zentra3d
  RENAME $<TARGET_SONAME_FILE_NAME:Zentra3DRendering> COMPONENT sdk EXCLUDE_FROM_ALL)
# And the licence: what pip makes of the folder takes it along.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION bindings/python RENAME LICENSE.txt COMPONENT sdk EXCLUDE_FROM_ALL)
zentra_sdk(samples/c samples/c/sample.c)
install(DIRECTORY samples/cmake DESTINATION samples COMPONENT sdk EXCLUDE_FROM_ALL)
zentra_sdk(samples samples/expected.txt)
install(DIRECTORY ${data}/ DESTINATION samples/data COMPONENT sdk EXCLUDE_FROM_ALL)
