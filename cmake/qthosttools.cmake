# SPDX-License-Identifier: GPL-2.0-or-later
# When cross-compiling, Qt's code generators come from the build machine's Qt
# (Debian qtbase5-dev-tools, qttools5-dev-tools), not from the target's
# packages: Qt's package files define each tool only if no target of that name
# exists yet, so defining them first, before find_package(Qt5), wins.
foreach(tool moc rcc uic qmake lrelease lupdate lconvert)
    if(NOT TARGET Qt5::${tool})
        find_program(ORVELLA_HOST_${tool} ${tool}
            PATHS /usr/lib/qt5/bin /usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/qt5/bin NO_DEFAULT_PATH)
        if(NOT ORVELLA_HOST_${tool})
            message(FATAL_ERROR "Qt's ${tool} for the build machine is missing: scripts/setup installs it")
        endif()
        add_executable(Qt5::${tool} IMPORTED)
        set_target_properties(Qt5::${tool} PROPERTIES IMPORTED_LOCATION "${ORVELLA_HOST_${tool}}")
    endif()
endforeach()
