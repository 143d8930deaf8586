# The files that the library carries: fonts and button pictures, made at build from what is text in this repository
# and from installed fonts. In the build tree they lie in share/velmora beside the library.

set(VELMORA_RESOURCES ${PROJECT_BINARY_DIR}/share/velmora)
find_program(VELMORA_RSVG_CONVERT rsvg-convert REQUIRED)

set(fonts Yekan.ttf Yekan.LICENSE.txt DastNevis.otf DastNevis.LICENSE.txt)
list(TRANSFORM fonts PREPEND ${VELMORA_RESOURCES}/)
add_custom_command(OUTPUT ${fonts}
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/make-fonts ${VELMORA_RESOURCES}
    DEPENDS ${PROJECT_SOURCE_DIR}/scripts/make-fonts
    COMMENT "Making the fonts"
    VERBATIM)

# 44 x 44 at three pixels a unit, which the densest screens show as they are.
set(pictures)
foreach(name Close Skip SoundOff SoundOn)
    set(drawing ${PROJECT_SOURCE_DIR}/artwork/${name}.svg)
    set(picture ${VELMORA_RESOURCES}/${name}.png)
    add_custom_command(OUTPUT ${picture}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${VELMORA_RESOURCES}
        COMMAND ${VELMORA_RSVG_CONVERT} --width 132 --height 132 --output ${picture} ${drawing}
        DEPENDS ${drawing}
        COMMENT "Drawing ${name}.png"
        VERBATIM)
    list(APPEND pictures ${picture})
endforeach()

add_custom_target(velmora_resources ALL DEPENDS ${fonts} ${pictures})
install(FILES ${fonts} ${pictures} DESTINATION ${CMAKE_INSTALL_DATADIR}/velmora)
