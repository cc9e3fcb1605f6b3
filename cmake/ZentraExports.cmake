# What the library exports, read from the module definition, the only list of it: its path, the names, and in the same
# order how many bytes the arguments of each have in 32 bits.

set(ZENTRA_MODULE_DEFINITION ${PROJECT_SOURCE_DIR}/src/exports/Zentra3DRendering.def)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ZENTRA_MODULE_DEFINITION})
file(STRINGS ${ZENTRA_MODULE_DEFINITION} ZENTRA_EXPORTS REGEX "^ *[A-Za-z0-9]+=[A-Za-z0-9]+@[0-9]+$")
set(ZENTRA_EXPORT_BYTES ${ZENTRA_EXPORTS})
list(TRANSFORM ZENTRA_EXPORTS REPLACE "^ *([A-Za-z0-9]+)=.*$" "\\1")
list(TRANSFORM ZENTRA_EXPORT_BYTES REPLACE "^.*@" "")

# Text with a piece for each export: `piece`, with its name for @name@ and its bytes for @bytes@.
function(zentra_for_each_export text piece)
  set(pieces "")
  foreach(name bytes IN ZIP_LISTS ZENTRA_EXPORTS ZENTRA_EXPORT_BYTES)
    string(CONFIGURE "${piece}" filled @ONLY)
    string(APPEND pieces "${filled}")
  endforeach()
  set(${text} "${pieces}" PARENT_SCOPE)
endfunction()
