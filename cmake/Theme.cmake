# zento_theme(<tokens.json> <Theme.qml>): writes the design tokens as a QML singleton, so that the
# names of colours, lengths and durations are checked when the QML is compiled.
#
# Colours in the tokens are #RRGGBB or #RRGGBBAA; QML wants #AARRGGBB.
function(zento_qml_color out value)
    string(LENGTH ${value} length)
    if(length EQUAL 9)
        string(SUBSTRING ${value} 1 6 rgb)
        string(SUBSTRING ${value} 7 2 alpha)
        set(${out} "#${alpha}${rgb}" PARENT_SCOPE)
    else()
        set(${out} ${value} PARENT_SCOPE)
    endif()
endfunction()

# zento_token_members(<out> <json> <prefix> <type>): a flat object as `property`s named prefixKey.
function(zento_token_members out json prefix type)
    set(lines "")
    string(JSON count LENGTH "${json}")
    math(EXPR last "${count} - 1")
    foreach(i RANGE ${last})
        string(JSON key MEMBER "${json}" ${i})
        string(JSON value GET "${json}" ${key})
        string(SUBSTRING ${key} 0 1 head)
        string(SUBSTRING ${key} 1 -1 tail)
        string(TOUPPER ${head} head)
        string(APPEND lines "    readonly property ${type} ${prefix}${head}${tail}: ${value}\n")
    endforeach()
    set(${out} "${lines}" PARENT_SCOPE)
endfunction()

function(zento_theme tokens_file theme_file)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${tokens_file})
    file(READ ${tokens_file} tokens)

    set(colors "")
    string(JSON dark GET "${tokens}" color dark)
    string(JSON light GET "${tokens}" color light)
    # With high contrast the faint inks give way to the strong ones.
    set(strong_textTertiary text)
    set(strong_textDisabled textTertiary)
    set(strong_line controlBorder)
    set(strong_lineStrong controlBorder)
    string(JSON count LENGTH "${dark}")
    math(EXPR last "${count} - 1")
    foreach(i RANGE ${last})
        string(JSON key MEMBER "${dark}" ${i})
        set(source ${key})
        string(JSON d GET "${dark}" ${key})
        string(JSON l GET "${light}" ${key})
        zento_qml_color(d ${d})
        zento_qml_color(l ${l})
        set(value "dark ? \"${d}\" : \"${l}\"")
        if(DEFINED strong_${key})
            set(value "highContrast ? ${strong_${key}} : ${value}")
        endif()
        # A property named "on…" would be taken for the handler of a signal.
        string(REGEX REPLACE "^on([A-Z])" "inkOn\\1" key ${key})
        string(APPEND colors "    readonly property color ${key}: ${value}\n")
    endforeach()

    set(elevations "")
    foreach(name raised popover sheet floating)
        foreach(mode dark light)
            string(JSON y_${mode} GET "${tokens}" elevation ${mode} ${name} y)
            string(JSON blur_${mode} GET "${tokens}" elevation ${mode} ${name} blur)
            string(JSON color_${mode} GET "${tokens}" elevation ${mode} ${name} color)
            zento_qml_color(color_${mode} ${color_${mode}})
            string(JSON border_${mode} ERROR_VARIABLE none GET "${tokens}" elevation ${mode} ${name} border)
            if(none)
                set(border_${mode} "#00000000")
            endif()
            zento_qml_color(border_${mode} ${border_${mode}})
        endforeach()
        string(APPEND elevations "    readonly property var ${name}Elevation: dark\n"
            "        ? ({ y: ${y_dark}, blur: ${blur_dark}, color: \"${color_dark}\", border: \"${border_dark}\" })\n"
            "        : ({ y: ${y_light}, blur: ${blur_light}, color: \"${color_light}\", border: \"${border_light}\" })\n")
    endforeach()

    set(fonts "")
    string(JSON styles GET "${tokens}" font style)
    string(JSON count LENGTH "${styles}")
    math(EXPR last "${count} - 1")
    foreach(i RANGE ${last})
        string(JSON key MEMBER "${styles}" ${i})
        foreach(field size line weight)
            string(JSON ${field} GET "${styles}" ${key} ${field})
        endforeach()
        string(JSON family ERROR_VARIABLE none GET "${styles}" ${key} family)
        if(none)
            set(family ui)
        endif()
        string(APPEND fonts "    readonly property var ${key}Type: ({ size: Math.round(${size} * textScale), line: Math.round(${line} * textScale), weight: ${weight}, family: ${family}Family })\n")
    endforeach()

    string(JSON ui GET "${tokens}" font family ui)
    string(JSON mono GET "${tokens}" font family mono)
    foreach(group space radius size timeline opacity)
        string(JSON json GET "${tokens}" ${group})
        zento_token_members(${group} "${json}" ${group} real)
    endforeach()
    string(JSON durations GET "${tokens}" motion duration)
    zento_token_members(durations "${durations}" duration int)
    # Calm and slow moves become cuts where the desktop asks for less motion.
    foreach(name Calm Slow)
        string(REGEX REPLACE "(duration${name}): ([0-9]+)" "\\1: reducedMotion ? 0 : \\2" durations "${durations}")
    endforeach()

    file(CONFIGURE OUTPUT ${theme_file} @ONLY CONTENT [[
pragma Singleton
import QtQuick
import Zento

// The design tokens, written from Assets/ui/tokens.json when the build is configured.
QtObject {
    readonly property bool dark: Appearance.dark
    readonly property bool highContrast: Appearance.highContrast
    readonly property bool reducedMotion: Appearance.reducedMotion
    readonly property real textScale: Appearance.textScale
    readonly property string uiFamily: "@ui@"
    readonly property string monoFamily: "@mono@"
@colors@
@elevations@
@fonts@
@space@@radius@@size@@timeline@@opacity@@durations@}
]])
endfunction()
