# `cmake --build --preset release --target package` makes Debian packages in build/release/packages:
#   libhvmirefold-coreui        the library, and the program that reads pictures with Qt
#   libhvmirefold-coreui-dev    headers, CMake package and documents
#   python3-hvmirefold-coreui   the Python module and package
#   hvmirefold-coreui-pictures  the program that reads pictures with OpenImageIO, if the build found that
#   hvmirefold-coreui           depends on the first three. Earlier versions had everything in a package of this name.
# For Qt 6 the names have "-qt6" after "hvmirefold-coreui". All can be installed together.
set(COREUI_PACKAGING_DIR ${PROJECT_BINARY_DIR}/packaging)
set(COREUI_EVERYTHING_PACKAGE hvmirefold-coreui${COREUI_SUFFIX})
set(COREUI_LIBRARY_PACKAGE libhvmirefold-coreui${COREUI_SUFFIX})
set(COREUI_DEVELOPMENT_PACKAGE ${COREUI_LIBRARY_PACKAGE}-dev)
set(COREUI_PYTHON_PACKAGE python3-hvmirefold-coreui${COREUI_SUFFIX})
set(COREUI_PICTURES_PACKAGE ${COREUI_EVERYTHING_PACKAGE}-pictures)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${COREUI_EVERYTHING_PACKAGE})
set(CPACK_PACKAGE_VENDOR Halvern)
set(CPACK_PACKAGE_CONTACT "CoreUI developers <coreui@halvern.example>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# coreui_package(COMPONENT SECTION SUMMARY DESCRIPTION): what every package has.
set(CPACK_COMPONENTS_ALL "")
macro(coreui_package component section summary description)
    string(TOUPPER ${component} upper)
    set(package ${COREUI_${upper}_PACKAGE})
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${description}")
    # CPack makes the changelog. Other installations are without these.
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${COREUI_PACKAGING_DIR}/changelog.gz
        DESTINATION share/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL OPTIONAL)
endmacro()

coreui_package(library libs "file browser for image sequences with Qt ${COREUI_QT}"
"CoreUI has user-interface components for visual-effects applications: a file
browser that collapses image sequences, a file dialog with a preview, a
timeline and disclosure buttons.

This package has the library.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS ${COREUI_PICTURES_PACKAGE})
# Only the library for Qt 5 has a link where the linker looks.
if(COREUI_QT EQUAL 5)
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/overrides.in ${COREUI_PACKAGING_DIR}/${COREUI_LIBRARY_PACKAGE} @ONLY)
install(FILES ${COREUI_PACKAGING_DIR}/${COREUI_LIBRARY_PACKAGE} DESTINATION share/lintian/overrides
    COMPONENT library EXCLUDE_FROM_ALL)

coreui_package(development libdevel "file browser for image sequences with Qt ${COREUI_QT} - development"
"Headers, CMake package, documents and examples of the CoreUI components.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "python3-dev, qt${COREUI_QT}-base-dev")
if(COREUI_QT EQUAL 5)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "python3-dev, qtbase5-dev")
endif()
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, ${COREUI_PYTHON_PACKAGE}")

coreui_package(python python "file browser for image sequences with PyQt${COREUI_QT}"
"The Python module and the Python package of the CoreUI components, with types
for type checkers.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.7), python3-pyqt${COREUI_QT}, python3-pyqt${COREUI_QT}.sip (>= ${COREUI_SIP_ABI})")
foreach(script postinst prerm)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/${script}.in ${COREUI_PACKAGING_DIR}/${script} @ONLY)
    list(APPEND CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${COREUI_PACKAGING_DIR}/${script})
endforeach()

coreui_package(everything metapackages "file browser for image sequences with Qt ${COREUI_QT} - all packages"
"Depends on the library, the development files and the Python package of the
CoreUI components.")
set(CPACK_DEBIAN_EVERYTHING_PACKAGE_RECOMMENDS ${COREUI_PICTURES_PACKAGE})

if(TARGET coreui-pictures-oiio)
    coreui_package(pictures graphics "file browser for image sequences with Qt ${COREUI_QT} - pictures"
"The program that reads EXR, DPX and other pictures with OpenImageIO for the
preview of the CoreUI components. Without it the preview shows the pictures
that Qt reads.")
endif()

configure_file(${PROJECT_SOURCE_DIR}/cmake/PackageVersion.cmake.in ${PROJECT_BINARY_DIR}/PackageVersion.cmake @ONLY)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/PackageVersion.cmake)
include(CPack)

# The target `archive` makes archives for other systems, in build/release/archive.
configure_file(${PROJECT_SOURCE_DIR}/cmake/Archive.cmake.in ${PROJECT_BINARY_DIR}/Archive.cmake @ONLY)
add_custom_target(archive
    COMMAND ${CMAKE_COMMAND} -DOUTPUT_DIR=${PROJECT_BINARY_DIR}/archive -P ${PROJECT_BINARY_DIR}/Archive.cmake
    COMMENT "Making the archive in ${PROJECT_BINARY_DIR}/archive"
    VERBATIM)
add_dependencies(archive CoreUI CoreUIPackage coreui-pictures)
if(TARGET coreui-pictures-oiio)
    add_dependencies(archive coreui-pictures-oiio)
endif()
