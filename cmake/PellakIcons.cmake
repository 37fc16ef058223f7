# Our drawings, rendered at build: the pictures the program itself shows go among its resources,
# the application's icon into the sizes of a desktop's icon theme.
include_guard(GLOBAL)

set(PELLAK_DRAWINGS ${CMAKE_SOURCE_DIR}/PellakCleaner/resources/icons)
set(PELLAK_ICON_SIZES 16 24 32 48 64 128 256 512)

find_program(RSVG_CONVERT_PROGRAM rsvg-convert)
if(NOT RSVG_CONVERT_PROGRAM)
  message(FATAL_ERROR "rsvg-convert is missing: it renders the icons")
endif()

# pellak_render(<svg> <png> <size> [<css>])
function(pellak_render svg png size)
  set(style)
  if(ARGN)
    set(style --stylesheet ${ARGN})
  endif()
  get_filename_component(folder ${png} DIRECTORY)
  add_custom_command(
    OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${RSVG_CONVERT_PROGRAM} --width ${size} --height ${size} ${style} --output ${png} ${svg}
    DEPENDS ${svg} ${ARGN}
    VERBATIM)
endfunction()

# A menu bar of macOS colours the glyph itself; other panels show it as it is.
set(glyph_style)
if(NOT APPLE)
  set(glyph_style ${PELLAK_DRAWINGS}/menubar-pannello.css)
endif()
set(engine ${CMAKE_BINARY_DIR}/resources/engine)
pellak_render(${PELLAK_DRAWINGS}/menubar.svg ${engine}/menubar.png 44 ${glyph_style})
pellak_render(${PELLAK_DRAWINGS}/logo-dog-trasparente.svg ${engine}/logo-dog-trasparente.png 256)
set(PELLAK_PICTURES ${engine}/menubar.png ${engine}/logo-dog-trasparente.png)

set(PELLAK_ICONS)
if(APPLE)
  set(iconset ${CMAKE_BINARY_DIR}/icons/pellak-cleaner.iconset)
  foreach(size 16 32 128 256 512)
    math(EXPR double "2 * ${size}")
    pellak_render(${PELLAK_DRAWINGS}/pellak-cleaner.svg ${iconset}/icon_${size}x${size}.png ${size})
    pellak_render(${PELLAK_DRAWINGS}/pellak-cleaner.svg ${iconset}/icon_${size}x${size}@2x.png
                  ${double})
    list(APPEND icon_pieces ${iconset}/icon_${size}x${size}.png
         ${iconset}/icon_${size}x${size}@2x.png)
  endforeach()
  set(PELLAK_ICNS ${CMAKE_BINARY_DIR}/icons/pellak-cleaner.icns)
  add_custom_command(
    OUTPUT ${PELLAK_ICNS}
    COMMAND iconutil --convert icns --output ${PELLAK_ICNS} ${iconset}
    DEPENDS ${icon_pieces}
    VERBATIM)
  set(PELLAK_ICONS ${PELLAK_ICNS})
else()
  foreach(size ${PELLAK_ICON_SIZES})
    set(icon ${CMAKE_BINARY_DIR}/icons/hicolor/${size}x${size}/apps/pellak-cleaner.png)
    pellak_render(${PELLAK_DRAWINGS}/pellak-cleaner.svg ${icon} ${size})
    list(APPEND PELLAK_ICONS ${icon})
  endforeach()
endif()
