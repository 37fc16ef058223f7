# How the program becomes an application bundle on macOS.
include_guard(GLOBAL)

# pellak_bundle(<target> RESOURCES <file>... [ICON <file>]): the target becomes
# "Pellak Cleaner.app" in the build folder. RESOURCES are files below ${CMAKE_BINARY_DIR}/resources,
# which is copied whole; ICON is an .icns file. A link by the target's own name stays beside the
# bundle, for terminals.
function(pellak_bundle target)
  cmake_parse_arguments(ARG "" "ICON" "RESOURCES" ${ARGN})
  set_target_properties(
    ${target}
    PROPERTIES MACOSX_BUNDLE ON
               OUTPUT_NAME "Pellak Cleaner"
               MACOSX_BUNDLE_INFO_PLIST ${CMAKE_SOURCE_DIR}/packaging/macos/Info.plist.in
               MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
               MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION})
  # A changed resource links anew, and only then is the bundle filled anew.
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${ARG_RESOURCES} ${ARG_ICON})
  set(inside "$<TARGET_BUNDLE_CONTENT_DIR:${target}>/Resources")
  add_custom_command(
    TARGET ${target}
    POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_BINARY_DIR}/resources ${inside}
    COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:${target}>
            ${CMAKE_BINARY_DIR}/${target}
    VERBATIM)
  if(ARG_ICON)
    get_filename_component(name ${ARG_ICON} NAME)
    set_target_properties(${target} PROPERTIES MACOSX_BUNDLE_ICON_FILE ${name})
    add_custom_command(
      TARGET ${target}
      POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy ${ARG_ICON} ${inside}
      VERBATIM)
  endif()
  # Last: what is put in later breaks the seal. The linker signs the program alone, and the system
  # refuses a bundle whose resources nobody vouches for.
  add_custom_command(
    TARGET ${target}
    POST_BUILD
    COMMAND codesign --force --sign - $<TARGET_BUNDLE_DIR:${target}>
    VERBATIM)
endfunction()
